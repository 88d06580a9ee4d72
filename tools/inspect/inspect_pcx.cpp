// kaskade-inspect pcx: decodes a PCX image with the show's own decoder and
// byte order (resources/pcx_decoder.h, Texture::convertToRgba) and writes it as
// an RGB PNG, so anyone can look at what the show will upload.
#include <cstdio>
#include <string>
#include <vector>

#include "app/desktop/capture/png_file.h"
#include "resources/pcx_decoder.h"
#include "resources/texture.h"
#include "tools/inspect/inspect_command.h"

namespace {

// Larger images are refused rather than allocated.
constexpr long MAX_PIXELS = 1L << 26;

int fail(const std::string& message) {
    std::fprintf(stderr, "kaskade-inspect pcx: %s\n", message.c_str());
    return 1;
}

// An open PCX file: a plain file from its start, or an archive entry's data.
struct PcxSource {
    FILE* file = nullptr;
    long offset = 0;    // where the PCX file starts in `file`
    uint32_t size = 0;  // its length
};

// Parses "WIDTHxHEIGHT" with both in 1..16384.
bool parseSize(const std::string& text, int* width, int* height) {
    char end = 0;
    return std::sscanf(text.c_str(), "%dx%d%c", width, height, &end) == 2 && *width > 0 && *height > 0 &&
           *width <= 16384 && *height <= 16384;
}

// Decodes into `texture` (allocated here) and turns it into RGBA.
bool decode(PcxSource& source, int width, int height, Texture* texture, std::string* error) {
    uint8_t header[PCX_HEADER_SIZE];
    std::fseek(source.file, source.offset, SEEK_SET);
    const size_t wanted = source.size < PCX_HEADER_SIZE ? source.size : PCX_HEADER_SIZE;
    const size_t got = std::fread(header, 1, wanted, source.file);
    PcxHeader fields;
    if (const char* problem = parsePcxHeader(header, got, &fields)) {
        *error = problem;
        return false;
    }
    if (width == 0) {
        width = fields.width;
        height = fields.height;
    }
    if (width <= 0 || height <= 0 || static_cast<long>(width) * height > MAX_PIXELS) {
        *error = "image size " + std::to_string(width) + " x " + std::to_string(height) + " refused";
        return false;
    }
    std::fseek(source.file, source.offset, SEEK_SET);
    texture->allocate(width, height);
    decodePcx(source.file, source.size, texture->pixels, width, height);
    texture->convertToRgba(false);
    return true;
}

int runPcx(int argc, char** argv) {
    int width = 0;
    int height = 0;
    if (argc < 3 || argc > 4 || (argc == 4 && !parseSize(argv[3], &width, &height))) {
        std::fprintf(stderr, "usage: kaskade-inspect pcx IMAGE OUT.png [WIDTHxHEIGHT]\n");
        return 2;
    }
    PcxSource source;
    std::string error;
    source.file = openInspectSource(parseInspectSource(argv[1]), &source.size, &error);
    if (source.file == nullptr) {
        return fail(error);
    }
    source.offset = std::ftell(source.file);
    Texture texture{};
    const bool decoded = decode(source, width, height, &texture, &error);
    std::fclose(source.file);
    if (!decoded) {
        return fail(std::string(argv[1]) + ": " + error);
    }
    const size_t count = static_cast<size_t>(texture.width) * texture.height;
    std::vector<uint8_t> rgb(count * 3);
    for (size_t i = 0; i < count; ++i) {
        rgb[i * 3 + 0] = texture.pixels[i * 4 + 0];
        rgb[i * 3 + 1] = texture.pixels[i * 4 + 1];
        rgb[i * 3 + 2] = texture.pixels[i * 4 + 2];
    }
    delete[] texture.pixels;
    if (!writePng(argv[2], texture.width, texture.height, 3, rgb.data(), false, 6, &error)) {
        return fail(error);
    }
    return 0;
}

const InspectCommand g_pcxCommand("pcx", "IMAGE OUT.png [WIDTHxHEIGHT]",
                                  "decodes IMAGE as the show does and writes it as an RGB PNG; WIDTHxHEIGHT "
                                  "decodes into a texture of that size instead of the image's own",
                                  runPcx);

}  // namespace
