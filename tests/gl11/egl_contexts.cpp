#include "tests/gl11/egl_contexts.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl3.h>

#include <cstdio>

namespace {

struct Egl {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = nullptr;
    EGLSurface referenceSurface = EGL_NO_SURFACE;
    EGLSurface layerSurface = EGL_NO_SURFACE;
    EGLContext reference = EGL_NO_CONTEXT;
    EGLContext layer = EGL_NO_CONTEXT;
    bool opened = false;
    std::string failure;
};
Egl g_egl;

bool fail(const char* what, std::string* why) {
    char code[32];
    std::snprintf(code, sizeof code, " (EGL error 0x%04X)", static_cast<unsigned>(eglGetError()));
    g_egl.failure = std::string(what) + code;
    *why = g_egl.failure;
    return false;
}

EGLContext replace(EGLContext old, EGLenum api, const EGLint* attributes, EGLSurface surface) {
    eglMakeCurrent(g_egl.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (old != EGL_NO_CONTEXT) {
        eglDestroyContext(g_egl.display, old);
    }
    eglBindAPI(api);
    const EGLContext context = eglCreateContext(g_egl.display, g_egl.config, EGL_NO_CONTEXT, attributes);
    eglMakeCurrent(g_egl.display, surface, surface, context);
    return context;
}

}  // namespace

bool openEglContexts(std::string* why) {
    if (g_egl.opened || !g_egl.failure.empty()) {
        *why = g_egl.failure;
        return g_egl.opened;
    }
    const auto platformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (platformDisplay == nullptr) {
        return fail("no eglGetPlatformDisplayEXT", why);
    }
    g_egl.display = platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (g_egl.display == EGL_NO_DISPLAY || !eglInitialize(g_egl.display, nullptr, nullptr)) {
        return fail("Mesa's surfaceless EGL display does not open", why);
    }
    // As the show's window and the page's canvas: 8-bit RGB, a depth buffer, no multisampling.
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8,
                             EGL_DEPTH_SIZE, 24, EGL_SAMPLES, 0, EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT | EGL_OPENGL_ES3_BIT, EGL_NONE};
    EGLint count = 0;
    if (!eglChooseConfig(g_egl.display, wanted, &g_egl.config, 1, &count) || count == 0) {
        return fail("no EGL configuration for both OpenGL and OpenGL ES 3", why);
    }
    const EGLint size[] = {EGL_WIDTH, SCENE_SIZE, EGL_HEIGHT, SCENE_SIZE, EGL_NONE};
    g_egl.referenceSurface = eglCreatePbufferSurface(g_egl.display, g_egl.config, size);
    g_egl.layerSurface = eglCreatePbufferSurface(g_egl.display, g_egl.config, size);
    if (g_egl.referenceSurface == EGL_NO_SURFACE || g_egl.layerSurface == EGL_NO_SURFACE) {
        return fail("no EGL pbuffer", why);
    }
    startReferenceContext();
    startLayerContext();
    if (g_egl.reference == EGL_NO_CONTEXT || g_egl.layer == EGL_NO_CONTEXT) {
        return fail("no OpenGL or OpenGL ES 3 context", why);
    }
    g_egl.opened = true;
    return true;
}

void startReferenceContext() {
    g_egl.reference = replace(g_egl.reference, EGL_OPENGL_API, nullptr, g_egl.referenceSurface);
}

void startLayerContext() {
    const EGLint es3[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
    g_egl.layer = replace(g_egl.layer, EGL_OPENGL_ES_API, es3, g_egl.layerSurface);
    if (g_egl.layer != EGL_NO_CONTEXT) {
        glEnable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
    }
}

SceneImage readScene() {
    SceneImage image;
    image.width = image.height = SCENE_SIZE;
    image.rgba.resize(static_cast<size_t>(SCENE_SIZE) * SCENE_SIZE * 4);
    glFinish();
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, SCENE_SIZE, SCENE_SIZE, GL_RGBA, GL_UNSIGNED_BYTE, image.rgba.data());
    return image;
}
