// One generated file of the show's content: an archive entry or the soundtrack.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ContentEntry {
    std::string name;            // archive entry name (at most 19 characters) or file name
    std::vector<uint8_t> bytes;  // the file's contents
};
