// The archive format, for the tools that write and list archives.
//
// An archive is a plain sequence of entries to the end of the file, with no
// header, count or end marker. One entry:
//   name    1..20 bytes: up to ARCHIVE_NAME_MAX characters, then a zero byte
//   length  4 bytes, unsigned little-endian: the number of data bytes
//   data    `length` bytes
// The show itself reads archives through Library (resources/library.h); this
// file lets tools build and walk them in memory without ever reading out of
// bounds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Characters of an entry name, without the terminating zero byte.
constexpr size_t ARCHIVE_NAME_MAX = 19;
// Largest data length: the show keeps an entry's length in a signed 32-bit field.
constexpr size_t ARCHIVE_DATA_MAX = 0x7FFFFFFF;

// Appends one entry to `archive`. Returns false, leaves `archive` as it was and
// fills `error` when the name has more than ARCHIVE_NAME_MAX characters or a
// zero byte, or the data is longer than ARCHIVE_DATA_MAX. An empty name is
// valid (the show never finds such an entry by name).
bool appendArchiveEntry(std::vector<uint8_t>& archive, std::string_view name, const uint8_t* data, size_t size,
                        std::string* error);

// One entry found by ArchiveWalker. `data` points into the walked bytes.
struct ArchiveEntryView {
    std::string_view name;  // without the zero byte; points into the walked bytes
    size_t offset = 0;      // offset of the name's first byte in the archive
    size_t dataOffset = 0;  // offset of the first data byte
    uint32_t size = 0;      // data length from the length field
    size_t available = 0;   // data bytes present: `size`, or fewer for DataCutShort
    const uint8_t* data = nullptr;
};

enum class ArchiveStep {
    Entry,           // a complete entry was found
    End,             // the bytes ended exactly after the previous entry
    NameTooLong,     // a name runs past ARCHIVE_NAME_MAX characters
    NameCutShort,    // the bytes end inside a name
    LengthCutShort,  // the bytes end inside a length field
    DataCutShort     // the bytes end inside an entry's data
};

// Walks archive bytes held in memory, entry by entry in file order. After any
// step other than Entry the walk stays where it is and reports the same again.
struct ArchiveWalker {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    size_t position = 0;  // offset of the next entry's name

    // Reads the next entry into `entry`. For NameTooLong, NameCutShort,
    // LengthCutShort and DataCutShort, `entry` still describes what was read
    // (name up to ARCHIVE_NAME_MAX + 1 characters, offsets; size when known).
    ArchiveStep next(ArchiveEntryView* entry);
};

// One line describing a step other than Entry and End, e.g.
// "entry name longer than 19 characters at offset 120".
std::string describeArchiveProblem(ArchiveStep step, const ArchiveEntryView& entry);

// Whole-file helpers for the tools. Both return false and fill `error` on failure.
bool readWholeFile(const std::string& path, std::vector<uint8_t>* bytes, std::string* error);
bool writeWholeFile(const std::string& path, const std::vector<uint8_t>& bytes, std::string* error);
