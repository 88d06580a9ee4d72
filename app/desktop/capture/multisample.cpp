#include "app/desktop/capture/multisample.h"

#include <GL/glx.h>
#include <X11/Xlib.h>

#include <set>

bool displayOffersSamples(int samples, std::string* offered) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        *offered = "none";
        return false;
    }
    const int wanted[] = {GLX_RENDER_TYPE, GLX_RGBA_BIT, GLX_DOUBLEBUFFER, True, GLX_DEPTH_SIZE, 1,
                          GLX_SAMPLE_BUFFERS, 1, None};
    int count = 0;
    GLXFBConfig* configs = glXChooseFBConfig(display, DefaultScreen(display), wanted, &count);
    std::set<int> counts;
    for (int i = 0; i < count; ++i) {
        int value = 0;
        glXGetFBConfigAttrib(display, configs[i], GLX_SAMPLES, &value);
        counts.insert(value);
    }
    if (configs != nullptr) {
        XFree(configs);
    }
    XCloseDisplay(display);
    offered->clear();
    for (int value : counts) {
        *offered += (offered->empty() ? "" : ", ") + std::to_string(value);
    }
    if (offered->empty()) {
        *offered = "none";
    }
    return counts.count(samples) > 0;
}
