#include "app/desktop/capture.h"

#include "app/desktop/child_process.h"
#include "app/desktop/png_file.h"
#include "app/status_line.h"
#include "parts/part_schedule.h"

#include "base/gl.h"
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <vector>

namespace {

constexpr int FRAME_WIDTH = 640;
constexpr int FRAME_HEIGHT = 480;
constexpr int PNG_LEVEL = 1;              // fast: frames are many, disk is cheap

struct Capture {
    bool active = false;
    bool video = false;
    std::string path;            // the directory, or the final video file
    std::string videoOnly;       // for a video: the frames without audio, muxed at the end
    std::string soundtrack;
    int fps = 30;
    ChildProcess encoder;        // ffmpeg, reading the frames on its standard input
    long frames = 0;
    float demoTime = 0.0f;       // of the last frame captured
    std::vector<uint8_t> pixels;
    std::chrono::steady_clock::time_point started;
    std::chrono::steady_clock::time_point lastProgress;
};
Capture g_capture;

std::string suffix(const std::string& text, size_t count) {
    return text.size() >= count ? text.substr(text.size() - count) : "";
}

bool makeDirectories(const std::string& path) {
    std::string partial;
    std::stringstream parts(path);
    std::string part;
    if (!path.empty() && path[0] == '/') {
        partial = "/";
    }
    while (std::getline(parts, part, '/')) {
        if (part.empty()) {
            continue;
        }
        partial += part + "/";
        if (mkdir(partial.c_str(), 0755) != 0 && errno != EEXIST) {
            return false;
        }
    }
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Video and audio codecs for the container of `path`.
std::vector<std::string> videoCodec(const std::string& path) {
    if (suffix(path, 5) == ".webm") {
        return {"-c:v", "libvpx-vp9", "-deadline", "realtime", "-cpu-used", "8", "-b:v", "4M"};
    }
    return {"-c:v", "libx264", "-preset", "ultrafast", "-crf", "18"};
}
std::vector<std::string> audioCodec(const std::string& path) {
    if (suffix(path, 5) == ".webm") {
        return {"-c:a", "libopus", "-b:a", "160k"};
    }
    return {"-c:a", "aac", "-b:a", "192k"};
}

void append(std::vector<std::string>& to, const std::vector<std::string>& more) {
    to.insert(to.end(), more.begin(), more.end());
}

void printProgress(float demoTime, bool force) {
    const auto now = std::chrono::steady_clock::now();
    // In place four times a second; as plain lines (a log file) every ten seconds.
    const auto every = progressInPlace() ? std::chrono::milliseconds(250) : std::chrono::milliseconds(10000);
    if (!force && now - g_capture.lastProgress < every) {
        return;
    }
    g_capture.lastProgress = now;
    const double done = std::min(1.0, std::max(0.0, static_cast<double>(demoTime) / SHOW_END_TIME));
    const double spent = std::chrono::duration<double>(now - g_capture.started).count();
    const int left = static_cast<int>(done > 0.0 ? spent * (1.0 - done) / done : 0.0);
    char line[96];
    std::snprintf(line, sizeof line, "capture %5.1f%%  %6ld frames  %d:%02d left", done * 100.0, g_capture.frames,
                  left / 60, left % 60);
    printProgressLine(line);
}

}  // namespace

bool isVideoPath(const std::string& path) {
    return suffix(path, 4) == ".mp4" || suffix(path, 4) == ".mkv" || suffix(path, 5) == ".webm";
}

std::string findProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::stringstream directories(path != nullptr ? path : "/usr/bin:/bin");
    std::string directory;
    while (std::getline(directories, directory, ':')) {
        const std::string candidate = (directory.empty() ? "." : directory) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return "";
}

bool startCapture(const std::string& path, int fps, const std::string& soundtrackPath, std::string* error) {
    g_capture = Capture{};
    g_capture.path = path;
    g_capture.fps = fps;
    g_capture.soundtrack = soundtrackPath;
    g_capture.video = isVideoPath(path);
    g_capture.pixels.resize(static_cast<size_t>(FRAME_WIDTH) * FRAME_HEIGHT * 4);
    if (g_capture.video) {
        const std::string ffmpeg = findProgram("ffmpeg");
        if (ffmpeg.empty()) {
            *error = "capturing a video needs ffmpeg, which is not installed (apt-get install ffmpeg), "
                     "or capture PNG frames to a directory instead";
            return false;
        }
        g_capture.videoOnly = path + ".frames.mkv";
        std::vector<std::string> command{ffmpeg, "-loglevel", "error", "-y", "-f", "rawvideo", "-pix_fmt", "rgba",
                                         "-s", "640x480", "-r", std::to_string(fps), "-i", "-", "-vf", "vflip"};
        append(command, videoCodec(path));
        append(command, {"-pix_fmt", "yuv420p", g_capture.videoOnly});
        g_capture.encoder = startChild(command, true);
        if (g_capture.encoder.input == nullptr) {
            *error = "cannot start ffmpeg";
            return false;
        }
    } else if (!makeDirectories(path)) {
        *error = path + ": cannot make the frame directory";
        return false;
    }
    g_capture.active = true;
    g_capture.started = std::chrono::steady_clock::now();
    return true;
}

bool captureActive() { return g_capture.active; }

void captureFrame(float demoTime) {
    if (!g_capture.active) {
        return;
    }
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, FRAME_WIDTH, FRAME_HEIGHT, GL_RGBA, GL_UNSIGNED_BYTE, g_capture.pixels.data());
    if (g_capture.video) {
        std::fwrite(g_capture.pixels.data(), 1, g_capture.pixels.size(), g_capture.encoder.input);
    } else {
        char name[32];
        std::snprintf(name, sizeof name, "/frame_%05ld.png", g_capture.frames);
        std::string failure;
        if (!writePng(g_capture.path + name, FRAME_WIDTH, FRAME_HEIGHT, 4, g_capture.pixels.data(), true, PNG_LEVEL,
                      &failure)) {
            std::fprintf(stderr, "\nkaskade: %s\n", failure.c_str());
        }
    }
    ++g_capture.frames;
    g_capture.demoTime = demoTime;
    printProgress(demoTime, false);
}

bool finishCapture() {
    if (!g_capture.active) {
        return true;
    }
    g_capture.active = false;
    printProgress(g_capture.demoTime, true);
    endProgressLine();
    if (!g_capture.video) {
        return true;
    }
    bool ok = finishChild(g_capture.encoder);
    // The soundtrack loops like the show's music and is cut to the frames' length.
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.3f", static_cast<double>(g_capture.frames) / g_capture.fps);
    std::vector<std::string> command{findProgram("ffmpeg"), "-loglevel", "error", "-y", "-i", g_capture.videoOnly};
    if (g_capture.soundtrack.empty()) {
        append(command, {"-map", "0:v", "-c:v", "copy"});
    } else {
        append(command, {"-stream_loop", "-1", "-i", g_capture.soundtrack, "-map", "0:v", "-map", "1:a", "-c:v", "copy"});
        append(command, audioCodec(g_capture.path));
    }
    append(command, {"-t", seconds, g_capture.path});
    if (ok) {
        ChildProcess mux = startChild(command, false);
        ok = finishChild(mux);
    }
    std::remove(g_capture.videoOnly.c_str());
    if (!ok) {
        std::fprintf(stderr, "kaskade: %s: the video could not be written\n", g_capture.path.c_str());
    }
    return ok;
}
