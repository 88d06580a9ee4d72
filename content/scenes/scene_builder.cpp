#include "content/scenes/scene_builder.h"

#include <cmath>
#include <map>

#include "base/fatal.h"

TdsColour rgb(int red, int green, int blue) {
    return {static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f, static_cast<float>(blue) / 255.0f};
}

// Adding 0 turns a negated zero into a plain one.
TdsPoint filePoint(Vec3 engine) { return {engine.x + 0.0f, engine.z + 0.0f, -engine.y + 0.0f}; }

namespace {

TdsPoint wholePoint(Vec3 engine) {
    return filePoint({std::round(engine.x), std::round(engine.y), std::round(engine.z)});
}

// The stored face for a geometry triangle: b and c swapped (clockwise seen
// from outside), the edge bits following their edges.
TdsFace storedFace(const GeoTriangle& t) {
    TdsFace face;
    face.a = t.a;
    face.b = t.c;
    face.c = t.b;
    face.flags = static_cast<uint16_t>((t.edges & TDS_EDGE_BC) | ((t.edges & TDS_EDGE_CA) ? TDS_EDGE_AB : 0) |
                                       ((t.edges & TDS_EDGE_AB) ? TDS_EDGE_CA : 0));
    face.smoothing = 1;
    return face;
}

}  // namespace

std::vector<CameraKey> loopFlight(int32_t period, int32_t step, const std::function<Vec3(float a)>& position,
                                  float lead, float drop) {
    std::vector<CameraKey> keys;
    for (int32_t frame = 0; frame <= period; frame += step) {
        const float a = static_cast<float>(frame % period) / static_cast<float>(period);
        keys.push_back({frame, position(a), position(a + lead) - Vec3{0.0f, drop, 0.0f}});
    }
    return keys;
}

void SceneBuilder::material(const std::string& name, TdsColour diffuse, uint16_t shading, bool wire,
                            TdsColourForm form) {
    TdsMaterial m;
    m.name = name;
    m.diffuse = diffuse;
    m.ambient = {diffuse.red * 0.3f, diffuse.green * 0.3f, diffuse.blue * 0.3f};
    m.specular = rgb(230, 230, 230);
    m.shading = shading;
    m.wire = wire;
    m.colourForm = form;
    scene.materials.push_back(m);
}

int SceneBuilder::mesh(const std::string& name, const GeoMesh& geometry, const std::string& material) {
    return mesh(name, geometry, std::vector<std::string>(geometry.triangles.size(), material));
}

int SceneBuilder::mesh(const std::string& name, const GeoMesh& geometry,
                       const std::vector<std::string>& faceMaterials) {
    if (faceMaterials.size() != geometry.triangles.size()) {
        fatalReport("KASKADE CONTENT", ("mesh \"" + name + "\" lacks a material for some faces").c_str(), 1);
    }
    TdsMesh m;
    m.name = name;
    for (size_t i = 0; i < geometry.positions.size(); ++i) {
        m.vertices.push_back(filePoint(geometry.positions[i]));
        m.texCoords.push_back({geometry.texCoords[i].u, geometry.texCoords[i].v});
    }
    for (const GeoTriangle& t : geometry.triangles) m.faces.push_back(storedFace(t));
    // Groups in order of first use, so the file lists them as they appear.
    std::map<std::string, size_t> groupOf;
    for (size_t i = 0; i < faceMaterials.size(); ++i) {
        auto found = groupOf.find(faceMaterials[i]);
        if (found == groupOf.end()) {
            found = groupOf.emplace(faceMaterials[i], m.groups.size()).first;
            m.groups.push_back({faceMaterials[i], {}});
        }
        m.groups[found->second].faces.push_back(static_cast<uint16_t>(i));
    }
    m.origin = filePoint(centroid(geometry));
    scene.meshes.push_back(std::move(m));
    return static_cast<int>(scene.meshes.size()) - 1;
}

void SceneBuilder::omni(const std::string& name, Vec3 position, TdsColour colour) {
    TdsLight light;
    light.name = name;
    light.position = wholePoint(position);
    light.colour = colour;
    scene.lights.push_back(light);
}

void SceneBuilder::spot(const std::string& name, Vec3 position, Vec3 target, TdsColour colour, float hotspot,
                        float falloff) {
    TdsLight light;
    light.name = name;
    light.position = wholePoint(position);
    light.target = wholePoint(target);
    light.colour = colour;
    light.spot = true;
    light.hotspot = hotspot;
    light.falloff = falloff;
    scene.lights.push_back(light);
}

void SceneBuilder::camera(const std::string& name, Vec3 position, Vec3 target) {
    TdsCamera c;
    c.name = name;
    c.position = wholePoint(position);
    c.target = wholePoint(target);
    scene.cameras.push_back(c);
}

void SceneBuilder::cameraPath(const std::string& name, const std::vector<CameraKey>& keys) {
    paths_.push_back({name, keys});
}

void SceneBuilder::segment(int32_t start, int32_t end) {
    scene.startFrame = start;
    scene.endFrame = end;
}

std::vector<uint8_t> SceneBuilder::write() const {
    TdsScene out = scene;
    out.nodes = restingNodes(scene);
    for (const Path& path : paths_) {
        for (TdsNode& node : out.nodes) {
            const bool eye = node.kind == TdsNodeKind::Camera;
            const bool aim = node.kind == TdsNodeKind::CameraTarget;
            if (node.name != path.camera || !(eye || aim)) continue;
            node.positionKeys.clear();
            for (const CameraKey& k : path.keys) {
                TdsKey key;
                key.frame = k.frame;
                key.position = filePoint(eye ? k.position : k.target);
                node.positionKeys.push_back(key);
            }
        }
    }
    return writeTds(out);
}
