// How much memory a process holds in RAM (VmRSS of /proc/PID/status), for the
// tests that watch a long-running show for growth.
#pragma once

#include <sys/types.h>

// KiB resident for `pid`, or for this process when 0; 0 when it cannot be read.
long residentKiB(pid_t pid = 0);
