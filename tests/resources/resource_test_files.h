// Files for the tests: a private working directory and whole files.
#pragma once

#include <cstdint>
#include <string>
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
