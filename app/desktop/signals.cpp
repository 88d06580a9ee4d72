#include "app/desktop/signals.h"

#include "app/desktop/display_guard.h"
#include "app/sequencer.h"

#include <signal.h>
#include <unistd.h>

namespace {

volatile sig_atomic_t g_endSignal = 0;     // the first ending signal
volatile sig_atomic_t g_endPathRunning = 0;
volatile sig_atomic_t g_child = 0;

constexpr int ENDING_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int CRASH_SIGNALS[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

void onEndingSignal(int signal) {
    if (g_endSignal != 0 || g_endPathRunning) {
        if (g_child > 0) {
            kill(static_cast<pid_t>(g_child), SIGTERM);
        }
        _exit(128 + signal);
    }
    g_endSignal = signal;
    g_endRequested = 1;
}

void onCrash(int signal) {
    displayGuardRestoreNow();
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

void endPathStarted() { g_endPathRunning = 1; }

void setChildToStopOnExit(pid_t child) { g_child = child; }

int endPathExitStatus() { return g_endSignal != 0 ? 128 + g_endSignal : 0; }
