// Every CRTC of a display's screen as a line of text, read through RandR by
// the test itself (not by the show's own code): what a person would compare
// before and after the show to see that their monitors are as they were.
#pragma once

#include <string>
#include <vector>

struct CrtcTable {
    std::string screen;              // "screen 3200x1080 primary DUMMY0"
    std::vector<std::string> crtcs;  // "crtc 0x3e 1920x1080@75.00 +0+0 rot 1 DUMMY0", lit CRTCs only

    bool operator==(const CrtcTable& other) const = default;
    // The line of the CRTC that drives `output`, or "" when none does.
    std::string crtcOf(const std::string& output) const;
    // Every line, one per row, for a failure message or a note.
    std::string text() const;
};

// The table of `display` (":N"); empty when it cannot be read.
CrtcTable readCrtcTable(const std::string& display);
