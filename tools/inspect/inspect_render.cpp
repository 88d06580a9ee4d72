// kaskade-inspect render: draws one 640 x 480 frame of a .3ds scene with the
// show's engine and writes it as a PNG, so a content author sees a scene
// without the show. What the show's parts would set themselves is filled in
// here: a usable field of view, a camera when the scene has none, a light when
// it has none, and a flat grey for faces that have no material to draw with.
#include <GL/freeglut.h>
#include <GL/glu.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <string>
#include <vector>

#include "app/gl_start_state.h"
#include "app/desktop/capture/png_file.h"
#include "engine/world.h"
#include "tools/inspect/inspect_command.h"

namespace {

constexpr int FRAME_WIDTH = 640;
constexpr int FRAME_HEIGHT = 480;
// Scene cameras carry 256 until a part sets theirs; the parts use 110.
constexpr float DEFAULT_FOV = 110.0f;
// The framing camera's view and the depth range the renderer projects into.
constexpr float FRAMING_FOV = 60.0f;
constexpr float FAR_PLANE = 6000.0f;
constexpr Colour GREY = 0x00A0A0A0;

int fail(const std::string& message) {
    std::fprintf(stderr, "kaskade-inspect render: %s\n", message.c_str());
    return 1;
}

bool parseFrame(const char* text, float* frame) {
    char* end = nullptr;
    *frame = std::strtof(text, &end);
    return end != text && *end == '\0' && std::isfinite(*frame);
}

// The scene, plain or an archive entry. Bad data ends the process through the
// engine's report.
bool loadScene(World& world, const InspectSource& source, std::string* error) {
    uint32_t size = 0;
    FILE* file = openInspectSource(source, &size, error);
    if (file == nullptr) {
        return false;
    }
    world.loadFromFile(file);
    std::fclose(file);
    return true;
}

// Faces without a material, or whose material has no drawing mode, get a
// flat grey one of the tool's own.
int useGreyWhereUndrawable(World& world) {
    world.addMaterial("inspect grey");
    Material* grey = world.materials[world.materialCount - 1];
    grey->mode = MODE_FLAT;
    grey->diffuse = GREY;
    int replaced = 0;
    for (int32_t m = 0; m < world.meshCount; ++m) {
        MeshObject& mesh = *world.meshes[m];
        for (int32_t f = 0; f < mesh.faceCount; ++f) {
            Face& face = mesh.faces[f];
            if (face.material == nullptr || face.material->mode == 0) {
                face.material = grey;
                ++replaced;
            }
        }
    }
    return replaced;
}

struct Bounds {
    Vector low{HUGE_VALF, HUGE_VALF, HUGE_VALF, 0.0f};
    Vector high{-HUGE_VALF, -HUGE_VALF, -HUGE_VALF, 0.0f};
    bool empty() const { return !(low.x <= high.x); }
};

// Every vertex where the renderer puts it with the meshes' own placement
// (a loaded mesh has scale 1, no rotation and no translation).
Bounds sceneBounds(const World& world) {
    Bounds bounds;
    for (int32_t m = 0; m < world.meshCount; ++m) {
        const MeshObject& mesh = *world.meshes[m];
        for (int32_t v = 0; v < mesh.vertexCount; ++v) {
            const Vector p = mesh.vertices[v].position.add(mesh.centre).add(mesh.translation);
            if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) {
                continue;
            }
            bounds.low = Vector{std::fmin(bounds.low.x, p.x), std::fmin(bounds.low.y, p.y),
                                std::fmin(bounds.low.z, p.z), 0.0f};
            bounds.high = Vector{std::fmax(bounds.high.x, p.x), std::fmax(bounds.high.y, p.y),
                                 std::fmax(bounds.high.z, p.z), 0.0f};
        }
    }
    return bounds;
}

// A camera of the tool's own looking at the middle of the scene from the
// front, right and above, far enough back for the whole bounding sphere. A
// scene too large for the renderer's depth range is scaled down about the
// origin; returns that scale (1 when the scene fits).
float addFramingCamera(World& world) {
    world.addCamera("inspect", 0, 0, 0, 0, 0, 0, static_cast<int>(FRAMING_FOV));
    Camera* camera = world.cameras[world.cameraCount - 1];
    world.camera = camera;
    const Bounds bounds = sceneBounds(world);
    if (bounds.empty()) {
        camera->position = Vector{0.0f, 0.0f, -100.0f, 0.0f};
        return 1.0f;
    }
    const Vector middle{(bounds.low.x + bounds.high.x) / 2, (bounds.low.y + bounds.high.y) / 2,
                        (bounds.low.z + bounds.high.z) / 2, 0.0f};
    const Vector half{bounds.high.x - middle.x, bounds.high.y - middle.y, bounds.high.z - middle.z, 0.0f};
    // In double: coordinates near the float limit must not overflow to infinity here.
    const double hx = half.x, hy = half.y, hz = half.z;
    const float radius = static_cast<float>(std::fmax(std::sqrt(hx * hx + hy * hy + hz * hz), 1.0));
    const float fit = 1.2f / std::sin(FRAMING_FOV * std::numbers::pi_v<float> / 360.0f);
    // Distance plus radius must stay inside the far plane.
    const float scale = std::fmin(1.0f, 0.9f * FAR_PLANE / (radius * (fit + 1.0f)));
    Vector from{0.55f, 0.45f, -0.7f, 0.0f};
    from.normalise();
    const float distance = radius * fit * scale;
    camera->target = Vector{middle.x * scale, middle.y * scale, middle.z * scale, 0.0f};
    camera->position = Vector{camera->target.x + from.x * distance, camera->target.y + from.y * distance,
                              camera->target.z + from.z * distance, 0.0f};
    for (int32_t m = 0; m < world.meshCount; ++m) {
        world.meshes[m]->setScale(scale, scale, scale);
    }
    return scale;
}

