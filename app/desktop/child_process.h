// Helper programs of the show (the capture's encoder), started without a
// shell and in a process group of their own: the terminal's Ctrl-C reaches
// only the show, which then closes their input and lets them finish the file.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <vector>

struct ChildProcess {
    pid_t pid = -1;
    FILE* input = nullptr;  // the child's standard input, when asked for
};

// Starts argv[0] (looked up on PATH) with `argv`. With `withInput`, its
// standard input is a pipe written through `input`; otherwise /dev/null.
// pid is -1 when it could not be started.
ChildProcess startChild(const std::vector<std::string>& argv, bool withInput);

// Closes the child's input (if any) and waits for it; true when it exited with status 0.
bool finishChild(ChildProcess& child);
