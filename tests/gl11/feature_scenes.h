// One small scene per OpenGL 1.1 feature the show draws with, written once
// against OpenGL 1.1 and GLU and compiled twice (feature_scenes.cpp): over
// the system's OpenGL, as the desktop draws, and over gl11, as the browser
// draws. Each scene starts from a fresh context (OpenGL's initial state),
// sets its viewport to SCENE_SIZE x SCENE_SIZE, clears and draws.
#pragma once

struct FeatureScene {
    const char* name;
    void (*draw)();
};

enum SceneIndex {
    SCENE_POSITIONAL_LIGHTS,
    SCENE_SPOT_LIGHTS,
    SCENE_GLOBAL_AMBIENT,
    SCENE_SPECULAR,
    SCENE_FLAT_SHADING,
    SCENE_SMOOTH_SHADING,
    SCENE_FOG,
    SCENE_TEXTURE_MODULATE,
    SCENE_TEXTURE_DECAL,
    SCENE_SPHERE_MAP,
    SCENE_BLEND_FUNCTIONS,
    SCENE_DEPTH_AND_CULL,
    SCENE_MATRIX_STACKS,
    SCENE_SINGULAR_MODEL_VIEW,
    SCENE_COUNT
};

// The scenes drawn through the system's OpenGL (Mesa's fixed function).
namespace reference_scenes {
extern const FeatureScene SCENES[SCENE_COUNT];
}

// The same scenes drawn through gl11.
namespace layer_scenes {
extern const FeatureScene SCENES[SCENE_COUNT];
}
