#include "tests/gl11/egl_contexts.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl3.h>

namespace {

EGLDisplay g_display = EGL_NO_DISPLAY;
EGLConfig g_config = nullptr;
EGLSurface g_surfaces[2] = {EGL_NO_SURFACE, EGL_NO_SURFACE};  // the reference's, the layer's
EGLContext g_contexts[2] = {EGL_NO_CONTEXT, EGL_NO_CONTEXT};

bool start(int which, EGLenum api, const EGLint* attributes) {
    eglMakeCurrent(g_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (g_contexts[which] != EGL_NO_CONTEXT) {
        eglDestroyContext(g_display, g_contexts[which]);
    }
    eglBindAPI(api);
    g_contexts[which] = eglCreateContext(g_display, g_config, EGL_NO_CONTEXT, attributes);
    return eglMakeCurrent(g_display, g_surfaces[which], g_surfaces[which], g_contexts[which]);
}

}  // namespace

bool openEglContexts(std::string* why) {
    auto fail = [why](const char* what) {
        *why = std::string(what) + " (EGL error " + std::to_string(eglGetError()) + ")";
        return false;
    };
    const auto platformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (platformDisplay == nullptr) {
        return fail("no eglGetPlatformDisplayEXT");
    }
    g_display = platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (g_display == EGL_NO_DISPLAY || !eglInitialize(g_display, nullptr, nullptr)) {
        return fail("Mesa's surfaceless EGL display does not open");
    }
    // As the show's window and the page's canvas: 8-bit RGB, a depth buffer, no multisampling.
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8,
                             EGL_DEPTH_SIZE, 24, EGL_SAMPLES, 0, EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT | EGL_OPENGL_ES3_BIT, EGL_NONE};
    EGLint count = 0;
    if (!eglChooseConfig(g_display, wanted, &g_config, 1, &count) || count == 0) {
        return fail("no EGL configuration for both OpenGL and OpenGL ES 3");
    }
    const EGLint size[] = {EGL_WIDTH, SCENE_SIZE, EGL_HEIGHT, SCENE_SIZE, EGL_NONE};
    for (EGLSurface& surface : g_surfaces) {
        surface = eglCreatePbufferSurface(g_display, g_config, size);
    }
    if (g_surfaces[0] == EGL_NO_SURFACE || g_surfaces[1] == EGL_NO_SURFACE) {
        return fail("no EGL pbuffer");
    }
    startReferenceContext();
    startLayerContext();
    return g_contexts[0] != EGL_NO_CONTEXT && g_contexts[1] != EGL_NO_CONTEXT ? true
                                                                                : fail("no OpenGL or OpenGL ES 3 context");
}

void startReferenceContext() { start(0, EGL_OPENGL_API, nullptr); }

void startLayerContext() {
    const EGLint es3[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
    if (start(1, EGL_OPENGL_ES_API, es3)) {
        glEnable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
    }
}

SceneImage readScene() {
    SceneImage image{std::vector<uint8_t>(static_cast<size_t>(SCENE_SIZE) * SCENE_SIZE * 4)};
    glFinish();
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, SCENE_SIZE, SCENE_SIZE, GL_RGBA, GL_UNSIGNED_BYTE, image.rgba.data());
    return image;
}
