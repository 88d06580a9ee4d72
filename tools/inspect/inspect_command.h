// Sub-commands of kaskade-inspect. Each command lives in a file of its own and
// registers itself with a static InspectCommand, so adding one touches no other file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

struct InspectCommand {
    const char* name;   // first argument that selects the command, e.g. "pcx"
    const char* usage;  // arguments after the name, e.g. "IMAGE OUT.png"
    const char* about;  // one line for --help
    // argv[0] is the command name; returns the process exit status.
    int (*run)(int argc, char** argv);

    InspectCommand(const char* name, const char* usage, const char* about, int (*run)(int, char**));
};

// A source of bytes named on the command line: a plain file "PATH", or an
// archive entry "ARCHIVE:NAME" when PATH itself does not exist and the part
// before the last ':' names an archive.
struct InspectSource {
    std::string archive;  // empty for a plain file
    std::string name;     // the file path, or the entry name inside `archive`
};
InspectSource parseInspectSource(const std::string& argument);

// Opens `source` for reading: a plain file at its first byte, with *size its
// length; an archive entry found by the show's own look-up (resources/library.h),
// at its first data byte, with *size its length field (the data may be cut
// short by the end of the archive, as the show would meet it). Null and
// `error` ("PATH: cannot open", "ARCHIVE: no entry named 'NAME'") on failure.
FILE* openInspectSource(const InspectSource& source, uint32_t* size, std::string* error);
