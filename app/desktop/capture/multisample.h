// Which multisampling the display offers its windows, asked before the window
// is made (freeglut would end the program with a message of its own).
#pragma once

#include <string>

// True when the display has a double-buffered RGB visual with depth and
// exactly `samples` samples per pixel. Otherwise false, and `offered` lists
// the sample counts it has ("4", "2, 4", or "none").
bool displayOffersSamples(int samples, std::string* offered);
