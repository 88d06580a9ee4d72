// Shows a finished frame. Every draw step ends with it instead of a bare
// glutSwapBuffers, so that the frame clock and capture see every frame swapped.
#pragma once

void presentFrame();
