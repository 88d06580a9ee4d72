#include "engine/world_state.h"

WorldState keepWorldState(const World& world) {
    WorldState state;
    for (int32_t i = 0; i < world.cameraCount; ++i) {
        const Camera& camera = *world.cameras[i];
        state.cameras.push_back({camera.position, camera.target, camera.fov, camera.upZ});
        if (world.camera == &camera) {
            state.currentCamera = i;
        }
    }
    for (int32_t i = 0; i < world.lightCount; ++i) {
        state.lights.push_back({world.lights[i]->position, Vector{}, world.lights[i]->colour});
    }
    for (int32_t i = 0; i < world.spotlightCount; ++i) {
        const Spotlight& spot = *world.spotlights[i];
        state.lights.push_back({spot.position, spot.target, spot.colour});
    }
    for (int32_t i = 0; i < world.meshCount; ++i) {
        const MeshObject& mesh = *world.meshes[i];
        state.meshes.push_back({mesh.flags, mesh.rotation, mesh.scale, mesh.translation, state.vertices.size(),
                                state.faceNormals.size()});
        for (int32_t v = 0; v < mesh.vertexCount; ++v) {
            state.vertices.push_back({mesh.vertices[v].position, mesh.vertices[v].normal});
        }
        for (int32_t f = 0; f < mesh.faceCount; ++f) {
            state.faceNormals.push_back(mesh.faces[f].normal);
        }
    }
    for (int32_t i = 0; i < world.materialCount; ++i) {
        state.materials.push_back(*world.materials[i]);
    }
    state.currentFrame = world.currentFrame;
    return state;
}

namespace {

bool sameShape(const World& world, const WorldState& state) {
    if (static_cast<size_t>(world.cameraCount) != state.cameras.size() ||
        static_cast<size_t>(world.lightCount + world.spotlightCount) != state.lights.size() ||
        static_cast<size_t>(world.meshCount) != state.meshes.size() ||
        static_cast<size_t>(world.materialCount) != state.materials.size()) {
        return false;
    }
    size_t vertices = 0;
    size_t faces = 0;
    for (int32_t i = 0; i < world.meshCount; ++i) {
        vertices += static_cast<size_t>(world.meshes[i]->vertexCount);
        faces += static_cast<size_t>(world.meshes[i]->faceCount);
    }
    return vertices == state.vertices.size() && faces == state.faceNormals.size();
}

}  // namespace

bool restoreWorldState(World& world, const WorldState& state) {
    if (!sameShape(world, state)) {
        return false;
    }
    for (int32_t i = 0; i < world.cameraCount; ++i) {
        Camera& camera = *world.cameras[i];
        const WorldState::Eye& eye = state.cameras[static_cast<size_t>(i)];
        camera.position = eye.position;
        camera.target = eye.target;
        camera.fov = eye.fov;
        camera.upZ = eye.upZ;
    }
    world.camera = state.currentCamera >= 0 ? world.cameras[state.currentCamera] : nullptr;
    for (int32_t i = 0; i < world.lightCount; ++i) {
        world.lights[i]->position = state.lights[static_cast<size_t>(i)].position;
        world.lights[i]->colour = state.lights[static_cast<size_t>(i)].colour;
    }
    for (int32_t i = 0; i < world.spotlightCount; ++i) {
        const WorldState::Lamp& lamp = state.lights[static_cast<size_t>(world.lightCount + i)];
        world.spotlights[i]->position = lamp.position;
        world.spotlights[i]->target = lamp.target;
        world.spotlights[i]->colour = lamp.colour;
    }
    for (int32_t i = 0; i < world.meshCount; ++i) {
        MeshObject& mesh = *world.meshes[i];
        const WorldState::Placement& placement = state.meshes[static_cast<size_t>(i)];
        mesh.flags = placement.flags;
        mesh.rotation = placement.rotation;
        mesh.scale = placement.scale;
        mesh.translation = placement.translation;
        for (int32_t v = 0; v < mesh.vertexCount; ++v) {
            mesh.vertices[v].position = state.vertices[placement.firstVertex + static_cast<size_t>(v)].position;
            mesh.vertices[v].normal = state.vertices[placement.firstVertex + static_cast<size_t>(v)].normal;
        }
        for (int32_t f = 0; f < mesh.faceCount; ++f) {
            mesh.faces[f].normal = state.faceNormals[placement.firstFace + static_cast<size_t>(f)];
        }
    }
    for (int32_t i = 0; i < world.materialCount; ++i) {
        *world.materials[i] = state.materials[static_cast<size_t>(i)];
    }
    world.currentFrame = state.currentFrame;
    return true;
}
