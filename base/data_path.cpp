#include "base/data_path.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>
#include <vector>

namespace {

struct DataDirectory {
    std::string path;
    std::string place;
};

std::vector<DataDirectory> g_directories;
DataFileReport g_report = nullptr;
std::set<std::string> g_reported;

bool readableFile(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), R_OK) == 0;
}

std::string workingDirectory() {
    std::vector<char> buffer(4096);
    while (getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE) {
            return ".";
        }
        buffer.resize(buffer.size() * 2);
    }
    return buffer.data();
}

// True the first time `name` is found while someone is told.
bool firstReport(const char* name) { return g_report != nullptr && g_reported.insert(name).second; }

}  // namespace

void addDataDirectory(const std::string& directory, const std::string& place) {
    g_directories.push_back({directory, place});
}

void clearDataDirectories() {
    g_directories.clear();
    g_reported.clear();
}

void setDataFileReport(DataFileReport report) { g_report = report; }

std::string dataFilePath(const char* name) {
    if (std::strchr(name, '/') != nullptr) {
        return name;
    }
    if (readableFile(name)) {
        if (firstReport(name)) {
            g_report(name, workingDirectory() + "/" + name, "the working directory");
        }
        return name;
    }
    for (const DataDirectory& directory : g_directories) {
        const std::string path = directory.path + "/" + name;
        if (readableFile(path)) {
            if (firstReport(name)) {
                g_report(name, path, directory.place);
            }
            return path;
        }
    }
    return name;
}
