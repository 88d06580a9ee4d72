// The viewer's controls (app/player.h) on the desktop: keys through GLUT,
// jumps from the GL start state kept on the attribute stacks, the picture a
// pause leaves, f between a window and fullscreen without a display-mode
// switch. A capture takes no keys but Escape.
#pragma once

struct ShowOptions;

// Call once the window, the GL start state and the frame target are set.
void installDesktopPlayer(const ShowOptions& options);
