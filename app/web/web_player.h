// The viewer's controls (app/player.h) in the browser: the page passes its
// keys and its control bar's clicks on, reads the player's state for the bar
// and the address, and keeps the picture a pause leaves.
#pragma once

// Call once the WebGL context and the GL start state are set. `fps`: the
// fixed-step clock's rate, or 0. `refit`: sets the viewport and line width
// for the canvas again after the GL state was reset.
void installWebPlayer(int fps, void (*refit)());

// Before the show starts: every part met once, unseen (app/show_start.h's
// rehearseShow), so that WebGL's programs are compiled before the first frame
// and neither a part's start nor a jump waits for the compiler; then the GL
// state as at the start.
void rehearseBeforeTheShow();
