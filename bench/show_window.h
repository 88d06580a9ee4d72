// The show in its own 640 x 480 window for the benchmarks that time the
// player: the soundtrack playing, the live clock, the desktop player's keys.
#pragma once

// Opens the window, starts the show at part 1 and plays `frames` frames.
void openShowWindow(int* argc, char** argv, int frames);

// Plays `frames` frames, handling the window's events between them.
void playFrames(int frames);
