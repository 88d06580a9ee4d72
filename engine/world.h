// The engine's scene model: a World of meshes, cameras, omni and spot lights
// and materials read from a .3ds entry, with its keyframe segment.
//
// Plain records. A World owns its five pointer arrays, every record they point
// to and its KeyframeSegment; each record owns its tracks (and a mesh its
// vertex and face arrays). Face links to vertices and materials, the World's
// `camera` and a Material's `texture` are borrowed. Every count equals the
// length of its array; an array exists exactly when its count is above 0.
// Arrays grow by exactly one element per append.
//
// Axes: Y is up; a .3ds point (x, y, z) is stored as (x, -z, y).
// Colours are 0xAARRGGBB (in memory blue, green, red, alpha).
#pragma once

#include <cstdint>
#include <cstdio>

#include "engine/engine_fatal.h"
#include "engine/track.h"
#include "engine/vector.h"

struct Library; // resources/library.h
struct Texture; // resources/texture.h

using Colour = uint32_t; // 0xAARRGGBB

// Material drawing modes (Material::mode, compared for exact equality).
constexpr uint32_t MODE_FLAT = 0x01;
constexpr uint32_t MODE_SMOOTH = 0x02;
constexpr uint32_t MODE_SPHERE_MAP = 0x04;
constexpr uint32_t MODE_WIRE = 0x08;
constexpr uint32_t MODE_WIRE_LIT = 0x0A;
constexpr uint32_t MODE_TEXTURE = 0x10;
constexpr uint32_t MODE_TEXTURE_FLAT = 0x11;
constexpr uint32_t MODE_TEXTURE_SMOOTH = 0x12;

// Material effect bits (Material::flags).
constexpr uint32_t MAT_OPAQUE = 0x01;
constexpr uint32_t MAT_ADD = 0x02;
constexpr uint32_t MAT_DARKEN = 0x04;
constexpr uint32_t MAT_ALPHA = 0x08;
constexpr uint32_t MAT_LINEAR = 0x20;
constexpr uint32_t MAT_NO_DEPTH = 0x40;

// MeshObject::flags: drawn only while set.
constexpr uint8_t MESH_VISIBLE = 0x01;

// Width of the .3ds names kept in records (15 characters and the NUL).
constexpr int NAME_SIZE = 16;
// Width of a material's name (18 characters and the NUL).
constexpr int MATERIAL_NAME_SIZE = 19;

struct Material;

struct Vertex {
    Vector position; // engine axes; relative to the mesh's centre once loaded
    Vector normal;   // unit vertex normal, (0, 0, 0) for a vertex no face uses
    float u = 0.0f;  // texture coordinates as the file holds them
    float v = 0.0f;
};

// One triangle.
struct Face {
    uint32_t index[3] = {0, 0, 0};              // vertex numbers a, b, c
    Vertex* vertex[3] = {nullptr, nullptr, nullptr}; // the vertices index names (borrowed)
    Material* material = nullptr;               // bound by name; none until bound (borrowed)
    Vector normal;                              // unit face normal, (0, 0, 0) for zero area
    uint16_t flags = 0;                         // 0x04 edge a-b, 0x02 b-c, 0x01 c-a visible;
                                                // 0x08 u wraps, 0x10 v wraps
    char materialName[NAME_SIZE] = {};          // the material group listing this face, or empty
};

struct Material {
    Texture* texture = nullptr;  // bound by textured modes; owned by the demo part
    Colour diffuse = 0;
    Colour ambient = 0;
    Colour specular = 0;
    float shininess = 110.0f;    // specular exponent
    uint32_t mode = 0;           // MODE_*; 0 draws nothing
    uint32_t flags = MAT_OPAQUE; // MAT_* bits
    uint8_t twoSided = 0;        // 1 when the file marks the material two-sided
    char name[MATERIAL_NAME_SIZE] = {};
};

struct MeshObject {
    Vertex* vertices = nullptr; // vertexCount vertices, owned
    Face* faces = nullptr;      // faceCount faces, owned
    int32_t vertexCount = 0;
    int32_t faceCount = 0;
    char name[NAME_SIZE] = {};
    uint8_t flags = MESH_VISIBLE;
    Vector rotation;                        // degrees about X, Y, Z
    Vector scale{1.0f, 1.0f, 1.0f, 0.0f};
    Vector translation;
    Vector centre;                          // mean of the vertex positions as read
    Track* positionTrack;                   // owned; loaded, never evaluated
    Track* track2;                          // owned; stay empty
    Track* track3;
    Track* track4;

    MeshObject();
    ~MeshObject();
    MeshObject(const MeshObject&) = delete;
    MeshObject& operator=(const MeshObject&) = delete;

    // Stores the angles in degrees about X, Y and Z.
    void setRotation(float x, float y, float z);
    void setScale(float x, float y, float z);
    void setTranslation(float x, float y, float z);

