// World::render: the projection from the current camera, the lights, then
// every visible mesh with its matrix, its first face's material and its
// drawing mode. Immediate mode, no sorting, no culling of its own.
#include "base/gl.h"

#include "engine/renderer.h"
#include "engine/renderer_flags.h"
#include "engine/renderer_modes.h"

namespace {

// Aspect 1, not the window's: the show's frames are drawn squeezed to 4:3.
constexpr GLdouble ASPECT = 1.0;
constexpr GLdouble NEAR_PLANE = 1.0;
constexpr GLdouble FAR_PLANE = 6000.0;

constexpr float BYTE_TO_UNIT = 1.0f / 255.0f;

void setProjection(const Camera& camera) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(camera.fov, ASPECT, NEAR_PLANE, FAR_PLANE);
}

// Omni lights first, then spot lights, from GL_LIGHT0 up; none past the eighth.
void setLights(const World& world) {
    int index = 0;
    for (int32_t i = 0; i < world.lightCount && index < RENDER_MAX_LIGHTS; ++i, ++index) {
        const Light& light = *world.lights[i];
        setOmniLight(index, light.position, light.colour);
    }
    for (int32_t i = 0; i < world.spotlightCount && index < RENDER_MAX_LIGHTS; ++i, ++index) {
        const Spotlight& spot = *world.spotlights[i];
        setSpotLight(index, spot.position, spot.target, spot.colour);
    }
}

// The material the whole mesh is drawn with, or null when it has none to give.
const Material* meshMaterial(const MeshObject& mesh) {
    if (mesh.faceCount <= 0 || mesh.faces == nullptr) {
        return nullptr;
    }
    return mesh.faces[0].material;
}

// Vertices are stored relative to the centre: move them back, offset,
// rotate (Z first, then Y, then X) and scale about the scene's origin, view.
void setModelView(const Camera& camera, const MeshObject& mesh) {
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(camera.position.x, camera.position.y, camera.position.z, camera.target.x, camera.target.y,
              camera.target.z, 0.0, 1.0, camera.upZ);
    glScalef(mesh.scale.x, mesh.scale.y, mesh.scale.z);
    glRotatef(mesh.rotation.x, 1.0f, 0.0f, 0.0f);
    glRotatef(mesh.rotation.y, 0.0f, 1.0f, 0.0f);
    glRotatef(mesh.rotation.z, 0.0f, 0.0f, 1.0f);
    glTranslatef(mesh.translation.x, mesh.translation.y, mesh.translation.z);
    glTranslatef(mesh.centre.x, mesh.centre.y, mesh.centre.z);
}

// The diffuse colour is also the unlit modes' colour and, through colour
// material tracking, the lit modes' ambient and diffuse reflectance.
void setColours(const Material& material) {
    GLfloat colour[4];
    colourToFloats(material.diffuse, colour);
    glColor4f(colour[0], colour[1], colour[2], colour[3]);
    colourToFloats(material.specular, colour);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, colour);
    colourToFloats(material.ambient, colour);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, colour);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SHININESS, &material.shininess);
}

void drawMesh(const Camera& camera, const MeshObject& mesh, const Material& material) {
    setModelView(camera, mesh);
    setColours(material);
    applyMaterialFlags(material.flags);
    const DrawMode* mode = findDrawMode(material.mode);
    if (mode == nullptr) {
        return;
    }
    if (mode->edges) {
        drawEdges(mesh, *mode);
    } else {
        drawTriangles(mesh, material, *mode);
    }
}

}  // namespace

void colourToFloats(Colour colour, float rgba[4]) {
    rgba[0] = static_cast<float>((colour >> 16) & 0xFF) * BYTE_TO_UNIT;
    rgba[1] = static_cast<float>((colour >> 8) & 0xFF) * BYTE_TO_UNIT;
    rgba[2] = static_cast<float>(colour & 0xFF) * BYTE_TO_UNIT;
    rgba[3] = static_cast<float>((colour >> 24) & 0xFF) * BYTE_TO_UNIT;
}

void World::render() {
    if (camera == nullptr) {
        return;
    }
    setProjection(*camera);
    // Still in GL_PROJECTION mode: the lights' save, identity and restore act
    // on the projection, so their positions go through the model-view matrix
    // the caller left.
    setLights(*this);
    for (int32_t i = 0; i < meshCount; ++i) {
        const MeshObject& mesh = *meshes[i];
        if (!(mesh.flags & MESH_VISIBLE)) {
            continue;
        }
        const Material* material = meshMaterial(mesh);
        if (material == nullptr) {
            continue;
        }
        drawMesh(*camera, mesh, *material);
    }
    glFlush();
}
