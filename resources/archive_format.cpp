#include "resources/archive_format.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

uint32_t readU32(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

void appendU32(std::vector<uint8_t>& out, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        out.push_back(static_cast<uint8_t>(value >> shift));
    }
}

}  // namespace

bool appendArchiveEntry(std::vector<uint8_t>& archive, std::string_view name, const uint8_t* data, size_t size,
                        std::string* error) {
    if (name.size() > ARCHIVE_NAME_MAX) {
        *error = "entry name longer than " + std::to_string(ARCHIVE_NAME_MAX) + " characters: " + std::string(name);
        return false;
    }
    if (name.find('\0') != std::string_view::npos) {
        *error = "entry name holds a zero byte";
        return false;
    }
    if (size > ARCHIVE_DATA_MAX) {
        *error = "entry " + std::string(name) + " is larger than " + std::to_string(ARCHIVE_DATA_MAX) + " bytes";
        return false;
    }
    archive.insert(archive.end(), name.begin(), name.end());
    archive.push_back(0);
    appendU32(archive, static_cast<uint32_t>(size));
    if (size > 0) {
        archive.insert(archive.end(), data, data + size);
    }
    return true;
}

ArchiveStep ArchiveWalker::next(ArchiveEntryView* entry) {
    *entry = ArchiveEntryView{};
    entry->offset = position;
    if (position >= size) {
        return ArchiveStep::End;
    }
    const size_t left = size - position;
    const uint8_t* start = bytes + position;
    // Looks for the zero byte among at most ARCHIVE_NAME_MAX + 1 bytes.
    const size_t window = left < ARCHIVE_NAME_MAX + 1 ? left : ARCHIVE_NAME_MAX + 1;
    const void* zero = std::memchr(start, 0, window);
    if (zero == nullptr) {
        entry->name = std::string_view(reinterpret_cast<const char*>(start), window);
        return window > ARCHIVE_NAME_MAX ? ArchiveStep::NameTooLong : ArchiveStep::NameCutShort;
    }
    const size_t nameLength = static_cast<const uint8_t*>(zero) - start;
    entry->name = std::string_view(reinterpret_cast<const char*>(start), nameLength);
    const size_t lengthOffset = nameLength + 1;
    if (left - lengthOffset < 4) {
        return ArchiveStep::LengthCutShort;
    }
    entry->size = readU32(start + lengthOffset);
    entry->dataOffset = position + lengthOffset + 4;
    entry->data = bytes + entry->dataOffset;
    entry->available = size - entry->dataOffset;
    if (entry->available < entry->size) {
        return ArchiveStep::DataCutShort;
    }
    entry->available = entry->size;
    position = entry->dataOffset + entry->size;
    return ArchiveStep::Entry;
}

std::string describeArchiveProblem(ArchiveStep step, const ArchiveEntryView& entry) {
    const std::string at = " at offset " + std::to_string(entry.offset);
    const std::string name(entry.name);
    switch (step) {
        case ArchiveStep::NameTooLong:
            return "entry name longer than " + std::to_string(ARCHIVE_NAME_MAX) + " characters (" + name + "...)" + at;
        case ArchiveStep::NameCutShort:
            return "archive ends inside an entry name" + at;
        case ArchiveStep::LengthCutShort:
            return "archive ends inside the length of entry '" + name + "'" + at;
        case ArchiveStep::DataCutShort:
            return "entry '" + name + "'" + at + " is cut short: " + std::to_string(entry.available) + " of " +
                   std::to_string(entry.size) + " data bytes present";
        case ArchiveStep::Entry:
        case ArchiveStep::End:
            break;
    }
    return "no problem";
}

bool readWholeFile(const std::string& path, std::vector<uint8_t>* bytes, std::string* error) {
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        *error = path + ": " + std::strerror(errno);
        return false;
    }
    bytes->clear();
    uint8_t buffer[65536];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        bytes->insert(bytes->end(), buffer, buffer + got);
    }
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) {
        *error = path + ": read error";
        return false;
    }
    return true;
}

bool writeWholeFile(const std::string& path, const std::vector<uint8_t>& bytes, std::string* error) {
    FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        *error = path + ": " + std::strerror(errno);
        return false;
    }
    const bool written = bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    const bool closed = std::fclose(file) == 0;
    if (!written || !closed) {
        *error = path + ": write error";
        return false;
    }
    return true;
}
