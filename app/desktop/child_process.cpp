#include "app/desktop/child_process.h"

#include "app/desktop/signals.h"

#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

ChildProcess startChild(const std::vector<std::string>& argv, bool withInput) {
    ChildProcess child;
    int pipeEnds[2] = {-1, -1};
    if (withInput && pipe2(pipeEnds, O_CLOEXEC) != 0) {
        return child;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (withInput) {
        posix_spawn_file_actions_adddup2(&actions, pipeEnds[0], STDIN_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
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
    if (withInput) {
        close(pipeEnds[0]);
    }
    if (failed != 0) {
        if (withInput) {
            close(pipeEnds[1]);
        }
        return child;
    }
    child.pid = pid;
    if (withInput) {
        child.input = fdopen(pipeEnds[1], "w");
    }
    setChildToStopOnExit(pid);
    return child;
}

bool finishChild(ChildProcess& child) {
    if (child.input != nullptr) {
        std::fclose(child.input);
        child.input = nullptr;
    }
    if (child.pid <= 0) {
        return false;
    }
    int status = 0;
    pid_t waited = -1;
    do {
        waited = waitpid(child.pid, &status, 0);
    } while (waited < 0 && errno == EINTR);
    setChildToStopOnExit(0);
    child.pid = -1;
    return waited > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
