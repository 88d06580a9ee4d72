#include "resources/library.h"

#include <cstring>
#include <memory>

#include "base/data_path.h"
#include "base/fatal.h"
#include "resources/pcx_decoder.h"

char g_entryName[LIBRARY_NAME_SIZE];

namespace {

// "File not found : " (17 characters), a name of up to 162 characters and the zero.
constexpr size_t LIBRARY_TEXT_SIZE = 180;

// Formats a failure that names something into a heap buffer of LIBRARY_TEXT_SIZE
// bytes (longer names are cut) and reports it. The buffer is released when a
// test hook unwinds through here; on the real path the process ends anyway.
template <typename... Args>
[[noreturn]] void libraryFatalf(const char* format, Args... args) {
    std::unique_ptr<char[]> text(new char[LIBRARY_TEXT_SIZE]);
    std::snprintf(text.get(), LIBRARY_TEXT_SIZE, format, args...);
    libraryFatal(text.get());
}

uint32_t readU32(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

// Reads one zero-terminated entry name into `name`, byte by byte. Returns
// false at the end of the archive (reading past the last entry yields EOF,
// which is not zero, and the end-of-file indicator is then set) and false
// with *tooLong when all LIBRARY_NAME_SIZE places hold characters.
bool readEntryName(FILE* file, char* name, bool* tooLong) {
    int index = 0;
    name[0] = static_cast<char>(std::fgetc(file));
    while (name[index] != 0) {
        if (std::feof(file) || std::ferror(file)) {
            return false;
        }
        if (index == LIBRARY_NAME_SIZE - 1) {
            *tooLong = true;
            return false;
        }
        ++index;
        name[index] = static_cast<char>(std::fgetc(file));
    }
    return true;
}

}  // namespace

void libraryFatal(const char* text) { fatalReport("KOBALT LIBRARY ERROR", text, -1); }

void Library::open(const char* archiveName) {
    file = nullptr;
    const size_t length = std::strlen(archiveName);
    if (length >= sizeof name) {
        libraryFatalf("library name too long : %s", archiveName);
    }
    std::memcpy(name, archiveName, length + 1);
    file = std::fopen(dataFilePath(name).c_str(), "rb");
    if (file == nullptr) {
        libraryFatal("cannot open library");
    }
}

void Library::close() {
    if (file != nullptr) {
        std::fclose(file);
    }
    file = nullptr;
}

void Library::rewind() {
    close();
    file = std::fopen(dataFilePath(name).c_str(), "rb");
    if (file == nullptr) {
        libraryFatal("cannot rewind library");
    }
}

EntryLookup findArchiveEntry(FILE* file, const char* entryName, char* nameBuffer, int32_t* size) {
    for (;;) {
        bool tooLong = false;
        uint8_t length[4];
        if (!readEntryName(file, nameBuffer, &tooLong)) {
            return tooLong ? EntryLookup::NameTooLong : EntryLookup::NotFound;
        }
        if (std::fread(length, 1, sizeof length, file) != sizeof length) {
            return EntryLookup::NotFound;
        }
        const uint32_t dataLength = readU32(length);
        *size = static_cast<int32_t>(dataLength);
        if (std::strcmp(nameBuffer, entryName) == 0) {
            return EntryLookup::Found;
        }
        // Skipped as unsigned, so every step moves forward and a walk always ends;
        // a skip past the end of the file makes the next name read meet EOF.
        std::fseek(file, static_cast<long>(dataLength), SEEK_CUR);
    }
}

void Library::seekEntry(const char* entryName) {
    rewind();
    switch (findArchiveEntry(file, entryName, g_entryName, &entrySize)) {
    case EntryLookup::Found:
        return;
    case EntryLookup::NameTooLong:
        libraryFatalf("entry name too long : %.*s...", LIBRARY_NAME_SIZE, g_entryName);
    case EntryLookup::NotFound:
        libraryFatalf("File not found : %s", entryName);
    }
}

void Library::loadPcx(const char* entryName, uint8_t* pixels, int width, int height) {
    seekEntry(entryName);
    decodePcx(file, static_cast<uint32_t>(entrySize), pixels, width, height);
}
