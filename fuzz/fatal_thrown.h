// Fuzz targets turn every fatal report into an exception, so that one input's
// failure ends that input, not the fuzzing run.
#pragma once

#include "base/fatal.h"

struct FatalThrown {};

[[noreturn]] inline void throwFatal(const char*, const char*, const char*, int) { throw FatalThrown{}; }
