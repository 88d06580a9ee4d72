#include "app/desktop/display_guard.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace {

// Messages on the command pipe, one byte each.
constexpr char RELEASE = 'D';      // the show restored the mode itself
constexpr char RESTORE_NOW = 'R';  // restore now and answer on the reply pipe
constexpr char RESTORED = 'A';     // the guard's answer
constexpr int RESTORE_WAIT_MS = 2000;

// The show's ends of the two pipes; -1 when no guard runs.
volatile int g_commands = -1;
volatile int g_replies = -1;

// The guard's side: waits for commands until the pipe closes.
[[noreturn]] void guard(ScreenMode original, int commands, int replies) {
    for (;;) {
        char command = 0;
        const ssize_t got = read(commands, &command, 1);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got == 1 && command == RELEASE) {
            _exit(0);
        }
        applyScreenMode(original);
        if (got == 1 && command == RESTORE_NOW) {
            const ssize_t written = write(replies, &RESTORED, 1);
            (void)written;
            continue;
        }
        _exit(0);  // end of file: the show is gone
    }
}

// In the new process: out of the terminal's reach, holding only its two pipe ends.
void becomeGuard(ScreenMode original, int commands, int replies) {
    setpgid(0, 0);
    signal(SIGINT, SIG_IGN);
    signal(SIGTERM, SIG_IGN);
    signal(SIGHUP, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
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
    closefrom(5);
    guard(original, 3, 4);
}

}  // namespace

bool startDisplayGuard(ScreenMode original) {
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
    const pid_t pid = fork();
    if (pid == 0) {
        becomeGuard(original, commands[0], replies[1]);
    }
    close(commands[0]);
    close(replies[1]);
    if (pid < 0) {
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

void displayGuardRestoreNow() {
    const int commands = g_commands;
    const int replies = g_replies;
    if (commands < 0 || write(commands, &RESTORE_NOW, 1) != 1) {
        return;
    }
    pollfd answer{replies, POLLIN, 0};
    char reply = 0;
    if (poll(&answer, 1, RESTORE_WAIT_MS) == 1) {
        const ssize_t got = read(replies, &reply, 1);
        (void)got;
    }
}
