// How much memory a process holds: in RAM (VmRSS of /proc/PID/status), for the
// tests that watch a long-running show for growth from outside, and on this
// process's heap, for the tests that watch it from inside.
#pragma once

#include <cstddef>
#include <sys/types.h>

// KiB resident for `pid`, or for this process when 0; 0 when it cannot be read.
long residentKiB(pid_t pid = 0);

// Bytes this process has allocated and not yet freed. Unlike the resident size
// it does not count freed memory the allocator keeps (the sanitizers hold
// freed blocks back for hundreds of megabytes), so it grows only with a leak.
size_t heapInUseBytes();
