#include "tests/support/frame_compare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

std::vector<double> scaledDown(const PngImage& image, int width, int height, int cropX, int cropY, int cropWidth,
                               int cropHeight) {
    if (cropWidth <= 0 || cropHeight <= 0) {
        cropWidth = image.width;
        cropHeight = image.height;
    }
    std::vector<double> out(static_cast<size_t>(width) * height * 3, 0.0);
    const double sx = static_cast<double>(cropWidth) / width;
    const double sy = static_cast<double>(cropHeight) / height;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double sum[3] = {0, 0, 0};
            for (int v = static_cast<int>(y * sy); v < std::ceil((y + 1) * sy); ++v) {
                const double wy = std::min(v + 1.0, (y + 1) * sy) - std::max<double>(v, y * sy);
                for (int u = static_cast<int>(x * sx); u < std::ceil((x + 1) * sx); ++u) {
                    const double w = wy * (std::min(u + 1.0, (x + 1) * sx) - std::max<double>(u, x * sx));
                    const uint8_t* p =
                        &image.pixels[(static_cast<size_t>(v + cropY) * image.width + u + cropX) * image.channels];
                    for (int c = 0; c < 3; ++c) {
                        sum[c] += w * p[c];
                    }
                }
            }
            for (int c = 0; c < 3; ++c) {
                out[(static_cast<size_t>(y) * width + x) * 3 + c] = sum[c] / (sx * sy);
            }
        }
    }
    return out;
}

double meanAbsoluteError(const std::vector<double>& scaled, const PngImage& reference) {
    double total = 0.0;
    for (size_t i = 0; i < scaled.size(); ++i) {
        total += std::abs(scaled[i] - reference.pixels[(i / 3) * reference.channels + i % 3]);
    }
    return total / static_cast<double>(scaled.size());
}

std::vector<double> asDoubles(const PngImage& image) {
    std::vector<double> rgb(static_cast<size_t>(image.width) * image.height * 3);
    for (size_t i = 0; i < rgb.size(); ++i) {
        rgb[i] = image.pixels[(i / 3) * image.channels + i % 3];
    }
    return rgb;
}

PngImage loadPng(const std::string& path) {
    PngImage image;
    std::string error;
    EXPECT_TRUE(readPng(path, &image, &error)) << error;
    return image;
}

bool matchesReference(const PngImage& frame, const PngImage& reference) {
    if (frame.pixels.size() != reference.pixels.size() || frame.pixels.empty()) {
        return false;
    }
    size_t differing = 0;
    for (size_t i = 0; i < frame.pixels.size(); ++i) {
        differing += std::abs(frame.pixels[i] - reference.pixels[i]) > 16 ? 1 : 0;
    }
    return differing <= frame.pixels.size() / 1000;
}
