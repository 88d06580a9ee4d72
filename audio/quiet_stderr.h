// Keeps the audio libraries' own chatter (ALSA's error lines and the like) off
// the terminal: while a QuietStderr lives, file descriptor 2 goes to /dev/null.
#pragma once

class QuietStderr {
public:
    QuietStderr();
    ~QuietStderr();
    QuietStderr(const QuietStderr&) = delete;
    QuietStderr& operator=(const QuietStderr&) = delete;

private:
    int saved_ = -1;
};
