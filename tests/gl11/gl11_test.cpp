// gl11 built natively over OpenGL ES 3 with its deliberate mistakes
// (gl11/faults.h) and compared with Mesa's own fixed function on the feature
// scenes (tests/data/gl11/scenes.txt): every scene drawn as Mesa draws it, with the
// same answers to glGetFloatv, and each mistake putting its scene past the
// bound; kept vertex buffers, a context lost and given back, a shader the
// browser refuses.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl3.h>

#include "app/desktop/capture/png_file.h"
#include "gl11/faults.h"
#include "gl11/gl11_platform.h"
#include "tests/gl11/scene_file.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace {

// The two OpenGLs are compared in one process on Mesa's surfaceless EGL (no
// display needed): an OpenGL compatibility context, whose fixed function is
// the reference, and an OpenGL ES 3 context for gl11, made to behave as WebGL
// 2 does (primitive restart at the largest index, always on): the native
// stand-in for the browser's WebGL context, and the only difference from the
// web build. Each draws into a pbuffer of its own, SCENE_SIZE x SCENE_SIZE, 8
// bits a channel with a 24-bit depth buffer.
constexpr int SCENE_SIZE = 128;
using SceneImage = std::vector<uint8_t>;  // RGBA, rows bottom up, as glReadPixels gives them

EGLDisplay g_display = EGL_NO_DISPLAY;
EGLConfig g_config = nullptr;
EGLSurface g_surfaces[2] = {EGL_NO_SURFACE, EGL_NO_SURFACE};  // the reference's, the layer's
EGLContext g_contexts[2] = {EGL_NO_CONTEXT, EGL_NO_CONTEXT};

// A fresh context of the kind on its pbuffer, current from now on (the one of that kind before is destroyed).
bool startContext(int which) {
    eglMakeCurrent(g_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (g_contexts[which] != EGL_NO_CONTEXT) eglDestroyContext(g_display, g_contexts[which]);
    eglBindAPI(which == 0 ? EGL_OPENGL_API : EGL_OPENGL_ES_API);
    const EGLint es3[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
    g_contexts[which] = eglCreateContext(g_display, g_config, EGL_NO_CONTEXT, which == 0 ? nullptr : es3);
    const bool current = eglMakeCurrent(g_display, g_surfaces[which], g_surfaces[which], g_contexts[which]);
    if (current && which == 1) glEnable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
    return current;
}

// Opens the EGL display and makes both pbuffers; the reason when Mesa's
// surfaceless EGL or either API is missing.
std::string openEglContexts() {
    const auto platformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    g_display = platformDisplay == nullptr ? EGL_NO_DISPLAY : platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (g_display == EGL_NO_DISPLAY || !eglInitialize(g_display, nullptr, nullptr)) return "Mesa's surfaceless EGL display does not open";
    // As the show's window and the page's canvas: 8-bit RGB, a depth buffer, no multisampling.
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8,
                             EGL_DEPTH_SIZE, 24, EGL_SAMPLES, 0, EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT | EGL_OPENGL_ES3_BIT, EGL_NONE};
    EGLint count = 0;
    if (!eglChooseConfig(g_display, wanted, &g_config, 1, &count) || count == 0) return "no EGL configuration for OpenGL and OpenGL ES 3";
    const EGLint size[] = {EGL_WIDTH, SCENE_SIZE, EGL_HEIGHT, SCENE_SIZE, EGL_NONE};
    for (EGLSurface& surface : g_surfaces) surface = eglCreatePbufferSurface(g_display, g_config, size);
    if (g_surfaces[0] == EGL_NO_SURFACE || g_surfaces[1] == EGL_NO_SURFACE) return "no EGL pbuffer";
    return startContext(0) && startContext(1) ? "" : "no OpenGL or OpenGL ES 3 context (EGL error " + std::to_string(eglGetError()) + ")";
}

// The current context's pbuffer, once everything drawn is done.
SceneImage readScene() {
    SceneImage image(static_cast<size_t>(SCENE_SIZE) * SCENE_SIZE * 4);
    glFinish();
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, SCENE_SIZE, SCENE_SIZE, GL_RGBA, GL_UNSIGNED_BYTE, image.data());
    return image;
}

