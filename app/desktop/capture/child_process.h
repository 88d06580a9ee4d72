// Helper programs of the show (the capture's encoder), started without a
// shell and in a process group of their own: the terminal's Ctrl-C reaches
// only the show, which then closes their input and lets them finish the file.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

struct ChildProcess {
    pid_t pid = -1;
    int input = -1;   // the writing end of the child's standard input, when asked for
    int input3 = -1;  // the writing end of the child's file descriptor 3, when asked for
};

// Starts argv[0] (looked up on PATH) with `argv`. `pipes` 0: standard input
// is /dev/null; 1: a pipe; 2: a pipe, and a second one on descriptor 3 (what
// ffmpeg reads as "pipe:3"). pid is -1 when it could not be started.
ChildProcess startChild(const std::vector<std::string>& argv, int pipes);

// Writes all `size` bytes to `fd`; false when the reader is gone.
bool writeAll(int fd, const void* bytes, size_t size);

// Closes the child's inputs and waits for it; true when it exited with status 0.
bool finishChild(ChildProcess& child);

// How the child ended, without reaping it: "exited with status 1", "was
// killed by signal 9 (Killed)"; "runs" while it runs.
std::string childState(const ChildProcess& child);
