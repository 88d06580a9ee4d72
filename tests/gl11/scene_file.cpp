// The scene file (its first lines say how it is written): read once, and its
// calls, compiled once over the system's OpenGL and GLU and once over gl11
// (KASKADE_SCENES_ON_GL11), the way base/gl.h chooses for the show. Colours
// are bytes, whole multiples of 1/255 as the show's are; spheres and grids
// are tessellated finely enough that per-vertex lighting shows its shape.
#ifdef KASKADE_SCENES_ON_GL11
#include "gl11/gl11.h"
#define SCENES_NAMESPACE layer_scenes
#else
#include <GL/gl.h>
#include <GL/glu.h>
#define SCENES_NAMESPACE reference_scenes
#endif

#include "tests/gl11/scene_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>

#ifndef KASKADE_SCENES_ON_GL11
namespace {

// The GL names the file may use, without GL_.
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

float sceneName(const std::string& word) { return NAMES.contains(word) ? NAMES.at(word) : NAN; }

std::vector<Scene> readScenes() {
    std::vector<Scene> scenes;
    for (const TextCase& c : readTextCases("gl11/scenes.txt")) {
        const std::vector<std::string> w = words(c.what);
        scenes.push_back({w.at(0), {w.begin() + 1, w.end()}, c});
    }
    return scenes;
}
#endif

namespace SCENES_NAMESPACE {
namespace {

void colour(float red, float green, float blue, float alpha = 255.0f) {
    glColor4f(red / 255.0f, green / 255.0f, blue / 255.0f, alpha / 255.0f);
}

// A sphere about the origin in `slices` x `stacks` cells, each two
// three-vertex polygons as the engine sends its faces, counter-clockwise seen
// from outside; `painted`, each vertex gets a colour that follows its normal.
void sphere(float radius, int slices, int stacks, bool painted) {
    constexpr float PI = 3.14159265358979323846f;
    auto vertex = [&](int stack, int slice) {
        const float theta = PI * static_cast<float>(stack) / static_cast<float>(stacks);  // 0 at the top
        const float phi = 2.0f * PI * static_cast<float>(slice) / static_cast<float>(slices);  // 0 towards +z
        const float n[3] = {std::sin(theta) * std::sin(phi), std::cos(theta), std::sin(theta) * std::cos(phi)};
        auto channel = [](float unit) { return static_cast<float>(std::lround(127.5f + 127.0f * unit)); };
        if (painted) colour(channel(n[0]), channel(n[1]), channel(n[2]));
        glNormal3f(n[0], n[1], n[2]);
        glVertex3f(radius * n[0], radius * n[1], radius * n[2]);
    };
    for (int i = 0; i < stacks; ++i) {
        for (int j = 0; j < slices; ++j) {
            const int triangles[2][3][2] = {{{i, j}, {i + 1, j}, {i + 1, j + 1}}, {{i, j}, {i + 1, j + 1}, {i, j + 1}}};
            for (const auto& triangle : triangles) {
                glBegin(GL_POLYGON);
                for (const auto& [stack, slice] : triangle) vertex(stack, slice);
                glEnd();
            }
        }
    }
}

// A plane from (x0, y0) to (x1, y1) at depth z in cells x cells quads, facing +z.
void grid(float x0, float y0, float x1, float y1, float z, int cells) {
    const float dx = (x1 - x0) / static_cast<float>(cells);
    const float dy = (y1 - y0) / static_cast<float>(cells);
    glNormal3f(0.0f, 0.0f, 1.0f);
    glBegin(GL_QUADS);
    for (int i = 0; i < cells; ++i) {
        for (int j = 0; j < cells; ++j) {
            const float x = x0 + dx * static_cast<float>(j);
            const float y = y0 + dy * static_cast<float>(i);
            const float corners[4][2] = {{x, y}, {x + dx, y}, {x + dx, y + dy}, {x, y + dy}};
            for (const auto& [cx, cy] : corners) glVertex3f(cx, cy, z);
        }
    }
    glEnd();
}

void filter(GLint filter) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
}

// The run's next texture, bound: made the first time, 16 x 16 RGBA, red
// across, green up, blue in 4 x 4 checks, alpha rising from clear at one
// corner to nearly opaque at the other.
void bindTexture(SceneRun* run, size_t* used) {
    if (*used == run->textures.size()) {
        uint8_t pixels[16 * 16 * 4];
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 16; ++x) {
                uint8_t* p = pixels + (y * 16 + x) * 4;
                p[0] = static_cast<uint8_t>(x * 16 + 8);
                p[1] = static_cast<uint8_t>(y * 16 + 8);
                p[2] = (x / 4 + y / 4) % 2 != 0 ? 240 : 30;
                p[3] = static_cast<uint8_t>((x + y) * 8);
            }
        }
        run->textures.emplace_back();
        glGenTextures(1, &run->textures.back());
        glBindTexture(GL_TEXTURE_2D, run->textures.back());
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 16, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    }
    glBindTexture(GL_TEXTURE_2D, run->textures[(*used)++]);
}

// `set` under the identity model-view: values given in eye coordinates.
void inEyeSpace(const std::function<void()>& set) {
    glPushMatrix();
    glLoadIdentity();
    set();
    glPopMatrix();
}

GLenum e(float value) { return static_cast<GLenum>(value); }
GLint i(float value) { return static_cast<GLint>(value); }
GLboolean b(float value) { return static_cast<GLboolean>(value); }

}  // namespace

