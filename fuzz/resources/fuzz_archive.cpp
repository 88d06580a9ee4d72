// Walks arbitrary bytes as an archive through Library, looking up a few names
// and decoding the image entries it finds.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <vector>

#include "fuzz/fatal_thrown.h"
#include "resources/library.h"

namespace {

// The library reopens its archive by name for every look-up, so the bytes live
// in a memory file with a short path of its own ("/proc/self/fd/N").
int g_archiveFd = -1;
char g_archivePath[LIBRARY_NAME_SIZE];

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setFatalHook(throwFatal);
    g_archiveFd = memfd_create("archive", 0);
    std::snprintf(g_archivePath, sizeof g_archivePath, "/proc/self/fd/%d", g_archiveFd);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (ftruncate(g_archiveFd, 0) != 0 || (size > 0 && pwrite(g_archiveFd, data, size, 0) != static_cast<ssize_t>(size))) {
        return 0;
    }
    Library library{};
    try {
        library.open(g_archivePath);
    } catch (const FatalThrown&) {
        return 0;
    }
    // An exact-size buffer, so the sanitizers see any write past it.
    std::vector<uint8_t> pixels(37 * 23 * 4);
    for (const char* name : {"objects.pcx", "test.3ds", "a", "", "mark12.pcx"}) {
        try {
            library.seekEntry(name);
            if (library.entrySize >= 0 && std::fgetc(library.file) != EOF) {
                library.loadPcx(name, pixels.data(), 37, 23);
            }
        } catch (const FatalThrown&) {
        }
    }
    library.close();
    return 0;
}
