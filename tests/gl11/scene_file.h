// The feature scenes (tests/data/gl11/scenes.txt): one small scene per
// OpenGL 1.1 feature the show draws with, a list of calls read once and sent
// to either OpenGL by scene_file.cpp, which is compiled twice: over the
// system's OpenGL and GLU, as the desktop draws, and over gl11, as the
// browser draws.
#pragma once

#include <string>
#include <vector>

#include "tests/engine/text_cases.h"

struct Scene {
    std::string name;
    std::vector<std::string> mistakes;  // gl11's deliberate mistakes (gl11/faults.h) it shows
    TextCase text;                      // its calls, and the defines it may use
};

// The file's scenes.
std::vector<Scene> readScenes();

// The value of a GL name the file may use (without GL_), NaN for none.
float sceneName(const std::string& word);

// What one drawing of a scene leaves: its texture names (a run that has them
// binds them instead of making new ones), every value glGetFloatv answered,
// and the calls and names the file gives that there are none of.
struct SceneRun {
    std::vector<unsigned> textures;
    std::vector<float> answers;
    std::string error;
};

namespace reference_scenes {
void drawScene(const Scene& scene, SceneRun* run);
}
namespace layer_scenes {
void drawScene(const Scene& scene, SceneRun* run);
}
