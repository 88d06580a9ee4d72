#include "tests/resources/resource_test_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "resources/archive_format.h"

WorkingTempDir::WorkingTempDir()
    : path_(::testing::TempDir() + "kaskade-res-XXXXXX"), previous_(std::filesystem::current_path()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make a temporary directory " + path_);
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
