#include "content/formats/tds_writer.h"

#include <cmath>
#include <cstring>
#include <string>

#include "base/fatal.h"

namespace {

const char* const CONTENT_CAPTION = "KASKADE CONTENT";

// Chunk ids, as the format names them.
enum : uint16_t {
    CHUNK_MAIN = 0x4D4D,
    CHUNK_VERSION = 0x0002,
    CHUNK_COLOUR_FLOAT = 0x0010,
    CHUNK_COLOUR_BYTES = 0x0011,
    CHUNK_COLOUR_BYTES_GAMMA = 0x0012,
    CHUNK_COLOUR_FLOAT_GAMMA = 0x0013,
    CHUNK_PERCENT = 0x0030,
    CHUNK_MASTER_SCALE = 0x0100,
    CHUNK_EDITOR = 0x3D3D,
    CHUNK_MESH_VERSION = 0x3D3E,
    CHUNK_OBJECT = 0x4000,
    CHUNK_TRIANGLES = 0x4100,
    CHUNK_VERTICES = 0x4110,
    CHUNK_FACES = 0x4120,
    CHUNK_FACE_MATERIAL = 0x4130,
    CHUNK_TEXCOORDS = 0x4140,
    CHUNK_SMOOTHING = 0x4150,
    CHUNK_LOCAL_AXES = 0x4160,
    CHUNK_LIGHT = 0x4600,
    CHUNK_SPOT = 0x4610,
    CHUNK_CAMERA = 0x4700,
    CHUNK_CAMERA_RANGES = 0x4720,
    CHUNK_MATERIAL = 0xAFFF,
    CHUNK_MAT_NAME = 0xA000,
    CHUNK_MAT_AMBIENT = 0xA010,
    CHUNK_MAT_DIFFUSE = 0xA020,
    CHUNK_MAT_SPECULAR = 0xA030,
    CHUNK_MAT_SHININESS = 0xA040,
    CHUNK_MAT_SHIN_STRENGTH = 0xA041,
    CHUNK_MAT_TRANSPARENCY = 0xA050,
    CHUNK_MAT_TWO_SIDED = 0xA081,
    CHUNK_MAT_WIRE = 0xA085,
    CHUNK_MAT_WIRE_SIZE = 0xA087,
    CHUNK_MAT_SHADING = 0xA100,
    CHUNK_KEYFRAMER = 0xB000,
    CHUNK_KF_HEADER = 0xB00A,
    CHUNK_KF_SEGMENT = 0xB008,
    CHUNK_KF_CURRENT = 0xB009,
    CHUNK_NODE_HEADER = 0xB010,
    CHUNK_NODE_PIVOT = 0xB013,
    CHUNK_TRACK_POSITION = 0xB020,
    CHUNK_TRACK_ROTATION = 0xB021,
    CHUNK_TRACK_SCALE = 0xB022,
    CHUNK_TRACK_FOV = 0xB023,
    CHUNK_TRACK_ROLL = 0xB024,
    CHUNK_NODE_ID = 0xB030
};

// Node header flag word 1 as exporters write it for a node shown in the
// keyframer; no parent is written as 0xFFFF.
constexpr uint16_t NODE_FLAGS_1 = 0x4000;
constexpr uint16_t NO_PARENT = 0xFFFF;

[[noreturn]] void contentFatal(const std::string& text) {
    fatalReport(CONTENT_CAPTION, text.c_str(), 1);
}

// Little-endian bytes with nested chunks whose lengths are filled in when
// each chunk ends.
struct ChunkWriter {
    std::vector<uint8_t> bytes;
    std::vector<size_t> open;  // header positions of the chunks not yet ended

    void u8(uint8_t value) { bytes.push_back(value); }
    void u16(uint16_t value) {
        u8(static_cast<uint8_t>(value & 0xFF));
        u8(static_cast<uint8_t>(value >> 8));
    }
    void u32(uint32_t value) {
        u16(static_cast<uint16_t>(value & 0xFFFF));
        u16(static_cast<uint16_t>(value >> 16));
    }
    void f32(float value) {
        uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        u32(bits);
    }
    void point(const TdsPoint& p) {
        f32(p.x);
        f32(p.y);
        f32(p.z);
    }
    void name(const std::string& text) {
        bytes.insert(bytes.end(), text.begin(), text.end());
        u8(0);
    }

