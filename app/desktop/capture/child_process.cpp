#include "app/desktop/capture/child_process.h"

#include "app/desktop/signals.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

constexpr int PIPE_BYTES = 1 << 20;

void closeBoth(int ends[2]) {
    for (int i = 0; i < 2; ++i) {
        if (ends[i] >= 0) {
            close(ends[i]);
            ends[i] = -1;
        }
    }
}

}  // namespace

ChildProcess startChild(const std::vector<std::string>& argv, int pipes) {
    ChildProcess child;
    int stdinEnds[2] = {-1, -1};
    int fd3Ends[2] = {-1, -1};
    if ((pipes >= 1 && pipe2(stdinEnds, O_CLOEXEC) != 0) || (pipes >= 2 && pipe2(fd3Ends, O_CLOEXEC) != 0)) {
        closeBoth(stdinEnds);
        return child;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (pipes >= 1) {
        posix_spawn_file_actions_adddup2(&actions, stdinEnds[0], STDIN_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    if (pipes >= 2) {
        posix_spawn_file_actions_adddup2(&actions, fd3Ends[0], 3);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);

    std::vector<char*> arguments;
    for (const std::string& argument : argv) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    pid_t pid = -1;
    const int failed = posix_spawnp(&pid, arguments[0], &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) {
        closeBoth(stdinEnds);
        closeBoth(fd3Ends);
        return child;
    }
    if (stdinEnds[0] >= 0) {
        close(stdinEnds[0]);
    }
    if (fd3Ends[0] >= 0) {
        close(fd3Ends[0]);
    }
    child.pid = pid;
    // A frame is a megabyte or more: a larger pipe takes it in fewer steps.
    if (stdinEnds[1] >= 0) {
        fcntl(stdinEnds[1], F_SETPIPE_SZ, PIPE_BYTES);
    }
    child.input = stdinEnds[1];
    child.input3 = fd3Ends[1];
    setChildToStopOnExit(pid);
    return child;
}

bool writeAll(int fd, const void* bytes, size_t size) {
    const char* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = write(fd, next, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        next += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

bool finishChild(ChildProcess& child) {
    for (int* fd : {&child.input, &child.input3}) {
        if (*fd >= 0) {
            close(*fd);
            *fd = -1;
        }
    }
    if (child.pid <= 0) {
        return false;
    }
    // Wait without reaping, forget the pid, then reap: until it is reaped the
    // pid cannot be given to another process, so a second Ctrl-C in between
    // never signals a stranger.
    siginfo_t ended{};
    int waited = -1;
    do {
        waited = waitid(P_PID, static_cast<id_t>(child.pid), &ended, WEXITED | WNOWAIT);
    } while (waited < 0 && errno == EINTR);
    setChildToStopOnExit(0);
    int status = 0;
    pid_t reaped = -1;
    do {
        reaped = waitpid(child.pid, &status, 0);
    } while (reaped < 0 && errno == EINTR);
    child.pid = -1;
    return reaped > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string childState(const ChildProcess& child) {
    siginfo_t ended{};
    if (child.pid <= 0 ||
        waitid(P_PID, static_cast<id_t>(child.pid), &ended, WEXITED | WNOHANG | WNOWAIT) != 0 || ended.si_pid == 0) {
        return "runs";
    }
    if (ended.si_code == CLD_EXITED) {
        return "exited with status " + std::to_string(ended.si_status);
    }
    return "was killed by signal " + std::to_string(ended.si_status) + " (" + strsignal(ended.si_status) + ")";
}
