// kaskade-inspect scene: loads a .3ds scene with the engine, exactly as a demo
// part's set-up does (reader, keyframer, mesh preparation), and prints what
// the World holds as one JSON document. A scene the engine refuses ends with
// the engine's own message and status 1.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "engine/world.h"
#include "tools/inspect/inspect_command.h"

namespace {

int fail(const std::string& message) {
    std::fprintf(stderr, "kaskade-inspect scene: %s\n", message.c_str());
    return 1;
}

int usage() {
    std::fprintf(stderr, "usage: kaskade-inspect scene SCENE\n");
    return 2;
}

// A JSON string; bytes outside printable ASCII are written as \u00XX.
std::string quoted(const char* text) {
    std::string out = "\"";
    for (const unsigned char* c = reinterpret_cast<const unsigned char*>(text); *c != 0; ++c) {
        if (*c == '"' || *c == '\\') {
            out += '\\';
            out += static_cast<char>(*c);
        } else if (*c < 0x20 || *c >= 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", *c);
            out += escape;
        } else {
            out += static_cast<char>(*c);
        }
    }
    return out + "\"";
}

// A JSON number; non-finite values (a damaged file can hold them) are null.
std::string number(float value) {
    if (!std::isfinite(value)) {
        return "null";
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}

std::string vector3(const Vector& v) { return "[" + number(v.x) + ", " + number(v.y) + ", " + number(v.z) + "]"; }

std::string colour(Colour value) {
    char text[16];
    std::snprintf(text, sizeof text, "\"0x%08X\"", value);
    return text;
}

// Writes one record per element of a JSON array: `fields` gives its lines.
template <typename Record, typename Fields>
void printArray(const char* key, Record** records, int32_t count, Fields fields, bool last = false) {
    std::printf("  \"%s\": [", key);
    for (int32_t i = 0; i < count; ++i) {
        std::printf("%s\n    {\n", i == 0 ? "" : ",");
        const std::vector<std::string> lines = fields(*records[i]);
        for (size_t l = 0; l < lines.size(); ++l) {
            std::printf("      %s%s\n", lines[l].c_str(), l + 1 < lines.size() ? "," : "");
        }
        std::printf("    }");
    }
    std::printf("%s]%s\n", count > 0 ? "\n  " : "", last ? "" : ",");
}

std::string field(const char* key, const std::string& value) { return "\"" + std::string(key) + "\": " + value; }
std::string field(const char* key, long value) { return field(key, std::to_string(value)); }

void printWorld(const World& world) {
    std::printf("{\n");
    printArray("meshes", world.meshes, world.meshCount, [](const MeshObject& mesh) {
        const Material* material = mesh.faceCount > 0 ? mesh.faces[0].material : nullptr;
        return std::vector<std::string>{
            field("name", quoted(mesh.name)),
            field("vertexCount", mesh.vertexCount),
            field("faceCount", mesh.faceCount),
            field("centre", vector3(mesh.centre)),
            field("visible", (mesh.flags & MESH_VISIBLE) != 0 ? "true" : "false"),
            field("firstFaceMaterial", material != nullptr ? quoted(material->name) : "null"),
            field("positionKeys", static_cast<long>(mesh.positionTrack->keyCount)),
        };
    });
    printArray("materials", world.materials, world.materialCount, [](const Material& material) {
        return std::vector<std::string>{
            field("name", quoted(material.name)),
            field("mode", static_cast<long>(material.mode)),
            field("ambient", colour(material.ambient)),
            field("diffuse", colour(material.diffuse)),
            field("specular", colour(material.specular)),
            field("shininess", number(material.shininess)),
            field("twoSided", material.twoSided != 0 ? "true" : "false"),
        };
    });
    printArray("cameras", world.cameras, world.cameraCount, [](const Camera& camera) {
        return std::vector<std::string>{
            field("name", quoted(camera.name)),
            field("position", vector3(camera.position)),
            field("target", vector3(camera.target)),
            field("fov", number(camera.fov)),
            field("positionKeys", static_cast<long>(camera.positionTrack->keyCount)),
            field("targetKeys", static_cast<long>(camera.targetTrack->keyCount)),
        };
    });
    printArray("lights", world.lights, world.lightCount, [](const Light& light) {
        return std::vector<std::string>{
            field("name", quoted(light.name)),
            field("position", vector3(light.position)),
            field("colour", colour(light.colour)),
            field("positionKeys", static_cast<long>(light.positionTrack->keyCount)),
        };
    });
    printArray("spotlights", world.spotlights, world.spotlightCount, [](const Spotlight& spot) {
        return std::vector<std::string>{
            field("name", quoted(spot.name)),
            field("position", vector3(spot.position)),
            field("target", vector3(spot.target)),
            field("colour", colour(spot.colour)),
            field("hotspot", number(spot.hotspot)),
            field("falloff", number(spot.falloff)),
            field("positionKeys", static_cast<long>(spot.positionTrack->keyCount)),
            field("targetKeys", static_cast<long>(spot.targetTrack->keyCount)),
        };
    });
    std::printf("  \"segment\": {\"startFrame\": %d, \"endFrame\": %d}\n}\n", world.segment->startFrame,
                world.segment->endFrame);
}

int runScene(int argc, char** argv) {
    if (argc != 2) {
        return usage();
    }
    std::string error;
    uint32_t size = 0;
    FILE* file = openInspectSource(parseInspectSource(argv[1]), &size, &error);
    if (file == nullptr) {
        return fail(error);
    }
    World world;
    world.loadFromFile(file);  // a refused scene ends here with the engine's report
    std::fclose(file);
    printWorld(world);
    return 0;
}

const InspectCommand g_sceneCommand("scene", "SCENE",
                                    "load a .3ds scene with the engine and print its meshes, materials, "
                                    "cameras, lights and keyframe segment as JSON",
                                    runScene);

}  // namespace