// Differences up to this in a channel are rounding (8-bit colours, float
// lighting computed in another order); a pixel further apart counts.
constexpr int PIXEL_TOLERANCE = 2;

// The most pixels a scene drawn by gl11 may have apart from Mesa's (0.2 % of
// its 16,384). Measured (this test prints the table): gl11 draws every scene
// with no pixel apart, no channel more than 1 from Mesa's. Each deliberate
// mistake puts 266 to 15,376 pixels of its scene apart (the fewest: flat
// lines coloured by their first vertex, 266); harmless variations stay far
// below the bound: a line drawn from its other end moves up to 8 pixels.
constexpr int MAX_PIXELS_APART = 32;

// Pixels with a channel more than PIXEL_TOLERANCE apart, and the largest difference of a channel.
std::pair<int, int> compare(const SceneImage& a, const SceneImage& b) {
    std::pair<int, int> apart;
    for (size_t pixel = 0; pixel < a.size(); pixel += 4) {
        const int largest = std::max({std::abs(a[pixel] - b[pixel]), std::abs(a[pixel + 1] - b[pixel + 1]),
                                      std::abs(a[pixel + 2] - b[pixel + 2])});
        apart = {apart.first + (largest > PIXEL_TOLERANCE ? 1 : 0), std::max(apart.second, largest)};
    }
    return apart;
}

// How far gl11's frame of a scene (with a mistake, when named) is from Mesa's, printed: the figures behind the bound.
int pixelsApart(const Scene& scene, const std::string& mistake, const SceneImage& mesa, const SceneImage& layer) {
    const auto [apart, largest] = compare(mesa, layer);
    std::printf("%-20s %-17s pixels apart %5d, largest channel difference %3d\n", scene.name.c_str(), mistake.c_str(),
                apart, largest);
    return apart;
}

// Writes Mesa's frame and gl11's as NAME-mesa.png and NAME-gl11.png, for
// looking at a failure, and says where.
std::string keep(const std::string& name, const SceneImage& mesa, const SceneImage& layer) {
    std::filesystem::create_directories(KASKADE_SCENE_SHEETS);
    const std::string path = std::string(KASKADE_SCENE_SHEETS) + "/" + name;
    std::string error;
    writePng(path + "-mesa.png", SCENE_SIZE, SCENE_SIZE, 4, mesa.data(), true, 1, &error);
    writePng(path + "-gl11.png", SCENE_SIZE, SCENE_SIZE, 4, layer.data(), true, 1, &error);
    return "Mesa's frame and gl11's in " + path + "-*.png";
}

class Gl11 : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_EQ(openEglContexts(), "");
        scenes = readScenes();
    }
    void TearDown() override { gl11SetFault(Gl11Fault::None); }

    // On a fresh context, or `again` on the layer's context as it is.
    static SceneImage drawLayer(const Scene& scene, SceneRun* run, bool again = false) {
        if (!again) {
            startContext(1);
            gl11Init();
        }
        layer_scenes::drawScene(scene, run);
        gl11EndFrame();
        return readScene();
    }
    static inline std::vector<Scene> scenes;
};

