// Reading tests/gl11/feature_scenes.txt (its first lines say how it is written).
#include "tests/gl11/scene_script.h"

#include <GL/gl.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace {

#define NAMED(name) {#name, GL_##name}
const std::map<std::string, float> NAMES = {
    NAMED(ALWAYS), NAMED(AMBIENT), NAMED(AMBIENT_AND_DIFFUSE), NAMED(BACK), NAMED(BLEND), NAMED(CCW),
    NAMED(COLOR_CLEAR_VALUE), NAMED(COLOR_MATERIAL), NAMED(CONSTANT_ATTENUATION), NAMED(CULL_FACE),
    NAMED(CURRENT_COLOR), NAMED(CW), NAMED(DECAL), NAMED(DEPTH_TEST), NAMED(DIFFUSE), NAMED(EMISSION), NAMED(FLAT),
    NAMED(FOG), NAMED(FRONT), NAMED(LESS), NAMED(LIGHT0), NAMED(LIGHTING), NAMED(LINEAR), NAMED(LINEAR_ATTENUATION),
    NAMED(LINES), NAMED(MODELVIEW), NAMED(MODELVIEW_MATRIX), NAMED(MODULATE), NAMED(NEAREST), NAMED(ONE),
    NAMED(ONE_MINUS_SRC_COLOR), NAMED(POLYGON), NAMED(PROJECTION), NAMED(PROJECTION_MATRIX),
    NAMED(QUADRATIC_ATTENUATION), NAMED(QUADS), NAMED(S), NAMED(SCISSOR_TEST), NAMED(SHININESS), NAMED(SMOOTH),
    NAMED(SPECULAR), NAMED(SPHERE_MAP), NAMED(SPOT_CUTOFF), NAMED(SPOT_DIRECTION), NAMED(SPOT_EXPONENT),
    NAMED(SRC_ALPHA), NAMED(SRC_COLOR), NAMED(T), NAMED(TEXTURE_2D), NAMED(TEXTURE_GEN_S), NAMED(TEXTURE_GEN_T),
    NAMED(TRIANGLES), NAMED(ZERO), {"PAINTED", 1.0f}};
#undef NAMED

}  // namespace

bool readScenes(const std::string& path, std::vector<Scene>* scenes, std::string* error) {
    std::ifstream file(path);
    std::map<std::string, std::vector<SceneCall>> parts;
    std::vector<SceneCall>* into = nullptr;  // the calls of the scene or part being read
    std::string text;
    for (int line = 1; std::getline(file, text); ++line) {
        std::istringstream calls(text.substr(0, text.find('#')));
        for (std::string call; std::getline(calls, call, ';');) {
            std::istringstream words(call);
            std::string name, word;
            auto fail = [&](const std::string& what) {
                *error = path + ":" + std::to_string(line) + ": " + what;
                return false;
            };
            if (!(words >> name)) {
                continue;
            } else if (name == "scene") {
                into = &scenes->emplace_back(Scene{words >> word ? word : "", {}, {}}).calls;
                while (words >> word) {
                    scenes->back().mistakes.push_back(word);
                }
            } else if (name == "part") {
                into = &parts[words >> word ? word : ""];
            } else if (into == nullptr) {
                return fail("a call before the first scene");
            } else if (name == "use") {
                if (!(words >> word) || !parts.contains(word)) {
                    return fail("no part " + word);
                }
                into->insert(into->end(), parts[word].begin(), parts[word].end());
            } else {
                SceneCall& out = into->emplace_back(SceneCall{name, {}, line});
                while (words >> word) {
                    char* end = nullptr;
                    const float number = std::strtof(word.c_str(), &end);
                    if (*end != '\0' && !NAMES.contains(word)) {
                        return fail("neither a number nor a name: " + word);
                    }
                    out.args.push_back(*end == '\0' ? number : NAMES.at(word));
                }
            }
        }
    }
    if (scenes->empty()) {
        *error = path + ": no scenes";
    }
    return !scenes->empty();
}
