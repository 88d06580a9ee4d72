// kaskade-archive: builds, lists and unpacks the show's archives.
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "resources/archive_format.h"

namespace {

const char* const USAGE =
    "usage: kaskade-archive COMMAND ARGS...\n"
    "\n"
    "commands:\n"
    "  create ARCHIVE FILE...\n"
    "      writes ARCHIVE holding each FILE as an entry named by its base name\n"
    "      (at most 19 characters, no two alike), in the order given\n"
    "  list ARCHIVE\n"
    "      prints each entry's data size and name, in file order\n"
    "  extract ARCHIVE NAME [OUT]\n"
    "      writes the data of the first entry named NAME (case-sensitive) to OUT,\n"
    "      or to NAME in the current directory; OUT '-' is standard output\n";

int fail(const std::string& message) {
    std::fprintf(stderr, "kaskade-archive: %s\n", message.c_str());
    return 1;
}

int usageError() {
    std::fputs(USAGE, stderr);
    return 2;
}

std::string baseName(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

int create(int argc, char** argv) {
    if (argc < 2) {
        return usageError();
    }
    const std::string archivePath = argv[0];
    std::vector<uint8_t> archive;
    std::set<std::string> names;
    for (int i = 1; i < argc; ++i) {
        const std::string name = baseName(argv[i]);
        if (name.empty()) {
            return fail(std::string(argv[i]) + ": no file name to use as the entry name");
        }
        if (!names.insert(name).second) {
            return fail(std::string(argv[i]) + ": an entry named '" + name + "' is already in the archive");
        }
        std::vector<uint8_t> data;
        std::string error;
        if (!readWholeFile(argv[i], &data, &error) ||
            !appendArchiveEntry(archive, name, data.data(), data.size(), &error)) {
            return fail(std::string(argv[i]) + ": " + error);
        }
    }
    std::string error;
    if (!writeWholeFile(archivePath, archive, &error)) {
        std::remove(archivePath.c_str());
        return fail(error);
    }
    return 0;
}

int list(int argc, char** argv) {
    if (argc != 1) {
        return usageError();
    }
    std::vector<uint8_t> archive;
    std::string error;
    if (!readWholeFile(argv[0], &archive, &error)) {
        return fail(error);
    }
    ArchiveWalker walker{archive.data(), archive.size()};
    ArchiveEntryView entry;
    ArchiveStep step;
    while ((step = walker.next(&entry)) == ArchiveStep::Entry) {
        std::printf("%10u  %.*s\n", entry.size, static_cast<int>(entry.name.size()), entry.name.data());
    }
    if (step != ArchiveStep::End) {
        std::fflush(stdout);
        return fail(std::string(argv[0]) + ": " + describeArchiveProblem(step, entry));
    }
    return 0;
}

// Writes an entry's data to `out` ("-" for standard output).
bool writeData(const std::string& out, const ArchiveEntryView& entry, std::string* error) {
    if (out != "-") {
        return writeWholeFile(out, std::vector<uint8_t>(entry.data, entry.data + entry.size), error);
    }
    if (entry.size > 0 && std::fwrite(entry.data, 1, entry.size, stdout) != entry.size) {
        *error = "cannot write to standard output";
        return false;
    }
    return std::fflush(stdout) == 0;
}

int extract(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        return usageError();
    }
    const std::string name = argv[1];
    if (argc == 2 && (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos)) {
        return fail("entry name '" + name + "' is no file name here: give OUT");
    }
    const std::string out = argc == 3 ? argv[2] : name;
    std::vector<uint8_t> archive;
    std::string error;
    if (!readWholeFile(argv[0], &archive, &error)) {
        return fail(error);
    }
    ArchiveWalker walker{archive.data(), archive.size()};
    ArchiveEntryView entry;
    for (;;) {
        const ArchiveStep step = walker.next(&entry);
        if (step == ArchiveStep::End) {
            return fail(std::string(argv[0]) + ": no entry named '" + name + "'");
        }
        if (step != ArchiveStep::Entry) {
            return fail(std::string(argv[0]) + ": " + describeArchiveProblem(step, entry));
        }
        if (entry.name == name) {
            break;
        }
    }
    if (!writeData(out, entry, &error)) {
        return fail(error);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        return usageError();
    }
    const std::string command = argv[1];
    if (command == "--help" || command == "-h") {
        std::fputs(USAGE, stdout);
        return 0;
    }
    if (command == "create") {
        return create(argc - 2, argv + 2);
    }
    if (command == "list") {
        return list(argc - 2, argv + 2);
    }
    if (command == "extract") {
        return extract(argc - 2, argv + 2);
    }
    std::fprintf(stderr, "kaskade-archive: unknown command '%s' (try --help)\n", argv[1]);
    return 2;
}
