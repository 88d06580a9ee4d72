// The two OpenGLs gl11 is compared on, in one process, on Mesa's surfaceless
// EGL (no display needed): an OpenGL compatibility context, whose fixed
// function is the reference, and an OpenGL ES 3 context for gl11, made to
// behave as WebGL 2 does (primitive restart at the largest index, always on):
// the native stand-in for the browser's WebGL context, and the only
// difference from the web build. Each draws into a pbuffer of its own,
// SCENE_SIZE x SCENE_SIZE, 8 bits a channel with a 24-bit depth buffer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

constexpr int SCENE_SIZE = 128;

// A frame read back: RGBA, rows bottom up, as glReadPixels gives them.
struct SceneImage {
    std::vector<uint8_t> rgba;
};

// Opens the EGL display and makes both pbuffers, once per process. False
// (with the reason in *why) when Mesa's surfaceless EGL or either API is missing.
bool openEglContexts(std::string* why);

// A fresh context of the kind on its pbuffer, current from now on (the one
// of that kind before is destroyed).
void startReferenceContext();
void startLayerContext();

// The current context's pbuffer, once everything drawn is done.
SceneImage readScene();
