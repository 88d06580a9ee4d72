#include "app/desktop/signals.h"

#include "app/desktop/display/display_guard.h"
#include "app/desktop/display/display_mode.h"
#include "app/sequencer.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>

namespace {

// Written by the handlers on whichever thread takes a signal: lock-free atomics.
std::atomic<int> g_endSignal{0};      // the ending signal that started the end, if one did
std::atomic<int> g_laterSignal{0};    // one that came while the end was already under way
std::atomic<bool> g_endPathRunning{false};
std::atomic<pid_t> g_child{0};
std::atomic<const char*> g_fileToRemove{nullptr};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<pid_t>::is_always_lock_free &&
              std::atomic<const char*>::is_always_lock_free);

constexpr int ENDING_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int CRASH_SIGNALS[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
constexpr unsigned CRASH_RESTORE_SECONDS = 2;

[[noreturn]] void endAtOnce(int signal) {
    const pid_t child = g_child.load();
    if (child > 0) {
        kill(child, SIGTERM);
    }
    if (const char* file = g_fileToRemove.load()) {
        unlink(file);
    }
    _exit(128 + signal);
}

// The first ending signal ends the show at the next frame, or lets an end
// already under way finish; only a second one ends the process at once.
void onEndingSignal(int signal) {
    if (g_endSignal.load() != 0 || g_laterSignal.load() != 0) {
        endAtOnce(signal);
    }
    if (g_endPathRunning.load()) {
        g_laterSignal.store(signal);
        return;
    }
    g_endSignal.store(signal);
    g_endRequested.store(true);
}

void onCrash(int signal) {
    if (!displayGuardRestoreNow()) {
        // No guard to ask (it was killed): restore through a connection of
        // our own, which a crash inside the show's own X calls cannot block;
        // the alarm ends the process should anything else hang.
        alarm(CRASH_RESTORE_SECONDS);
        restoreDisplayModeAfterCrash();
    }
    // The signal's own ending: the default action, raised again on return (a
    // fault repeats at its instruction; a sent signal is raised here).
    struct sigaction fallback {};
    fallback.sa_handler = SIG_DFL;
    sigaction(signal, &fallback, nullptr);
    raise(signal);
}

// Restarting interrupted calls keeps a frame half-written to the capture's
// encoder from being cut short by Ctrl-C.
void install(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}  // namespace

void installEndSignals() {
    for (int signal : ENDING_SIGNALS) {
        install(signal, onEndingSignal);
    }
    install(SIGPIPE, SIG_IGN);
}

void installCrashGiveBack() {
    for (int signal : CRASH_SIGNALS) {
        install(signal, onCrash);
    }
}

void endPathStarted() { g_endPathRunning.store(true); }

void setChildToStopOnExit(pid_t child) { g_child.store(child); }

void setFileToRemoveOnExit(const char* path) { g_fileToRemove.store(path); }

int endPathExitStatus() {
    const int signal = g_endSignal.load();
    return signal != 0 ? 128 + signal : 0;
}
