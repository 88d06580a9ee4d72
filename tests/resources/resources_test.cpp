// The archive reader (Library), the PCX decoder (on files from other
// encoders too) and the texture's RGBA step: the cases of
// tests/data/resources/cases.txt, bytes in the notation of tests/engine/text_cases.h.
#include "resources/library.h"
#include "resources/pcx_decoder.h"
#include "resources/texture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>

#include "app/desktop/capture/png_file.h"
#include "tests/engine/text_cases.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

constexpr uint8_t UNTOUCHED = 0x5A;  // every byte of a buffer before decoding

// Decodes `bytes` as an entry of `size` bytes into a width x height buffer of UNTOUCHED bytes.
std::vector<uint8_t> decode(const std::vector<uint8_t>& bytes, int width, int height, size_t size) {
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4, UNTOUCHED);
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);  // closed when a report unwinds
    std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    std::rewind(file.get());
    decodePcx(file.get(), static_cast<uint32_t>(size), pixels.data(), width, height);
    return pixels;
}

// "row Y: PIXEL...", PIXEL the decoded red, green and blue (bytes 2, 1, 0) in
// hex, "+AA" after it where the fourth byte is no longer UNTOUCHED.
std::string rows(const std::vector<uint8_t>& pixels, size_t width) {
    std::string out;
    char text[16];
    for (size_t i = 0; i < pixels.size(); i += 4) {
        std::snprintf(text, sizeof text, pixels[i + 3] == UNTOUCHED ? " %02X%02X%02X" : " %02X%02X%02X+%02X", pixels[i + 2],
                      pixels[i + 1], pixels[i], pixels[i + 3]);
        out += (i / 4 % width == 0 ? "row " + std::to_string(i / 4 / width) + ":" : "") + text +
               (i / 4 % width == width - 1 ? "\n" : "");
    }
    return out;
}

// A case: bytes, lines in a row making one file, and commands on the last
// file, each writing its lines (the commands: the first lines of the file).
class ResourceCases : public ::testing::TestWithParam<TextCase> {};

TEST_P(ResourceCases, GiveWhatIsWrittenDown) {
    const std::set<std::string> COMMANDS = {"decode", "rgba", "open", "seek", "read", "pcx", "remove", "reference"};
    const TextCase& c = GetParam();
    WorkingTempDir directory;
    Library library{};
    std::string file, output;
    std::vector<uint8_t> pixels;
    bool fresh = false;  // the last lines were bytes
    std::istringstream lines(c.input);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> w = words(line);
        if (!COMMANDS.contains(w[0])) {
            file = (fresh ? file : "") + line + "\n";
            fresh = true;
            continue;
        }
        const std::vector<uint8_t> bytes = textBytes(file, c.macros);
        const auto number = [&w](size_t i) { return std::stoi(w.at(i)); };
        const std::string name = line.substr(std::min(line.size(), w[0].size() + 1));
        FatalCatcher catcher;
        try {
            if (w[0] == "decode") {
                pixels = decode(bytes, number(1), number(2), w.size() > 3 ? number(3) : bytes.size());
                output += rows(pixels, number(1));
            } else if (w[0] == "rgba") {
                Texture texture{};
                texture.allocate(static_cast<int>(pixels.size() / 4), 1);
                std::copy(pixels.begin(), pixels.end(), texture.pixels);
                texture.convertToRgba(w.size() > 1);
                output += "rgba:";
                for (size_t i = 0; i < pixels.size(); ++i) {
                    char text[4];
                    std::snprintf(text, sizeof text, "%02X", texture.pixels[i]);
                    output += (i % 4 == 0 ? " " : "") + std::string(text);
                }
                output += "\n";
                delete[] texture.pixels;
            } else if (w[0] == "open") {
                library.close();
                if (fresh) writeBytes(name.empty() ? "lib" : name, bytes);
                library.open(name.empty() ? "lib" : name.c_str());
            } else if (w[0] == "seek") {
                library.seekEntry(name.c_str());
            } else if (w[0] == "read") {
                library.seekEntry(name.c_str());
                std::string data(static_cast<size_t>(library.entrySize), '\0');
                data.resize(std::fread(data.data(), 1, data.size(), library.file));
                output += name + ": " + data + "\n";
            } else if (w[0] == "pcx") {
                pixels.assign(static_cast<size_t>(number(2)) * number(3) * 4, UNTOUCHED);
                library.loadPcx(w.at(1).c_str(), pixels.data(), number(2), number(3));
                output += rows(pixels, number(2));
            } else if (w[0] == "reference") {  // tests/data/pcx/NAME.pcx decoded against NAME.png
                PngImage png;
                std::string error;
                EXPECT_TRUE(readPng(testDataPath("pcx/" + name + ".png"), &png, &error)) << error;
                const std::vector<uint8_t> pcx = readBytes(testDataPath("pcx/" + name + ".pcx"));
                pixels = decode(pcx, png.width, png.height, pcx.size());
                bool same = pixels.size() / 4 * png.channels == png.pixels.size();
                for (size_t i = 0, p = 0; same && i < pixels.size(); i += 4, p += png.channels) {
                    same = std::vector<uint8_t>(pixels.begin() + i, pixels.begin() + i + 4) ==
                           std::vector<uint8_t>({png.pixels[p + 2], png.pixels[p + 1], png.pixels[p], UNTOUCHED});
                }
                output += name + (same ? ": same\n" : ": different\n");
            } else {
                std::remove(name.c_str());
            }
        } catch (const FatalError& error) {
            output += "fatal " + error.caption + " " + std::to_string(error.status) + ": " + error.text + "\n";
        }
        fresh = false;
    }
    library.close();
    EXPECT_EQ(comparedLines(c, output), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, ResourceCases, ::testing::ValuesIn(readTextCases("resources/cases.txt")), caseName);

}  // namespace
