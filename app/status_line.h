// Standard error shared by a progress line that updates in place and the
// lines of the part log: a log line first clears the progress line, which the
// next progress update draws again. Without a terminal, progress goes out as
// ordinary lines, fewer of them.
#pragma once

// Replaces the progress line with `text` (no newline in it).
void printProgressLine(const char* text);
// Prints a whole line (printf format, newline added) above the progress line.
void printLogLine(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Ends the progress line, so that later output starts on a line of its own.
void endProgressLine();
// True when progress is drawn in place (standard error is a terminal).
bool progressInPlace();