// The file's camera at `frame`, with a field of view the projection can use.
void useSceneCamera(World& world, float frame) {
    Camera& camera = *world.camera;
    if (!(camera.fov > 0.0f && camera.fov < 180.0f)) {
        camera.fov = DEFAULT_FOV;
    }
    if (camera.positionTrack->keyCount > 0 || camera.targetTrack->keyCount > 0) {
        world.setFrame(frame);
        camera.update(static_cast<int>(world.currentFrame));
    }
}

// The state the show's start-up leaves for every part.
void setStartState() {
    setStartGlState();
    glViewport(0, 0, FRAME_WIDTH, FRAME_HEIGHT);
}

bool openWindow(std::string* error) {
    const char* display = std::getenv("DISPLAY");
    if (display == nullptr || display[0] == '\0') {
        *error = "no display (run it under xvfb-run -a -s \"-screen 0 640x480x24\")";
        return false;
    }
    int argc = 1;
    char name[] = "kaskade-inspect";
    char* argv[] = {name, nullptr};
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH);
    glutInitWindowSize(FRAME_WIDTH, FRAME_HEIGHT);
    glutCreateWindow("kaskade-inspect render");
    return true;
}

// One frame into the back buffer, read back before any swap (rows bottom-up).
// The lights are placed by the camera's view, scaled like the meshes.
std::vector<uint8_t> renderFrame(World& world, float scale) {
    setStartState();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const Camera& camera = *world.camera;
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(camera.position.x, camera.position.y, camera.position.z, camera.target.x, camera.target.y,
              camera.target.z, 0.0, 1.0, camera.upZ);
    glScalef(scale, scale, scale);
    world.render();
    std::vector<uint8_t> rgb(static_cast<size_t>(FRAME_WIDTH) * FRAME_HEIGHT * 3);
    glReadBuffer(GL_BACK);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, FRAME_WIDTH, FRAME_HEIGHT, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
    return rgb;
}

int32_t faceTotal(const World& world) {
    int32_t total = 0;
    for (int32_t m = 0; m < world.meshCount; ++m) {
        total += world.meshes[m]->faceCount;
    }
    return total;
}

int runRender(int argc, char** argv) {
    float frame = 0.0f;
    const bool frameGiven = argc == 5 && std::string(argv[3]) == "--frame";
    if (!(argc == 3 || frameGiven) || (frameGiven && !parseFrame(argv[4], &frame))) {
        std::fprintf(stderr, "usage: kaskade-inspect render SCENE OUT.png [--frame F]\n");
        return 2;
    }
    World world;
    std::string error;
    if (!loadScene(world, parseInspectSource(argv[1]), &error)) {
        return fail(error);
    }
    const int32_t fileLights = world.lightCount + world.spotlightCount;
    const int32_t fileCameras = world.cameraCount;
    const int32_t fileMaterials = world.materialCount;
    const int32_t faces = faceTotal(world);
    const int grey = useGreyWhereUndrawable(world);
    float scale = 1.0f;
    std::string view;
    if (world.camera != nullptr) {
        useSceneCamera(world, frame);
        view = std::string("camera '") + world.camera->name + "' at frame " +
               std::to_string(static_cast<int>(world.currentFrame));
    } else {
        scale = addFramingCamera(world);
        view = scale < 1.0f ? "a camera framing the scene, scaled to fit" : "a camera framing the scene";
    }
    if (fileLights == 0) {
        // A white lamp at the eye, in the scene's units (the view matrix set
        // before rendering scales the lights like the meshes).
        const Vector& eye = world.camera->position;
        world.addLight("inspect lamp", static_cast<int>(eye.x / scale), static_cast<int>(eye.y / scale),
                       static_cast<int>(eye.z / scale), 255, 255, 255, 1000.0f);
    }
    if (!openWindow(&error)) {
        return fail(error);
    }
    const std::vector<uint8_t> rgb = renderFrame(world, scale);
    if (!writePng(argv[2], FRAME_WIDTH, FRAME_HEIGHT, 3, rgb.data(), true, 6, &error)) {
        return fail(error);
    }
    std::printf("%s: %d meshes, %d faces (%d drawn grey), %d materials, %d cameras, %d lights\n", argv[1],
                world.meshCount, faces, grey, fileMaterials, fileCameras, fileLights);
    for (int32_t i = 0; i < fileMaterials; ++i) {
        const Material& material = *world.materials[i];
        std::printf("material '%s': mode %u, diffuse %06X%s\n", material.name, material.mode,
                    material.diffuse & 0xFFFFFF, material.mode == 0 ? " (drawn grey)" : "");
    }
    std::printf("viewed through %s, fov %g%s; wrote %s\n", view.c_str(), world.camera->fov,
                fileLights == 0 ? ", lit by a lamp at the eye" : "", argv[2]);
    return 0;
}

const InspectCommand g_renderCommand(
    "render", "SCENE OUT.png [--frame F]",
    "renders one 640x480 frame of a .3ds scene with the show's engine (its first camera at frame F, "
    "default 0, or a camera framing the whole scene) and writes it as a PNG; needs a display",
    runRender);

}  // namespace