    // Sets every face's vertex links from its index numbers. A face naming a
    // vertex number not below vertexCount is dropped first (the remaining
    // faces keep their order and faceCount shrinks).
    void linkFaceVertices();

    // Recomputes every face normal and every vertex normal from the current
    // positions (unweighted sum of the unit face normals, per corner, then
    // normalised). Needs the face links. No allocation; fine per frame.
    void computeNormals();

    // centre = mean of the vertex positions (single-precision running sums);
    // (0, 0, 0) for a mesh without vertices.
    void computeCentre();
};

struct Camera {
    float fov = 256.0f; // vertical field of view, degrees
    char name[NAME_SIZE] = {};
    Vector position;    // the eye
    Vector target;      // the point looked at
    Track* positionTrack; // owned; evaluated by update()
    Track* targetTrack;   // owned; evaluated by update()
    Track* track3;        // owned; stay empty
    Track* track4;
    float upZ = 0.0f;   // up direction handed to the look-at is (0, 1, upZ)

    Camera();
    ~Camera();
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    // position from positionTrack and target from targetTrack at the whole
    // frame `frame`. A track of one key gives that key's value; an empty
    // track leaves its field as it is.
    void update(int frame);
};

// Omni light.
struct Light {
    Vector position;
    Colour colour = 0;    // alpha byte 0
    float range = 0.0f;   // 1000 from the reader; nothing reads it
    char name[NAME_SIZE] = {};
    Track* positionTrack; // owned; loaded, never evaluated

    Light();
    ~Light();
    Light(const Light&) = delete;
    Light& operator=(const Light&) = delete;
};

struct Spotlight {
    Vector position;
    Vector target;
    Colour colour = 0;    // alpha byte 0
    Track* targetTrack;   // owned; loaded, never evaluated
    Track* positionTrack; // owned; loaded, never evaluated
    float hotspot = 0.0f; // cone angles of the file, degrees
    float falloff = 0.0f;
    char name[NAME_SIZE] = {};

    Spotlight();
    ~Spotlight();
    Spotlight(const Spotlight&) = delete;
    Spotlight& operator=(const Spotlight&) = delete;
};

struct World {
    MeshObject** meshes = nullptr; // in file order
    int32_t meshCount = 0;
    Camera* camera = nullptr;      // the camera render() looks through (borrowed)
    Camera** cameras = nullptr;
    int32_t cameraCount = 0;
    Light** lights = nullptr;      // omni lights
    int32_t lightCount = 0;
    Spotlight** spotlights = nullptr;
    int32_t spotlightCount = 0;
    Material** materials = nullptr;
    int32_t materialCount = 0;
    KeyframeSegment* segment;      // owned
    float currentFrame = 0.0f;     // set by setFrame

    World();
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    // Reads the .3ds entry `entryName` of the open library into this World
    // (appending to what earlier loads added) and prepares the new meshes.
    // Ends the process through engineFatal on bad data, through the library's
    // own report when the entry is missing.
    void load(const char* entryName, Library& library);

    // Like load, from .3ds data starting at the current position of `file`.
    // Tools and tests use it for plain .3ds files.
    void loadFromFile(FILE* file);

    // Appends a Material with the defaults and `name` (at most 18 characters kept).
    void addMaterial(const char* name);

    // Stores the values into every material named `name`; no match, no change.
    void setMaterial(const char* name, uint32_t mode, Texture* texture, Colour diffuse,
                     Colour specular, Colour ambient, float shininess, uint8_t twoSided,
                     uint32_t flags);

    // Appends a Camera at (x, y, z) looking at (targetX, targetY, targetZ),
    // whole numbers converted to float, with `fov` degrees.
    void addCamera(const char* name, int x, int y, int z, int targetX, int targetY,
                   int targetZ, int fov);

    // Appends an omni Light at (x, y, z) with the colour bytes (alpha 0).
    void addLight(const char* name, int x, int y, int z, uint8_t red, uint8_t green,
                  uint8_t blue, float range);

    // Appends a Spotlight at (x, y, z) aimed at (targetX, targetY, targetZ).
    void addSpotlight(const char* name, int x, int y, int z, int targetX, int targetY,
                      int targetZ, uint8_t red, uint8_t green, uint8_t blue, float hotspot,
                      float falloff);

    // Appends `mesh` (allocated with new; the World takes it over).
    void addMesh(MeshObject* mesh);

    // currentFrame from `time` (frames) by the segment: clamped at endFrame
    // when loop is 0, wrapped by subtracting endFrame while above it when loop
    // is 1 and endFrame > 0, then raised to startFrame.
    void setFrame(float time);

    // Binds every face of `mesh` to the last material of this World whose
    // name equals the face's materialName; no match leaves it unbound.
    void bindMaterials(MeshObject& mesh);

    // Draws the World into the current OpenGL context (engine/renderer.cpp).
    void render();
};
