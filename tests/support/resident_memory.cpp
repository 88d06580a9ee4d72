#include "tests/support/resident_memory.h"

#include <fstream>
#include <string>

long residentKiB(pid_t pid) {
    std::ifstream status("/proc/" + (pid == 0 ? std::string("self") : std::to_string(pid)) + "/status");
    std::string word;
    long kib = 0;
    while (status >> word) {
        if (word == "VmRSS:") {
            status >> kib;
        }
    }
    return kib;
}
