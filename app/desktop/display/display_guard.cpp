#include "app/desktop/display/display_guard.h"

#include "app/part_log.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

// Messages on the command pipe, one byte each.
constexpr char RELEASE = 'D';      // the show restored the mode itself
constexpr char RESTORE_NOW = 'R';  // restore now and answer on the reply pipe
constexpr char RESTORED = 'A';     // the guard's answer
constexpr int RESTORE_WAIT_MS = 2000;

// The show's ends of the two pipes; -1 when no guard runs.
volatile int g_commands = -1;
volatile int g_replies = -1;

// Signals that must not reach the guard through handlers it inherits: the
// ending ones (blocked across the fork) and the crash ones (reset to default).
constexpr int ENDING_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr int CRASH_SIGNALS[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// Gives the show's CRTC back through a connection of the guard's own, by the
// show's rule, and says why not as the show would.
void restore(const TakenCrtc& taken) {
    if (Display* display = XOpenDisplay(nullptr)) {
        std::string why;
        giveBackCrtc(display, taken, &why);
        if (g_verbose && !why.empty()) {
            std::fprintf(stderr, "kaskade: %s\n", why.c_str());
        }
        XCloseDisplay(display);
    }
}

// The guard's side: waits for commands until the pipe closes.
[[noreturn]] void guard(const TakenCrtc& taken, int commands, int replies) {
    for (;;) {
        char command = 0;
        const ssize_t got = read(commands, &command, 1);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got == 1 && command == RELEASE) {
            _exit(0);
        }
        restore(taken);
        if (got == 1 && command == RESTORE_NOW) {
            const ssize_t written = write(replies, &RESTORED, 1);
            (void)written;
            continue;
        }
        _exit(0);  // end of file: the show is gone
    }
}

// In the new process: out of the terminal's reach, holding only its two pipe ends.
[[noreturn]] void becomeGuard(const TakenCrtc& taken, int commands, int replies) {
    setpgid(0, 0);
    // Its own name: `killall kaskade` (even -9) must not take the guard with the show.
    prctl(PR_SET_NAME, "kaskade-guard");
    for (int signal : ENDING_SIGNALS) {
        ::signal(signal, SIG_IGN);
    }
    for (int signal : CRASH_SIGNALS) {
        ::signal(signal, SIG_DFL);
    }
    ::signal(SIGPIPE, SIG_IGN);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // Standard input and output are the show's: a reader waiting for their
    // end must not wait for the guard.
    const int null = open("/dev/null", O_RDWR);
    dup2(null, STDIN_FILENO);
    dup2(null, STDOUT_FILENO);
    // Moved above 3 and 4 first, so that neither lands on the other.
    const int commandsHigh = fcntl(commands, F_DUPFD, 10);
    const int repliesHigh = fcntl(replies, F_DUPFD, 10);
    dup2(commandsHigh, 3);
    dup2(repliesHigh, 4);
    // Everything else goes, the show's X connection included.
    closefrom(5);
    guard(taken, 3, 4);
}

// Forks the guard through a short-lived middle process, so that the guard is
// init's child, not the show's. The ending signals stay blocked from before
// the fork until the guard ignores them. The guard's pid, or -1.
bool forkGuard(const TakenCrtc& taken, int commands, int replies) {
    sigset_t ending;
    sigset_t before;
    sigemptyset(&ending);
    for (int signal : ENDING_SIGNALS) {
        sigaddset(&ending, signal);
    }
    sigprocmask(SIG_BLOCK, &ending, &before);
    const pid_t middle = fork();
    if (middle == 0) {
        const pid_t guardPid = fork();
        if (guardPid == 0) {
            becomeGuard(taken, commands, replies);
        }
        _exit(guardPid > 0 ? 0 : 1);
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    if (middle < 0) {
        return false;
    }
    int status = 0;
    while (waitpid(middle, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

bool startDisplayGuard(const TakenCrtc& taken) {
    int commands[2];
    int replies[2];
    if (pipe2(commands, O_CLOEXEC) != 0) {
        return false;
    }
    if (pipe2(replies, O_CLOEXEC) != 0) {
        close(commands[0]);
        close(commands[1]);
        return false;
    }
    const bool started = forkGuard(taken, commands[0], replies[1]);
    close(commands[0]);
    close(replies[1]);
    if (!started) {
        close(commands[1]);
        close(replies[0]);
        return false;
    }
    g_commands = commands[1];
    g_replies = replies[0];
    return true;
}

void displayGuardRelease() {
    if (g_commands < 0) {
        return;
    }
    const ssize_t written = write(g_commands, &RELEASE, 1);
    (void)written;
    close(g_commands);
    close(g_replies);
    g_commands = -1;
    g_replies = -1;
}

bool displayGuardRestoreNow() {
    const int commands = g_commands;
    const int replies = g_replies;
    if (commands < 0 || write(commands, &RESTORE_NOW, 1) != 1) {
        return false;
    }
    pollfd answer{replies, POLLIN, 0};
    char reply = 0;
    return poll(&answer, 1, RESTORE_WAIT_MS) == 1 && read(replies, &reply, 1) == 1 && reply == RESTORED;
}
