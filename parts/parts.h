// The thirteen demo parts: each a set-up step (load its scenes and images,
// set its starting state) and a draw step (one frame). The sequencer calls them.
#pragma once

void setupPart1();
void drawPart1();
void setupPart2();
void drawPart2();
void setupPart3();
void drawPart3();
void setupPart4();
void drawPart4();
void setupPart5();
void drawPart5();
void setupPart6();
void drawPart6();
void setupPart7();
void drawPart7();
void setupPart8();
void drawPart8();
void setupPart9();
void drawPart9();
void setupPart10();
void drawPart10();
void setupPart11();
void drawPart11();
void setupPart12();
void drawPart12();
void setupPart13();
void drawPart13();
