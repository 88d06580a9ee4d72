// The GL state every demo part starts from, kept on OpenGL's attribute stacks
// so that the show can go back to it: when a looping show starts over and when
// the viewer jumps to a part. Going back gives every pass and every jump the
// state a show started from the beginning has.
#pragma once

// Keeps the current state (call once the start state and the frame target
// are set). Does nothing when it is kept already.
void keepGlStartState();

// Back to the kept state, keeping it again for the next time: the attributes,
// identity matrices, and the frame's fit to the target as it is now.
void returnToGlStartState();
