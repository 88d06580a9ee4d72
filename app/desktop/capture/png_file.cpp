#include "app/desktop/capture/png_file.h"

#include <png.h>

#include <cstdio>
#include <memory>

namespace {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

}  // namespace

bool writePng(const std::string& path, int width, int height, int channels, const uint8_t* pixels,
              bool bottomUp, int level, std::string* error) {
    FilePtr file(std::fopen(path.c_str(), "wb"));
    if (!file) {
        *error = path + ": cannot open for writing";
        return false;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (info == nullptr) {
        png_destroy_write_struct(&png, nullptr);
        *error = path + ": out of memory";
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        *error = path + ": cannot write PNG";
        return false;
    }
    png_init_io(png, file.get());
    png_set_compression_level(png, level);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 channels == 4 ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    const size_t stride = static_cast<size_t>(width) * static_cast<size_t>(channels);
    for (int row = 0; row < height; ++row) {
        const int source = bottomUp ? height - 1 - row : row;
        png_write_row(png, pixels + static_cast<size_t>(source) * stride);
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    if (std::fflush(file.get()) != 0) {
        *error = path + ": cannot write PNG";
        return false;
    }
    return true;
}

bool readPng(const std::string& path, PngImage* image, std::string* error) {
    png_image reader{};
    reader.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&reader, path.c_str())) {
        *error = path + ": " + reader.message;
        return false;
    }
    const bool alpha = (reader.format & PNG_FORMAT_FLAG_ALPHA) != 0;
    reader.format = alpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    image->width = static_cast<int>(reader.width);
    image->height = static_cast<int>(reader.height);
    image->channels = alpha ? 4 : 3;
    image->pixels.assign(PNG_IMAGE_SIZE(reader), 0);
    if (!png_image_finish_read(&reader, nullptr, image->pixels.data(), 0, nullptr)) {
        *error = path + ": " + reader.message;
        png_image_free(&reader);
        return false;
    }
    return true;
}
