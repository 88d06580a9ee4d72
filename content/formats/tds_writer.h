// content/formats: the file writers of the generator (.3ds scenes, PCX images, MP3 audio).
//
// A .3ds writer: turns a scene description into the chunk tree a modelling
// program exports, byte for byte in the layout the engine's reader takes.
//
// Everything here is in the file's own terms: points in the file's axes (Z up;
// the engine stores (x, y, z) as (x, -z, y)), colours as floats 0..1, frames
// as whole keyframer frames. Besides the chunks the engine reads, the writer
// emits what an exporter always writes and the engine skips: the file version,
// the master scale, smoothing groups, local axes, the keyframer header and
// current frame, node ids, pivots, and rotation, scale, fov and roll tracks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "content/formats/tds_face_flags.h"

// A point or direction in the file's axes.
struct TdsPoint {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

// A colour, each component 0..1.
struct TdsColour {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
};

// How a material's colours are stored.
enum class TdsColourForm {
    Bytes,  // 0x0011 (24-bit), followed by its gamma-corrected copy 0x0012
    Floats  // 0x0010 (three floats), followed by its gamma-corrected copy 0x0013
};

// Shading values of chunk 0xA100.
constexpr uint16_t TDS_SHADING_WIRE = 0;
constexpr uint16_t TDS_SHADING_FLAT = 1;
constexpr uint16_t TDS_SHADING_GOURAUD = 2;
constexpr uint16_t TDS_SHADING_PHONG = 3;
constexpr uint16_t TDS_SHADING_METAL = 4;

// Longest name the format holds (15 characters and the NUL).
constexpr size_t TDS_NAME_MAX = 15;

struct TdsMaterial {
    std::string name;  // at most TDS_NAME_MAX characters
    TdsColour ambient;
    TdsColour diffuse;
    TdsColour specular;
    TdsColourForm colourForm = TdsColourForm::Bytes;
    uint16_t shading = TDS_SHADING_FLAT;
    bool twoSided = false;  // writes 0xA081
    bool wire = false;      // writes 0xA085 (and a wire size)
    int shininessPercent = 10;  // 0..100, chunk 0xA040
};


struct TdsFace {
    uint16_t a = 0;
    uint16_t b = 0;
    uint16_t c = 0;
    uint16_t flags = TDS_EDGES_ALL;
    uint32_t smoothing = 1;  // smoothing-group bits (chunk 0x4150)
};

// One face material group: the faces (by number) drawn with `material`.
struct TdsFaceGroup {
    std::string material;
    std::vector<uint16_t> faces;
};

struct TdsTexCoord {
    float u = 0.0f;
    float v = 0.0f;
};

// A triangle mesh. At most 65,535 vertices and faces.
struct TdsMesh {
    std::string name;                   // at most TDS_NAME_MAX characters
    std::vector<TdsPoint> vertices;
    std::vector<TdsTexCoord> texCoords; // empty, or one per vertex
    std::vector<TdsFace> faces;         // indices below vertices.size()
    std::vector<TdsFaceGroup> groups;   // face numbers below faces.size()
    TdsPoint axisX{1.0f, 0.0f, 0.0f};   // local axes (chunk 0x4160)
    TdsPoint axisY{0.0f, 1.0f, 0.0f};
    TdsPoint axisZ{0.0f, 0.0f, 1.0f};
    TdsPoint origin;
};

// An omni light, or a spot light when `spot` is set.
struct TdsLight {
    std::string name;
    TdsPoint position;
    TdsColour colour{1.0f, 1.0f, 1.0f};
    bool spot = false;
    TdsPoint target;       // spot lights only
    float hotspot = 30.0f; // degrees, spot lights only
    float falloff = 45.0f;
};

struct TdsCamera {
    std::string name;
    TdsPoint position;
    TdsPoint target;
    float bank = 0.0f;   // degrees
    float lens = 28.0f;  // millimetres
};

// Keyframer node kinds, by their chunk ids.
enum class TdsNodeKind : uint16_t {
    Object = 0xB002,
    Camera = 0xB003,
    CameraTarget = 0xB004,
    Light = 0xB005,
    SpotTarget = 0xB006,
    Spot = 0xB007
};

// Key flag bits: which spline values follow the frame number.
constexpr uint16_t TDS_KEY_TENSION = 0x01;
constexpr uint16_t TDS_KEY_CONTINUITY = 0x02;
constexpr uint16_t TDS_KEY_BIAS = 0x04;
constexpr uint16_t TDS_KEY_EASE_TO = 0x08;
constexpr uint16_t TDS_KEY_EASE_FROM = 0x10;

struct TdsKey {
    int32_t frame = 0;
    TdsPoint position;
    uint16_t flags = 0;  // TDS_KEY_* bits: the values written with the key
    float tension = 0.0f;
    float continuity = 0.0f;
    float bias = 0.0f;
    float easeTo = 0.0f;
    float easeFrom = 0.0f;
};

// One keyframer node. `name` names the mesh, camera or light it animates (a
// target node carries its camera's or spot light's name).
struct TdsNode {
    TdsNodeKind kind = TdsNodeKind::Object;
    std::string name;
    std::vector<TdsKey> positionKeys;  // in ascending frame order
};

struct TdsScene {
    std::vector<TdsMaterial> materials;
    std::vector<TdsMesh> meshes;   // named objects are written meshes first,
    std::vector<TdsLight> lights;  // then lights, then cameras
    std::vector<TdsCamera> cameras;
    float masterScale = 1.0f;
    bool keyframer = true;         // writes the keyframer chunk 0xB000
    int32_t startFrame = 0;        // the segment (0xB008)
    int32_t endFrame = 100;
    std::vector<TdsNode> nodes;    // written in this order
};

// The complete .3ds file. A scene that breaks the limits above (a name too
// long, too many vertices, an index out of range, texture coordinates that do
// not match the vertices) ends the process through fatalReport.
std::vector<uint8_t> writeTds(const TdsScene& scene);

// The node list an exporter writes for `scene` when nothing moves: one node
// per mesh, light (and spot target) and camera (and camera target), each with
// a single key at frame 0 holding the object's place.
std::vector<TdsNode> restingNodes(const TdsScene& scene);
