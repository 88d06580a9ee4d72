#include "app/desktop/data_directories.h"

#include "app/status_line.h"
#include "base/data_path.h"

#include <unistd.h>

#include <filesystem>
#include <vector>

namespace {

// The program's own path, symbolic links resolved; empty when unknown.
std::string ownExecutable() {
    std::vector<char> buffer(4096);
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0 || static_cast<size_t>(length) >= buffer.size()) {
        return "";
    }
    return std::string(buffer.data(), static_cast<size_t>(length));
}

void reportDataFile(const char* name, const std::string& path, const std::string& place) {
    printLogLine("%s read from %s (%s)", name, path.c_str(), place.c_str());
}

}  // namespace

std::string dataDirectoryBeside(const std::string& executable) {
    const std::filesystem::path program(executable);
    return (program.parent_path().parent_path() / "share" / "kaskade").lexically_normal().string();
}

void addShowDataDirectories(bool verbose) {
    const std::string executable = ownExecutable();
    const std::string beside = executable.empty() ? "" : dataDirectoryBeside(executable);
    if (!beside.empty()) {
        addDataDirectory(beside, "beside the program");
    }
    if (beside != KASKADE_DATA_DIR) {
        addDataDirectory(KASKADE_DATA_DIR, "the installed data directory");
    }
    setDataFileReport(verbose ? reportDataFile : nullptr);
}
