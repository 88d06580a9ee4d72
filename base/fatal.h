// Fatal reports: the one error path of every layer of the show.
//
// There is no message box on this platform: the caption and the text reach the
// user on standard error as one line, "CAPTION: text", and the process ends with
// the status the reporting layer gives (0 for the audio layer, -1 for the
// resource library, 1 for the engine).
//
// Before the process ends, the platform's give-back runs (the desktop restores
// a switched display mode there), so that no fatal report leaves the screen
// changed. Tests and fuzz targets replace the exit with a hook of their own. A hook must
// not return (it throws or jumps); if it does return, the process ends anyway,
// so a caller of fatalReport never continues.
#pragma once

// Called instead of ending the process. `hint` may be null.
using FatalHook = void (*)(const char* caption, const char* text, const char* hint, int status);

// Installs `hook` (null restores the real exit). Returns the hook it replaced.
FatalHook setFatalHook(FatalHook hook);

// What must be given back before a fatal report ends the process; null for
// nothing. Runs after the report is printed, on both exit paths.
using FatalGiveBack = void (*)();
void setFatalGiveBack(FatalGiveBack giveBack);

// How the process ends when no hook is installed.
enum class FatalExit {
    Normal,    // exit(status): exit handlers run, output is flushed
    Immediate  // _exit(status): nothing runs, nothing is flushed
};

// Prints "caption: text" (and `hint`, when given, on a line of its own) to
// standard error, then ends the process with `status`.
[[noreturn]] void fatalReport(const char* caption, const char* text, int status,
                              FatalExit how = FatalExit::Normal, const char* hint = nullptr);
