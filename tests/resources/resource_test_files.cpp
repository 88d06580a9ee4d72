#include "tests/resources/resource_test_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "resources/archive_format.h"

WorkingTempDir::WorkingTempDir()
    : path_(::testing::TempDir() + "kaskade-res-XXXXXX"), previous_(std::filesystem::current_path()) {
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary directory " + path_);
    }
    std::filesystem::current_path(path_);
}

WorkingTempDir::~WorkingTempDir() {
    std::error_code ignored;
    std::filesystem::current_path(previous_, ignored);
    std::filesystem::remove_all(path_, ignored);
}

std::vector<uint8_t> readBytes(const std::string& path) {
    std::vector<uint8_t> bytes;
    std::string error;
    return readWholeFile(path, &bytes, &error) ? bytes : throw std::runtime_error(error);
}

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::string error;
    writeWholeFile(path, bytes, &error) ? void() : throw std::runtime_error(error);
}

std::vector<uint8_t> buildArchive(const TestEntries& entries) {
    std::vector<uint8_t> archive;
    for (const auto& [name, data] : entries) {
        std::string error;
        appendArchiveEntry(archive, name, data.data(), data.size(), &error) ? void() : throw std::runtime_error(error);
    }
    return archive;
}

std::vector<uint8_t> encodeRuns(const std::vector<uint8_t>& raw) {
    std::vector<uint8_t> out;
    for (size_t i = 0; i < raw.size();) {
        size_t count = 1;
        while (i + count < raw.size() && count < 63 && raw[i + count] == raw[i]) {
            ++count;
        }
        if (count > 1 || raw[i] >= 192) {
            out.push_back(static_cast<uint8_t>(192 | count));
        }
        out.push_back(raw[i]);
        i += count;
    }
    return out;
}

std::vector<uint8_t> pcxFile(const PcxFields& fields, const std::vector<uint8_t>& data,
                             std::vector<uint8_t> palette) {
    std::vector<uint8_t> file = {static_cast<uint8_t>(fields.manufacturer), static_cast<uint8_t>(fields.version), 1,
                                 static_cast<uint8_t>(fields.bitsPerPixel)};
    file.resize(128, 0);
    const int origin = fields.offsetOrigin ? 3 : 0;
    const std::pair<size_t, int> words[] = {{4, origin}, {6, origin}, {8, origin + fields.width - 1},
                                            {10, origin + fields.height - 1}, {66, fields.bytesPerLine}};
    for (const auto& [offset, value] : words) {  // little-endian
        file[offset] = static_cast<uint8_t>(value);
        file[offset + 1] = static_cast<uint8_t>(value >> 8);
    }
    file[65] = static_cast<uint8_t>(fields.planes);
    file.insert(file.end(), data.begin(), data.end());
    if (fields.planes == 1) {
        palette.resize(768, 0);
        file.push_back(12);
        file.insert(file.end(), palette.begin(), palette.end());
    }
    return file;
}
