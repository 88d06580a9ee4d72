#include "tests/gl11/scene_comparison.h"

#include "app/desktop/capture/png_file.h"
#include "gl11/gl11_platform.h"
#include "tests/gl11/feature_scenes.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

SceneDifference compareScenes(const SceneImage& reference, const SceneImage& layer) {
    SceneDifference difference;
    if (reference.rgba.size() != layer.rgba.size()) {
        difference.largest = 255;
        difference.mean = 255.0;
        difference.pixelsApart = reference.width * reference.height;
        return difference;
    }
    long sum = 0;
    for (size_t pixel = 0; pixel < reference.rgba.size(); pixel += 4) {
        int apart = 0;
        for (size_t c = 0; c < 3; ++c) {
            const int d = std::abs(static_cast<int>(reference.rgba[pixel + c]) - static_cast<int>(layer.rgba[pixel + c]));
            sum += d;
            apart = d > apart ? d : apart;
        }
        difference.largest = apart > difference.largest ? apart : difference.largest;
        difference.pixelsApart += apart > PIXEL_TOLERANCE ? 1 : 0;
    }
    difference.mean = static_cast<double>(sum) / static_cast<double>(reference.rgba.size() / 4 * 3);
    return difference;
}

SceneImage drawReferenceScene(int scene) {
    startReferenceContext();
    reference_scenes::SCENES[scene].draw();
    return readScene();
}

SceneImage drawLayerScene(int scene) {
    startLayerContext();
    gl11Init();
    layer_scenes::SCENES[scene].draw();
    gl11EndFrame();
    return readScene();
}

bool writeComparison(const std::string& directory, const std::string& name, const SceneImage& reference,
                     const SceneImage& layer) {
    const int width = reference.width;
    const int height = reference.height;
    std::vector<uint8_t> sheet(static_cast<size_t>(width) * 3 * static_cast<size_t>(height) * 3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const size_t from = (static_cast<size_t>(y) * width + x) * 4;
            for (int c = 0; c < 3; ++c) {
                const int a = reference.rgba[from + c];
                const int b = layer.rgba[from + c];
                const size_t row = static_cast<size_t>(y) * width * 3 * 3;
                sheet[row + static_cast<size_t>(x) * 3 + c] = static_cast<uint8_t>(a);
                sheet[row + static_cast<size_t>(width + x) * 3 + c] = static_cast<uint8_t>(b);
                // The difference, eight times stronger.
                const int d = std::abs(a - b) * 8;
                sheet[row + static_cast<size_t>(2 * width + x) * 3 + c] = static_cast<uint8_t>(d > 255 ? 255 : d);
            }
        }
    }
    std::error_code ignored;
    std::filesystem::create_directories(directory, ignored);
    std::string error;
    return writePng(directory + "/" + name + ".png", width * 3, height, 3, sheet.data(), true, 1, &error);
}