TEST_F(Gl11, DrawsEverySceneAsMesaDoesAndEachMistakeMovesItsScenePastTheBound) {
    std::vector<bool> shown(static_cast<size_t>(Gl11Fault::Count));
    for (const Scene& scene : scenes) {
        SceneRun reference, layer;
        startContext(0);
        reference_scenes::drawScene(scene, &reference);
        const SceneImage mesa = readScene();
        const SceneImage drawn = drawLayer(scene, &layer);
        ASSERT_EQ(reference.error + layer.error, "");
        EXPECT_LE(pixelsApart(scene, "", mesa, drawn), MAX_PIXELS_APART) << scene.name << ": " << keep(scene.name, mesa, drawn);
        ASSERT_EQ(reference.answers.size(), layer.answers.size());
        for (size_t i = 0; i < reference.answers.size(); ++i) {
            EXPECT_NEAR(layer.answers[i], reference.answers[i], 1e-5f * (1.0f + std::abs(reference.answers[i])))
                << scene.name << ": value " << i % 16 << " of glGetFloatv's answer " << i / 16;
        }
        for (const std::string& name : scene.mistakes) {
            const Gl11Fault fault = gl11FaultNamed(name.c_str());
            ASSERT_NE(fault, Gl11Fault::Count) << scene.name << ": no mistake named " << name;
            shown[static_cast<size_t>(fault)] = true;
            gl11SetFault(fault);
            SceneRun run;
            const SceneImage wrong = drawLayer(scene, &run);
            gl11SetFault(Gl11Fault::None);
            EXPECT_GT(pixelsApart(scene, name, mesa, wrong), MAX_PIXELS_APART)
                << scene.name << " with " << name << ": " << keep(scene.name + "-" + name, mesa, wrong);
        }
    }
    for (int f = 1; f < static_cast<int>(Gl11Fault::Count); ++f) {
        EXPECT_TRUE(shown[f] || static_cast<Gl11Fault>(f) == Gl11Fault::RefusedShader)
            << "no scene shows " << gl11FaultName(static_cast<Gl11Fault>(f));
    }
}

// A batch sent again unchanged in the next frame is kept on the GPU and from
// then on costs no vertex bytes. A context lost and given back empty (here:
// a new context in place of the old one) draws, after gl11ContextRestored,
// the frame it drew before: the show's texture names still draw their
// images, the programs and kept batches are made again.
TEST_F(Gl11, KeptBatchesAndAContextGivenBackDrawTheSameFrame) {
    const Scene& scene = *std::find_if(scenes.begin(), scenes.end(), [](auto& s) { return s.name == "sphere-map"; });
    SceneRun run;  // the texture names the show holds throughout
    const SceneImage first = drawLayer(scene, &run);
    EXPECT_GT(gl11LastFrameCounts().streamedBytes, 0u);
    drawLayer(scene, &run, true);
    EXPECT_EQ(compare(first, drawLayer(scene, &run, true)).second, 0);
    EXPECT_EQ(gl11LastFrameCounts().streamedBytes, 0u) << "drawn from kept buffers";
    startContext(1);
    gl11ContextRestored();
    for (const char* when : {"after the loss", "the frame after"}) {
        EXPECT_EQ(compare(first, drawLayer(scene, &run, true)), std::pair(0, 0)) << when;
    }
}

std::string g_fatalHint;

// A shader the browser refuses ends the show with a fatal report that names
// it, with the compiler's log as its second line, where the page shows it;
// its geometry never just goes missing.
TEST_F(Gl11, ARefusedShaderIsAFatalReportWithTheCompilersLog) {
    gl11SetFault(Gl11Fault::RefusedShader);
    const FatalHook previous = setFatalHook([](const char* caption, const char* text, const char* hint, int status) {
        g_fatalHint = hint != nullptr ? hint : "";
        throw FatalError(caption, text, status);
    });
    try {
        SceneRun run;
        drawLayer(scenes[0], &run);
        ADD_FAILURE() << "drawn without a report";
    } catch (const FatalError& error) {
        EXPECT_EQ(std::tie(error.caption, error.text, error.status),
                  std::make_tuple("WEBGL ERROR", "The browser refused a vertex shader of the OpenGL 1.1 layer.", 1));
        EXPECT_NE(g_fatalHint.find("this"), std::string::npos) << "the log names the word it stopped at: " << g_fatalHint;
    }
    setFatalHook(previous);
}

}  // namespace
