// Files for the tests: a private working directory, whole files and archives.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// A fresh temporary directory, the working directory while it lives (archives
// are opened by names of at most 19 characters, so tests use short relative names).
class WorkingTempDir {
public:
    WorkingTempDir();
    ~WorkingTempDir();
    WorkingTempDir(const WorkingTempDir&) = delete;
    WorkingTempDir& operator=(const WorkingTempDir&) = delete;

private:
    std::string path_, previous_;
};

// Whole files; both throw std::runtime_error on failure.
std::vector<uint8_t> readBytes(const std::string& path);
void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes);

// Names and data of archive entries, written in this order as one archive by buildArchive.
using TestEntries = std::vector<std::pair<std::string, std::vector<uint8_t>>>;
std::vector<uint8_t> buildArchive(const TestEntries& entries);
