// Composes one .3ds scene from procedural meshes placed in the engine's axes
// (Y up), then writes it with the .3ds writer.
//
// What the builder settles for every scene of the show:
// - Points go to the file as (x, z, -y), which the engine reads back as (x, y, z).
// - Faces are stored turned so that the side of a solid facing the viewer is
//   the one the renderer keeps: it culls counter-clockwise triangles on
//   screen (front faces are clockwise), so a face seen from outside must come
//   out clockwise. Its stored normal then points into the solid, and a light
//   shines on it from the solid's side: the scenes put their lights there.
// - Cameras and lights stand on whole numbers (the engine truncates them).
// - Every object gets a keyframer node; cameras given a path get their
//   position and target keys, everything else a single resting key.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "content/geometry/geometry.h"
#include "content/formats/tds_writer.h"

// A colour from 0..255 components.
TdsColour rgb(int red, int green, int blue);

// The file's point for an engine point.
TdsPoint filePoint(Vec3 engine);

// One key of a camera flight, in engine axes.
struct CameraKey {
    int32_t frame = 0;
    Vec3 position;
    Vec3 target;
};

// Keys every `step` frames from 0 to `period` along the closed path
// position(a), a from 0 to 1 over the period: the eye on the path, the target
// `lead` further along it and `drop` lower. The last key repeats the first,
// so a segment of (0, period) loops.
std::vector<CameraKey> loopFlight(int32_t period, int32_t step, const std::function<Vec3(float a)>& position,
                                  float lead, float drop);

struct SceneBuilder {
    TdsScene scene;

    // Adds a material. Colour chunks are bytes unless `form` says floats.
    void material(const std::string& name, TdsColour diffuse, uint16_t shading = TDS_SHADING_FLAT,
                  bool wire = false, TdsColourForm form = TdsColourForm::Bytes);
    // Adds a mesh whose every face uses `material`; returns its index.
    int mesh(const std::string& name, const GeoMesh& geometry, const std::string& material);
    // Adds a mesh whose triangle i uses faceMaterials[i]; returns its index.
    int mesh(const std::string& name, const GeoMesh& geometry, const std::vector<std::string>& faceMaterials);
    void omni(const std::string& name, Vec3 position, TdsColour colour);
    void spot(const std::string& name, Vec3 position, Vec3 target, TdsColour colour, float hotspot, float falloff);
    void camera(const std::string& name, Vec3 position, Vec3 target);
    // Gives camera `name` a flight: one position and one target key per entry.
    void cameraPath(const std::string& name, const std::vector<CameraKey>& keys);
    // The keyframe segment.
    void segment(int32_t start, int32_t end);

    // The .3ds file.
    std::vector<uint8_t> write() const;

private:
    struct Path {
        std::string camera;
        std::vector<CameraKey> keys;
    };
    std::vector<Path> paths_;
};
