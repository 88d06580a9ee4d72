// Files for the resource tests: a private working directory, whole files,
// archives and hand-made PCX images.
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

// PCX header fields: x and y run from 0 to width - 1 and height - 1, moved up by 3 when `offsetOrigin`.
struct PcxFields {
    int width = 1, height = 1, planes = 1, bytesPerLine = 1;
    int version = 5, bitsPerPixel = 8, manufacturer = 10;
    bool offsetOrigin = false;
};
// A PCX file: the 128-byte header, `data` and, for one plane, 12 and `palette` padded to 768 bytes.
std::vector<uint8_t> pcxFile(const PcxFields& fields, const std::vector<uint8_t>& data,
                             std::vector<uint8_t> palette = {});
// Run-length encodes `raw` as one stream, its runs crossing line and plane ends as few encoders do.
std::vector<uint8_t> encodeRuns(const std::vector<uint8_t>& raw);