void drawScene(const Scene& scene, SceneRun* run) {
    const float* a = nullptr;  // the arguments of the call being made, then zeros
    size_t n = 0;              // how many the file gives
    size_t textures = 0;
    float kept[16] = {}, answer[16];
    auto light = [&] { return GL_LIGHT0 + e(a[0]); };
    auto query = [&](GLenum name, float* into) {
        std::fill_n(into, 16, 0.0f);
        glGetFloatv(name, into);
        run->answers.insert(run->answers.end(), into, into + 16);
    };
#define E1(name, call) {name, [&] { call(e(a[0])); }}
#define F3(name, call) {name, [&] { call(a[0], a[1], a[2]); }}
#define I4(name, call) {name, [&] { call(i(a[0]), i(a[1]), i(a[2]), i(a[3])); }}
    const std::map<std::string, std::function<void()>> calls = {
        E1("enable", glEnable), E1("disable", glDisable), E1("shade", glShadeModel), E1("depthfunc", glDepthFunc),
        E1("frontface", glFrontFace), E1("cullface", glCullFace), E1("matrixmode", glMatrixMode), E1("begin", glBegin),
        F3("translate", glTranslatef), F3("scale", glScalef), F3("normal", glNormal3f), F3("vertex", glVertex3f),
        I4("viewport", glViewport), I4("scissor", glScissor), {"end", glEnd},
        {"push", glPushMatrix}, {"pop", glPopMatrix}, {"identity", glLoadIdentity},
        {"blend", [&] { glBlendFunc(e(a[0]), e(a[1])); }}, {"depthmask", [&] { glDepthMask(b(a[0])); }},
        {"colormask", [&] { glColorMask(b(a[0]), b(a[1]), b(a[2]), b(a[3])); }},
        {"clearcolour", [&] { glClearColor(a[0] / 255.0f, a[1] / 255.0f, a[2] / 255.0f, 1.0f); }},
        {"clear", [&] { glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT); }},
        {"rotate", [&] { glRotatef(a[0], a[1], a[2], a[3]); }}, {"multmatrix", [&] { glMultMatrixf(a); }},
        {"perspective", [&] { gluPerspective(a[0], a[1], a[2], a[3]); }},
        {"lookat", [&] { gluLookAt(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8]); }},
        {"keep", [&] { query(GL_MODELVIEW_MATRIX, kept); }}, {"multkept", [&] { glMultMatrixf(kept); }},
        {"query", [&] { query(e(a[0]), answer); }},
        {"light", [&] {  // light I X Y Z W R G B
             const GLfloat diffuse[4] = {a[5] / 255.0f, a[6] / 255.0f, a[7] / 255.0f, 1.0f};
             inEyeSpace([&] {
                 glLightfv(light(), GL_POSITION, a + 1);
                 glLightfv(light(), GL_DIFFUSE, diffuse);
                 glEnable(light());
             });
         }},
        {"lightv", [&] { inEyeSpace([&] { glLightfv(light(), e(a[1]), a + 2); }); }},
        {"lightf", [&] { glLightf(light(), e(a[1]), a[2]); }},
        {"material", [&] { glMaterialfv(GL_FRONT_AND_BACK, e(a[0]), a + 1); }},
        {"colormaterial", [&] { glColorMaterial(GL_FRONT_AND_BACK, e(a[0])); }},
        {"fogexp", [&] { glFogi(GL_FOG_MODE, GL_EXP); glFogfv(GL_FOG_COLOR, a); glFogf(GL_FOG_DENSITY, a[4]); }},
        {"colour", [&] { colour(a[0], a[1], a[2], n > 3 ? a[3] : 255.0f); }},
        {"texcoord", [&] { glTexCoord2f(a[0], a[1]); }},
        {"sphere", [&] { sphere(a[0], i(a[1]), i(a[2]), n > 3); }},
        {"grid", [&] { grid(a[0], a[1], a[2], a[3], a[4], i(a[5])); }},
        {"texture", [&] { bindTexture(run, &textures); filter(i(a[0])); }}, {"filter", [&] { filter(i(a[0])); }},
        {"texenv", [&] { glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, i(a[0])); }},
        {"texgen", [&] { glTexGeni(e(a[0]), GL_TEXTURE_GEN_MODE, i(a[1])); }},
    };
#undef E1
#undef F3
#undef I4
    // The calls of `text`, separated by ';' and lines, "#" starting a comment;
    // "use NAME" makes the calls of the define NAME.
    const std::function<void(const std::string&)> make = [&](const std::string& text) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            std::istringstream in(line.substr(0, line.find('#')));
            for (std::string call; std::getline(in, call, ';');) {
                const std::vector<std::string> w = words(call);
                if (w.size() == 2 && w[0] == "use" && scene.text.macros.contains(w[1])) {
                    make(scene.text.macros.at(w[1]));
                    continue;
                }
                std::vector<float> args;
                for (size_t k = 1; k < w.size(); ++k) {
                    char* end = nullptr;
                    const float number = std::strtof(w[k].c_str(), &end);
                    args.push_back(*end == '\0' ? number : sceneName(w[k]));
                }
                n = args.size();
                const auto found = w.empty() ? calls.end() : calls.find(w[0]);
                if (!w.empty() && (found == calls.end() || std::any_of(args.begin(), args.end(), [](float v) { return std::isnan(v); }))) {
                    run->error += scene.name + ": no such call or name in: " + call + "\n";
                } else if (!w.empty()) {
                    args.resize(n + 16);
                    a = args.data();
                    found->second();
                }
            }
        }
    };
    make(scene.text.input);
}

}  // namespace SCENES_NAMESPACE
