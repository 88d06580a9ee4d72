#include "tests/engine/scene_text.h"

#include <cstdio>
#include <map>
#include <memory>
#include <sstream>

#include "engine/world.h"
#include "tests/support/fatal_catcher.h"

std::string numberText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value + 0.0);  // + 0.0: no "-0"
    return text;
}

std::string listText(std::initializer_list<double> values) {
    std::string text;
    for (double value : values) text += (text.empty() ? "(" : ",") + numberText(value);
    return text + ")";
}

const std::map<uint32_t, std::string> MODE_NAMES = {
    {0, "none"}, {MODE_FLAT, "MODE_FLAT"}, {MODE_SMOOTH, "MODE_SMOOTH"}, {MODE_SPHERE_MAP, "MODE_SPHERE_MAP"},
    {MODE_WIRE, "MODE_WIRE"}, {MODE_WIRE_LIT, "MODE_WIRE_LIT"}, {MODE_TEXTURE, "MODE_TEXTURE"},
    {MODE_TEXTURE_FLAT, "MODE_TEXTURE_FLAT"}, {MODE_TEXTURE_SMOOTH, "MODE_TEXTURE_SMOOTH"}};

namespace {

std::string vector3(const Vector& v, bool withW = false) {
    return withW ? listText({v.x, v.y, v.z, v.w}) : listText({v.x, v.y, v.z});
}
std::string colour(Colour value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", value);
    return text;
}

std::string keys(const Track& track, const char* prefix) {
    std::string out;
    for (uint32_t i = 0; i < track.keyCount; ++i) {
        const Key& k = track.keys[i];
        out += std::string("  ") + prefix + "key " + std::to_string(k.frame) + " " + vector3(k.value) + " in " +
               vector3(k.tangentIn) + " out " + vector3(k.tangentOut) + " flags " + std::to_string(k.splineFlags) + "\n";
    }
    return out;
}

}  // namespace

std::string dumpWorld(const World& world) {
    std::string out;
    for (int32_t m = 0; m < world.meshCount; ++m) {
        const MeshObject& mesh = *world.meshes[m];
        out += "mesh " + std::string(mesh.name) + " vertices " + std::to_string(mesh.vertexCount) + " faces " +
               std::to_string(mesh.faceCount) + " centre " + vector3(mesh.centre) + (mesh.flags & MESH_VISIBLE ? "" : " hidden") +
               (vector3(mesh.scale) != "(1,1,1)" ? " scale " + vector3(mesh.scale) : "") +
               (vector3(mesh.rotation) != "(0,0,0)" ? " rot " + vector3(mesh.rotation) : "") + "\n";
        for (int32_t i = 0; i < mesh.vertexCount; ++i) {
            const Vertex& v = mesh.vertices[i];
            out += "  vertex " + vector3(v.position) + " normal " + vector3(v.normal) + " uv (" + numberText(v.u) + "," + numberText(v.v) + ")\n";
        }
        for (int32_t i = 0; i < mesh.faceCount; ++i) {
            const Face& f = mesh.faces[i];
            std::string material = "-";
            for (int32_t n = 0; n < world.materialCount; ++n) material = world.materials[n] == f.material ? std::to_string(n) : material;
            out += "  face (" + std::to_string(f.vertex[0] - mesh.vertices) + "," + std::to_string(f.vertex[1] - mesh.vertices) + "," +
                   std::to_string(f.vertex[2] - mesh.vertices) + ") flags " + std::to_string(f.flags) + " normal " +
                   vector3(f.normal, true) + " material " + material + "\n";
        }
        out += keys(*mesh.positionTrack, "");
    }
    for (int32_t i = 0; i < world.materialCount; ++i) {
        const Material& m = *world.materials[i];
        out += "material " + std::string(m.name) + " " + (MODE_NAMES.contains(m.mode) ? MODE_NAMES.at(m.mode) : numberText(m.mode)) +
               " twosided " + std::to_string(m.twoSided) + " ambient " + colour(m.ambient) + " diffuse " + colour(m.diffuse) +
               " specular " + colour(m.specular) + (m.flags != MAT_OPAQUE ? " flags " + numberText(m.flags) : "") + "\n";
    }
    for (int32_t i = 0; i < world.cameraCount; ++i) {
        const Camera& c = *world.cameras[i];
        out += "camera " + std::string(c.name) + " at " + vector3(c.position) + " to " + vector3(c.target) + " fov " +
               numberText(c.fov) + (world.camera == &c ? " current" : "") + "\n" + keys(*c.positionTrack, "") + keys(*c.targetTrack, "target ");
    }
    for (int32_t i = 0; i < world.lightCount; ++i) {
        const Light& l = *world.lights[i];
        out += "light " + std::string(l.name) + " at " + vector3(l.position) + " colour " + colour(l.colour) + " range " +
               numberText(l.range) + "\n" + keys(*l.positionTrack, "");
    }
    for (int32_t i = 0; i < world.spotlightCount; ++i) {
        const Spotlight& s = *world.spotlights[i];
        out += "spot " + std::string(s.name) + " at " + vector3(s.position) + " to " + vector3(s.target) + " colour " +
               colour(s.colour) + " hotspot " + numberText(s.hotspot) + " falloff " + numberText(s.falloff) + "\n" +
               keys(*s.positionTrack, "") + keys(*s.targetTrack, "target ");
    }
    return out + "segment " + std::to_string(world.segment->startFrame) + " " + std::to_string(world.segment->endFrame) + "\n";
}

void loadScene(World& world, const std::vector<uint8_t>& bytes, long offset) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);  // closed when a report unwinds
    std::vector<uint8_t> stream(static_cast<size_t>(offset), 0xEE);
    stream.insert(stream.end(), bytes.begin(), bytes.end());
    if (!stream.empty()) std::fwrite(stream.data(), 1, stream.size(), file.get());  // fwrite must not get a null pointer
    std::fseek(file.get(), offset, SEEK_SET);
    world.loadFromFile(file.get());
}

std::string loadReport(const std::vector<std::vector<uint8_t>>& loads, long offset,
                       const std::function<void(World&)>& after) {
    FatalCatcher catcher;
    try {
        World world;
        for (const std::vector<uint8_t>& bytes : loads) loadScene(world, bytes, offset);
        if (after) after(world);
        return dumpWorld(world);
    } catch (const FatalError& error) {
        return "fatal " + error.caption + " " + std::to_string(error.status) + ": " + error.text;
    }
}