    void begin(uint16_t id) {
        open.push_back(bytes.size());
        u16(id);
        u32(0);
    }
    void end() {
        const size_t start = open.back();
        open.pop_back();
        const uint32_t length = static_cast<uint32_t>(bytes.size() - start);
        for (int i = 0; i < 4; ++i) bytes[start + 2 + i] = static_cast<uint8_t>(length >> (8 * i));
    }
};

void checkName(const std::string& name, const char* what) {
    if (name.size() > TDS_NAME_MAX || name.find('\0') != std::string::npos) {
        contentFatal(std::string(what) + " name \"" + name + "\" does not fit a .3ds name");
    }
}

void checkMesh(const TdsMesh& mesh) {
    checkName(mesh.name, "mesh");
    if (mesh.vertices.size() > 0xFFFF || mesh.faces.size() > 0xFFFF) {
        contentFatal("mesh \"" + mesh.name + "\" has more than 65535 vertices or faces");
    }
    if (!mesh.texCoords.empty() && mesh.texCoords.size() != mesh.vertices.size()) {
        contentFatal("mesh \"" + mesh.name + "\" has texture coordinates for some vertices only");
    }
    for (const TdsFace& face : mesh.faces) {
        if (face.a >= mesh.vertices.size() || face.b >= mesh.vertices.size() || face.c >= mesh.vertices.size()) {
            contentFatal("mesh \"" + mesh.name + "\" has a face naming a vertex it lacks");
        }
    }
    for (const TdsFaceGroup& group : mesh.groups) {
        checkName(group.material, "material");
        if (group.faces.size() > 0xFFFF) contentFatal("mesh \"" + mesh.name + "\" has an oversized face group");
        for (uint16_t face : group.faces) {
            if (face >= mesh.faces.size()) {
                contentFatal("mesh \"" + mesh.name + "\" groups a face it lacks");
            }
        }
    }
}

void checkScene(const TdsScene& scene) {
    for (const TdsMaterial& material : scene.materials) checkName(material.name, "material");
    for (const TdsMesh& mesh : scene.meshes) checkMesh(mesh);
    for (const TdsLight& light : scene.lights) checkName(light.name, "light");
    for (const TdsCamera& camera : scene.cameras) checkName(camera.name, "camera");
    for (const TdsNode& node : scene.nodes) {
        checkName(node.name, "node");
        for (size_t k = 1; k < node.positionKeys.size(); ++k) {
            if (node.positionKeys[k].frame <= node.positionKeys[k - 1].frame) {
                contentFatal("node \"" + node.name + "\" has keys out of frame order");
            }
        }
    }
}

uint8_t colourByte(float component) {
    const float clamped = component < 0.0f ? 0.0f : (component > 1.0f ? 1.0f : component);
    return static_cast<uint8_t>(std::lround(clamped * 255.0f));
}

// An exporter's gamma-corrected copy of a colour (display gamma 2.2).
TdsColour gammaCorrected(const TdsColour& colour) {
    const auto correct = [](float c) { return c <= 0.0f ? 0.0f : std::pow(c, 1.0f / 2.2f); };
    return {correct(colour.red), correct(colour.green), correct(colour.blue)};
}

void writeColourData(ChunkWriter& out, const TdsColour& colour, TdsColourForm form) {
    const TdsColour gamma = gammaCorrected(colour);
    if (form == TdsColourForm::Bytes) {
        out.begin(CHUNK_COLOUR_BYTES);
        out.u8(colourByte(colour.red));
        out.u8(colourByte(colour.green));
        out.u8(colourByte(colour.blue));
        out.end();
        out.begin(CHUNK_COLOUR_BYTES_GAMMA);
        out.u8(colourByte(gamma.red));
        out.u8(colourByte(gamma.green));
        out.u8(colourByte(gamma.blue));
        out.end();
    } else {
        out.begin(CHUNK_COLOUR_FLOAT);
        out.f32(colour.red);
        out.f32(colour.green);
        out.f32(colour.blue);
        out.end();
        out.begin(CHUNK_COLOUR_FLOAT_GAMMA);
        out.f32(gamma.red);
        out.f32(gamma.green);
        out.f32(gamma.blue);
        out.end();
    }
}

void writePercent(ChunkWriter& out, uint16_t id, int percent) {
    out.begin(id);
    out.begin(CHUNK_PERCENT);
    out.u16(static_cast<uint16_t>(percent < 0 ? 0 : (percent > 100 ? 100 : percent)));
    out.end();
    out.end();
}

void writeMaterial(ChunkWriter& out, const TdsMaterial& material) {
    out.begin(CHUNK_MATERIAL);
    out.begin(CHUNK_MAT_NAME);
    out.name(material.name);
    out.end();
    const uint16_t colourChunks[3] = {CHUNK_MAT_AMBIENT, CHUNK_MAT_DIFFUSE, CHUNK_MAT_SPECULAR};
    const TdsColour* colours[3] = {&material.ambient, &material.diffuse, &material.specular};
    for (int i = 0; i < 3; ++i) {
        out.begin(colourChunks[i]);
        writeColourData(out, *colours[i], material.colourForm);
        out.end();
    }
    writePercent(out, CHUNK_MAT_SHININESS, material.shininessPercent);
    writePercent(out, CHUNK_MAT_SHIN_STRENGTH, 0);
    writePercent(out, CHUNK_MAT_TRANSPARENCY, 0);
    if (material.twoSided) {
        out.begin(CHUNK_MAT_TWO_SIDED);
        out.end();
    }
    if (material.wire) {
        out.begin(CHUNK_MAT_WIRE);
        out.end();
    }
    out.begin(CHUNK_MAT_SHADING);
    out.u16(material.shading);
    out.end();
    out.begin(CHUNK_MAT_WIRE_SIZE);
    out.f32(1.0f);
    out.end();
    out.end();
}

void writeMesh(ChunkWriter& out, const TdsMesh& mesh) {
    out.begin(CHUNK_OBJECT);
    out.name(mesh.name);
    out.begin(CHUNK_TRIANGLES);

    out.begin(CHUNK_VERTICES);
    out.u16(static_cast<uint16_t>(mesh.vertices.size()));
    for (const TdsPoint& p : mesh.vertices) out.point(p);
    out.end();

    if (!mesh.texCoords.empty()) {
        out.begin(CHUNK_TEXCOORDS);
        out.u16(static_cast<uint16_t>(mesh.texCoords.size()));
        for (const TdsTexCoord& t : mesh.texCoords) {
            out.f32(t.u);
            out.f32(t.v);
        }
        out.end();
    }

    out.begin(CHUNK_LOCAL_AXES);
    out.point(mesh.axisX);
    out.point(mesh.axisY);
    out.point(mesh.axisZ);
    out.point(mesh.origin);
    out.end();

    out.begin(CHUNK_FACES);
    out.u16(static_cast<uint16_t>(mesh.faces.size()));
    for (const TdsFace& face : mesh.faces) {
        out.u16(face.a);
        out.u16(face.b);
        out.u16(face.c);
        out.u16(face.flags);
    }
    for (const TdsFaceGroup& group : mesh.groups) {
        out.begin(CHUNK_FACE_MATERIAL);
        out.name(group.material);
        out.u16(static_cast<uint16_t>(group.faces.size()));
        for (uint16_t face : group.faces) out.u16(face);
        out.end();
    }
    out.begin(CHUNK_SMOOTHING);
    for (const TdsFace& face : mesh.faces) out.u32(face.smoothing);
    out.end();
    out.end();  // faces

    out.end();  // triangles
    out.end();  // object
}

void writeLight(ChunkWriter& out, const TdsLight& light) {
    out.begin(CHUNK_OBJECT);
    out.name(light.name);
    out.begin(CHUNK_LIGHT);
    out.point(light.position);
    out.begin(CHUNK_COLOUR_FLOAT);
    out.f32(light.colour.red);
    out.f32(light.colour.green);
    out.f32(light.colour.blue);
    out.end();
    if (light.spot) {
        out.begin(CHUNK_SPOT);
        out.point(light.target);
        out.f32(light.hotspot);
        out.f32(light.falloff);
        out.end();
    }
    out.end();
    out.end();
}

void writeCamera(ChunkWriter& out, const TdsCamera& camera) {
    out.begin(CHUNK_OBJECT);
    out.name(camera.name);
    out.begin(CHUNK_CAMERA);
    out.point(camera.position);
    out.point(camera.target);
    out.f32(camera.bank);
    out.f32(camera.lens);
    out.begin(CHUNK_CAMERA_RANGES);
    out.f32(0.0f);
    out.f32(1000.0f);
    out.end();
    out.end();
    out.end();
}

void writeEditor(ChunkWriter& out, const TdsScene& scene) {
    out.begin(CHUNK_EDITOR);
    out.begin(CHUNK_MESH_VERSION);
    out.u32(3);
    out.end();
    for (const TdsMaterial& material : scene.materials) writeMaterial(out, material);
    out.begin(CHUNK_MASTER_SCALE);
    out.f32(scene.masterScale);
    out.end();
    for (const TdsMesh& mesh : scene.meshes) writeMesh(out, mesh);
    for (const TdsLight& light : scene.lights) writeLight(out, light);
    for (const TdsCamera& camera : scene.cameras) writeCamera(out, camera);
    out.end();
}

// A track of constant keys of `floats` values each (rotation, scale, fov,
// roll): the tracks an exporter writes for channels that do not move.
void writeStillTrack(ChunkWriter& out, uint16_t id, const std::vector<float>& values) {
    out.begin(id);
    out.u16(0);  // track flags
    out.u32(0);
    out.u32(0);
    out.u32(1);  // one key
    out.u32(0);  // at frame 0
    out.u16(0);  // without spline values
    for (float value : values) out.f32(value);
    out.end();
}

void writePositionTrack(ChunkWriter& out, const std::vector<TdsKey>& keys) {
    out.begin(CHUNK_TRACK_POSITION);
    out.u16(0);
    out.u32(0);
    out.u32(keys.empty() ? 0u : static_cast<uint32_t>(keys.back().frame));
    out.u32(static_cast<uint32_t>(keys.size()));
    for (const TdsKey& key : keys) {
        out.u32(static_cast<uint32_t>(key.frame));
        out.u16(key.flags);
        if (key.flags & TDS_KEY_TENSION) out.f32(key.tension);
        if (key.flags & TDS_KEY_CONTINUITY) out.f32(key.continuity);
        if (key.flags & TDS_KEY_BIAS) out.f32(key.bias);
        if (key.flags & TDS_KEY_EASE_TO) out.f32(key.easeTo);
        if (key.flags & TDS_KEY_EASE_FROM) out.f32(key.easeFrom);
        out.point(key.position);
    }
    out.end();
}

void writeNode(ChunkWriter& out, const TdsNode& node, uint16_t id) {
    out.begin(static_cast<uint16_t>(node.kind));
    out.begin(CHUNK_NODE_ID);
    out.u16(id);
    out.end();
    out.begin(CHUNK_NODE_HEADER);
    out.name(node.name);
    out.u16(NODE_FLAGS_1);
    out.u16(0);
    out.u16(NO_PARENT);
    out.end();
    if (node.kind == TdsNodeKind::Object) {
        out.begin(CHUNK_NODE_PIVOT);
        out.point(TdsPoint{});
        out.end();
    }
    writePositionTrack(out, node.positionKeys);
    if (node.kind == TdsNodeKind::Object) {
        writeStillTrack(out, CHUNK_TRACK_ROTATION, {0.0f, 0.0f, 0.0f, 0.0f});
        writeStillTrack(out, CHUNK_TRACK_SCALE, {1.0f, 1.0f, 1.0f});
    } else if (node.kind == TdsNodeKind::Camera) {
        writeStillTrack(out, CHUNK_TRACK_FOV, {65.0f});
        writeStillTrack(out, CHUNK_TRACK_ROLL, {0.0f});
    }
    out.end();
}

void writeKeyframer(ChunkWriter& out, const TdsScene& scene) {
    out.begin(CHUNK_KEYFRAMER);
    out.begin(CHUNK_KF_HEADER);
    out.u16(5);
    out.name("KASKADE");
    out.u32(static_cast<uint32_t>(scene.endFrame));
    out.end();
    out.begin(CHUNK_KF_SEGMENT);
    out.u32(static_cast<uint32_t>(scene.startFrame));
    out.u32(static_cast<uint32_t>(scene.endFrame));
    out.end();
    out.begin(CHUNK_KF_CURRENT);
    out.u32(static_cast<uint32_t>(scene.startFrame));
    out.end();
    uint16_t id = 0;
    for (const TdsNode& node : scene.nodes) writeNode(out, node, id++);
    out.end();
}

}  // namespace

