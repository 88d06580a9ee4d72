// Where an inspect command reads from: a plain file, or an archive entry found
// exactly as the show finds it.
#include "resources/library.h"
#include "tools/inspect/inspect_command.h"

#include <sys/stat.h>

InspectSource parseInspectSource(const std::string& argument) {
    struct stat info {};
    if (stat(argument.c_str(), &info) == 0) {
        return {"", argument};
    }
    const size_t colon = argument.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        return {"", argument};
    }
    return {argument.substr(0, colon), argument.substr(colon + 1)};
}

FILE* openInspectSource(const InspectSource& source, uint32_t* size, std::string* error) {
    const std::string& path = source.archive.empty() ? source.name : source.archive;
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        *error = path + ": cannot open";
        return nullptr;
    }
    if (source.archive.empty()) {
        std::fseek(file, 0, SEEK_END);
        const long length = std::ftell(file);
        std::fseek(file, 0, SEEK_SET);
        *size = length > 0 && length <= INT32_MAX ? static_cast<uint32_t>(length) : length > 0 ? INT32_MAX : 0;
        return file;
    }
    char name[LIBRARY_NAME_SIZE];
    int32_t length = 0;
    const EntryLookup found = findArchiveEntry(file, source.name.c_str(), name, &length);
    if (found != EntryLookup::Found) {
        std::fclose(file);
        *error = found == EntryLookup::NameTooLong
                     ? path + ": an entry name longer than " + std::to_string(LIBRARY_NAME_SIZE - 1) +
                           " characters stands before '" + source.name + "'"
                     : path + ": no entry named '" + source.name + "'";
        return nullptr;
    }
    *size = static_cast<uint32_t>(length);
    return file;
}
