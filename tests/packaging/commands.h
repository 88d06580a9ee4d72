// Commands run as a person runs them, from a shell, and directories of their
// own: what the packaging tests share.
#pragma once

#include <string>

struct CommandResult {
    int status = -1;     // the exit status; -1 when a signal ended it
    std::string output;  // standard output and standard error, together
};

// Runs `command` with sh -c.
CommandResult runCommand(const std::string& command);
std::string shellQuoted(const std::string& text);

// A fresh empty directory, removed with everything in it when the object goes
// (on a failed test too).
class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};
