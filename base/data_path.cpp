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

void reportOnce(const char* name, const std::string& path, const std::string& place) {
    if (g_report != nullptr && g_reported.insert(name).second) {
        g_report(name, path, place);
    }
}

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
        reportOnce(name, workingDirectory() + "/" + name, "the working directory");
        return name;
    }
    for (const DataDirectory& directory : g_directories) {
        const std::string path = directory.path + "/" + name;
        if (readableFile(path)) {
            reportOnce(name, path, directory.place);
            return path;
        }
    }
    return name;
}
