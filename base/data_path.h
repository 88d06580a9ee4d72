// Where the show's data files ("3d", "harbour.mp3") are read from.
//
// A name is looked for in the working directory first, where the show has
// always read its files, then in each directory the platform added, in the
// order added (the desktop adds ../share/kaskade beside the program, then the
// data directory it was built for). The first place that holds a readable
// regular file gives the path to open. When no place holds it, the bare name
// comes back, so that opening it fails and reports exactly as it always has.
#pragma once

#include <string>

// Adds `directory` to the places looked in, after those added before.
// `place` says in words what it is, for the report: "beside the program".
void addDataDirectory(const std::string& directory, const std::string& place);
// Forgets the added directories and which names were reported.
void clearDataDirectories();

// Told once per name, on the first look-up that finds it: the name, the
// absolute path it was found at and the place's words ("the working
// directory" for the first place). Null: nobody is told.
using DataFileReport = void (*)(const char* name, const std::string& path, const std::string& place);
void setDataFileReport(DataFileReport report);

// The path to open for the data file `name`: `name` itself when the working
// directory holds it (or no place does), otherwise DIRECTORY/name. A name
// with a '/' in it is a path already and comes back unchanged.
std::string dataFilePath(const char* name);
