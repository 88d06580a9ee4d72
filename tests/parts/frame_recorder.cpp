#include "tests/parts/frame_recorder.h"

#include <cstdio>
#include <map>

#include "base/gl.h"
#include "engine/world.h"
#include "tests/engine/scene_text.h"

namespace {

std::string g_lines;
std::string g_lastOverlay;  // the last line's overlay and corners, while it is an overlay
std::map<const Texture*, std::string> g_textureNames;

void addLine(const std::string& line) {
    g_lines += line + "\n";
    g_lastOverlay.clear();
}

std::string vector3(const Vector& v) { return listText({v.x, v.y, v.z}); }

std::string fog() {
    if (!glIsEnabled(GL_FOG)) return "no fog";
    GLint mode = 0;
    GLfloat c[4], density = 0;
    glGetIntegerv(GL_FOG_MODE, &mode);
    glGetFloatv(GL_FOG_COLOR, c);
    glGetFloatv(GL_FOG_DENSITY, &density);
    return (mode == GL_EXP ? "fog exp " : "fog (not exp) ") + listText({c[0], c[1], c[2], c[3]}) + " " + numberText(density);
}

const std::map<uint32_t, const char*> FLAGS = {{MAT_OPAQUE, "MAT_OPAQUE"}, {MAT_ADD, "MAT_ADD"}, {MAT_DARKEN, "MAT_DARKEN"},
                                               {MAT_ALPHA, "MAT_ALPHA"}, {MAT_LINEAR, "MAT_LINEAR"}, {MAT_NO_DEPTH, "MAT_NO_DEPTH"}};

void writeMesh(const MeshObject& mesh, const Material& material) {
    char colour[16];
    std::snprintf(colour, sizeof colour, " 0x%08X ", material.diffuse);
    std::string line = std::string("mesh ") +
                       (MODE_NAMES.contains(material.mode) ? MODE_NAMES.at(material.mode) : numberText(material.mode)) + colour;
    for (const auto& [bit, name] : FLAGS) line += material.flags & bit ? std::string(name) + "|" : "";
    line.pop_back();  // the last '|', or the space before no flags
    const std::string scale = vector3(mesh.scale), rotation = vector3(mesh.rotation), move = vector3(mesh.translation);
    line += scale != "(1,1,1)" ? " scale " + scale : "";
    line += rotation != "(0,0,0)" ? " rot " + rotation : "";
    line += move != "(0,0,0)" ? " move " + move : "";
    addLine(line);
}

void writeOverlay(const char* function, const Texture* texture, int x0, int y0, int x1, int y1, int z) {
    const auto name = g_textureNames.find(texture);
    const std::string shape = std::string("overlay ") + function + " " +
                              (name != g_textureNames.end() ? name->second : "(unnamed)") + " " +
                              listText({x0 + 0.0, y0 + 0.0}) + "-" + listText({x1 + 0.0, y1 + 0.0});
    if (shape == g_lastOverlay) {
        g_lines.insert(g_lines.size() - 1, " " + std::to_string(z));  // before the line's '\n'
    } else {
        addLine(shape + " " + std::to_string(z));
    }
    g_lastOverlay = shape;
}

}  // namespace

void startFrameRecording() {
    g_lines.clear();
    g_lastOverlay.clear();
}

std::string frameRecording() { return g_lines; }

void nameRecordedTexture(const Texture* texture, const std::string& name) { g_textureNames[texture] = name; }

// The wrapped functions by their linker names: World::render() and the two
// overlay functions (Texture*, int x0, int y0, int x1, int y1, int z).
extern "C" {

void __real__ZN5World6renderEv(World* world);
void __wrap__ZN5World6renderEv(World* world) {
    std::string line = "render, " + fog() + ", lights";
    for (int32_t i = 0; i < world->lightCount; ++i) line += " " + vector3(world->lights[i]->position);
    if (world->camera != nullptr) {
        addLine(line + ", camera " + vector3(world->camera->position) + " to " + vector3(world->camera->target));
        for (int32_t i = 0; i < world->meshCount; ++i) {
            const MeshObject& mesh = *world->meshes[i];
            if ((mesh.flags & MESH_VISIBLE) && mesh.faceCount > 0 && mesh.faces[0].material != nullptr) {
                writeMesh(mesh, *mesh.faces[0].material);
            }
        }
    }
    __real__ZN5World6renderEv(world);
}

void __real__Z14drawOverlayAddP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z);
void __wrap__Z14drawOverlayAddP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z) {
    writeOverlay("add", texture, x0, y0, x1, y1, z);
    __real__Z14drawOverlayAddP7Textureiiiii(texture, x0, y0, x1, y1, z);
}

void __real__Z17drawOverlayDarkenP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z);
void __wrap__Z17drawOverlayDarkenP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z) {
    writeOverlay("darken", texture, x0, y0, x1, y1, z);
    __real__Z17drawOverlayDarkenP7Textureiiiii(texture, x0, y0, x1, y1, z);
}

}  // extern "C"
