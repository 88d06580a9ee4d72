// The ways the process is told to stop from outside, and what they do.
//
// SIGINT, SIGTERM and SIGHUP end the show like Escape: at the next frame the
// end path runs (display restored, music closed, a capture completed, the
// "fps: " line printed), and the exit status is 128 + the signal's number, as
// shells expect. One that comes while the end path already runs (after Escape,
// a closed window or the last part) lets it finish with its own status. Only a
// second one ends the process at once (a switched screen is then given back by
// the guard). The handlers may run on any thread: they touch lock-free atomics only.
//
// SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGABRT, once the display mode is
// switched: the guard restores the mode (or, when the guard is gone, the
// handler itself, within two seconds), then the signal ends the process with
// its usual status.
#pragma once

#include <sys/types.h>

// Installs the handlers of the ending signals and ignores SIGPIPE (a capture
// encoder that dies makes its writes fail instead of killing the show).
void installEndSignals();

// Installs the crash handlers that give the screen back (before a mode switch:
// with nothing switched they only end the process as the signal would).
void installCrashGiveBack();

// The end path has started: a further ending signal ends the process at once.
void endPathStarted();

// A helper process (the capture's encoder) to stop when the process ends at
// once; 0 for none.
void setChildToStopOnExit(pid_t child);

// A file to remove when the process ends at once (a PNG frame being written
// under its temporary name); null for none. `path` must outlive the setting.
void setFileToRemoveOnExit(const char* path);

// The exit status of the end path: 0, or 128 + the signal that ended the show.
int endPathExitStatus();