std::vector<uint8_t> writeTds(const TdsScene& scene) {
    checkScene(scene);
    ChunkWriter out;
    out.begin(CHUNK_MAIN);
    out.begin(CHUNK_VERSION);
    out.u32(3);
    out.end();
    writeEditor(out, scene);
    if (scene.keyframer) writeKeyframer(out, scene);
    out.end();
    return std::move(out.bytes);
}

std::vector<TdsNode> restingNodes(const TdsScene& scene) {
    std::vector<TdsNode> nodes;
    const auto add = [&nodes](TdsNodeKind kind, const std::string& name, const TdsPoint& at) {
        TdsNode node;
        node.kind = kind;
        node.name = name;
        TdsKey key;
        key.position = at;
        node.positionKeys.push_back(key);
        nodes.push_back(node);
    };
    for (const TdsMesh& mesh : scene.meshes) add(TdsNodeKind::Object, mesh.name, mesh.origin);
    for (const TdsLight& light : scene.lights) {
        if (light.spot) {
            add(TdsNodeKind::Spot, light.name, light.position);
            add(TdsNodeKind::SpotTarget, light.name, light.target);
        } else {
            add(TdsNodeKind::Light, light.name, light.position);
        }
    }
    for (const TdsCamera& camera : scene.cameras) {
        add(TdsNodeKind::Camera, camera.name, camera.position);
        add(TdsNodeKind::CameraTarget, camera.name, camera.target);
    }
    return nodes;
}
