// An installed kaskade run as a person runs it, from a shell in a directory
// of their own: what the packaging tests share.
#pragma once

#include <string>
#include <vector>

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

// Runs PREFIX/bin/kaskade --fps 4 --part 13 --nosound --verbose with
// --capture CWD/frames, in the directory CWD.
CommandResult capturePart13(const std::string& prefix, const std::string& cwd);

// Part 13's middle frame in the frames capturePart13 wrote into CWD/frames,
// against tests/data/frames/part13.png: empty when they match as the
// regression test counts a match, else what differs.
std::string part13AgainstReference(const std::string& cwd);

// The tools of the installed tree at PREFIX run from the directory CWD on the
// show's installed archive: empty when each did its job, else what went wrong.
std::string toolsWorkFrom(const std::string& prefix, const std::string& cwd);

// The files every install holds, relative to its prefix.
std::vector<std::string> installedFiles();
