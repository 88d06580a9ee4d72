// Where the desktop show finds "3d" and "harbour.mp3" when the working
// directory does not hold them (base/data_path.h): first share/kaskade beside
// the program's own bin/ directory, found through /proc/self/exe, so that an
// installed tree works wherever it is unpacked; then the data directory the
// program was built for (KASKADE_DATA_DIR).
#pragma once

#include <string>

// `executable`'s directory's ../share/kaskade, lexically normalised:
// "/opt/k/bin/kaskade" gives "/opt/k/share/kaskade".
std::string dataDirectoryBeside(const std::string& executable);

// Adds both places to the data path; with `verbose`, every data file says
// once on standard error which path it was read from.
void addShowDataDirectories(bool verbose);
