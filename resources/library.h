// The resource library: the open archive every image and scene is read from.
//
// An archive is a plain sequence of entries (resources/archive_format.h). A
// look-up reopens the archive and walks it from the first byte until a name
// matches, leaving `file` at that entry's first data byte. A reader of the entry
// then uses fread/fgetc/fseek/ftell on `file` and keeps within `entrySize` bytes
// itself; the next seekEntry or close invalidates the position.
//
// Every failure is fatal: libraryFatal reports it under "KOBALT LIBRARY ERROR"
// and the process ends with status -1. Only the GLUT thread uses a Library.
#pragma once

#include <cstdint>
#include <cstdio>

// Capacity of the name buffers: 19 characters and the terminating zero.
constexpr int LIBRARY_NAME_SIZE = 20;

struct Library {
    FILE* file;                    // the archive, opened "rb"; null when closed
    char name[LIBRARY_NAME_SIZE];  // archive file name given to open, kept for rewind
    int32_t entrySize;             // length field of the entry read last

    // Opens the archive `name` (at most 19 characters; a longer name is a
    // library error naming it), found as base/data_path.h finds data files:
    // the working directory first. Failure: "cannot open library". The record
    // needs no initialisation before this.
    void open(const char* name);
    // Closes the archive; afterwards the record may only be opened again.
    void close();
    // Closes and reopens the archive so the next read starts at its first byte.
    // Failure: "cannot rewind library".
    void rewind();
    // Positions `file` at the first data byte of the first entry named exactly
    // `entryName` (case-sensitive) and sets `entrySize` to its data length.
    // Failure: "File not found : NAME", also for a truncated archive; an entry
    // name longer than 19 characters met on the way is a library error naming it.
    void seekEntry(const char* entryName);
    // seekEntry, then decodePcx (resources/pcx_decoder.h) into `pixels`, a buffer
    // of width x height pixels, 4 bytes each (blue, green, red, untouched).
    void loadPcx(const char* entryName, uint8_t* pixels, int width, int height);
};

// Where seekEntry reads each entry's name while walking the archive.
extern char g_entryName[LIBRARY_NAME_SIZE];

// The look-up itself, which the tools share so that they find an entry exactly
// as the show does. Walks `file` from its current position (an archive's first
// byte) entry by entry, reading each name into `nameBuffer` (LIBRARY_NAME_SIZE
// bytes), until a name equals `entryName`. Found: `file` is at the entry's
// first data byte and *size holds its length field; the data may be cut short
// by the end of the file, which its reader then meets. NotFound also covers an
// archive that ends inside a name or a length. NameTooLong: a name met on the
// way fills all LIBRARY_NAME_SIZE places of `nameBuffer` without its zero.
enum class EntryLookup { Found, NotFound, NameTooLong };
EntryLookup findArchiveEntry(FILE* file, const char* entryName, char* nameBuffer, int32_t* size);

// Reports `text` under the caption "KOBALT LIBRARY ERROR" and ends the process
// with status -1.
[[noreturn]] void libraryFatal(const char* text);
