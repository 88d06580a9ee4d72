#include "app/desktop/capture/capture.h"

#include "app/desktop/capture/child_process.h"
#include "app/desktop/capture/frame_target.h"
#include "app/desktop/capture/frame_writer.h"
#include "app/desktop/capture/png_file.h"
#include "app/desktop/capture/video_encoder.h"
#include "app/desktop/signals.h"
#include "app/sequencer.h"
#include "app/status_line.h"
#include "parts/part_schedule.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>
#include <sstream>
#include <vector>

namespace {

constexpr int PNG_LEVEL = 1;   // fast: frames are many, disk is cheap
constexpr int WRITER_SLOTS = 4;
constexpr int PREVIEW_EVERY = 15;  // frames between two looks at the capture in the window
constexpr int ENCODER_END_WAIT_MS = 500;

struct Capture {
    bool active = false;
    CaptureSettings settings;
    bool video = false;
    VideoEncoder encoder;
    std::unique_ptr<FrameWriter> writer;
    long frames = 0;
    float demoTime = 0.0f;       // of the last frame captured
    std::chrono::steady_clock::time_point started;
    std::chrono::steady_clock::time_point lastProgress;
    std::string unfinished;  // where a PNG frame is written before it takes its name
    std::string failure;  // why the writer stopped, from its thread (under g_failureMutex)
    bool reported = false;  // the one line about a failure is out
};
Capture g_capture;
std::mutex g_failureMutex;

// From the writer's thread: why it stops.
void noteFailure(const std::string& why) {
    std::lock_guard<std::mutex> lock(g_failureMutex);
    if (g_capture.failure.empty()) {
        g_capture.failure = why;
    }
}

// The one line that says why the capture stopped short.
void reportFailure(const std::string& fallback) {
    if (g_capture.reported) {
        return;
    }
    g_capture.reported = true;
    std::string why;
    {
        std::lock_guard<std::mutex> lock(g_failureMutex);
        why = g_capture.failure;
    }
    if (g_capture.video) {
        // Its pipe closes a moment before the encoder's end can be told.
        std::string state = childState(g_capture.encoder.ffmpeg);
        for (int waited = 0; state == "runs" && waited < ENCODER_END_WAIT_MS; waited += 10) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            state = childState(g_capture.encoder.ffmpeg);
        }
        why = "the video encoder (ffmpeg) " + (state == "runs" ? std::string("stopped reading its frames") : state);
    }
    endProgressLine();
    std::fprintf(stderr, "kaskade: %s: %s; the capture ends after frame %ld\n", g_capture.settings.path.c_str(),
                 why.empty() ? fallback.c_str() : why.c_str(), g_capture.frames - 1);
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

bool writeVideoFrame(const uint8_t* pixels, long) {
    const CaptureSettings& s = g_capture.settings;
    if (!encodeFrame(g_capture.encoder, pixels, static_cast<size_t>(s.width) * s.height * 4)) {
        noteFailure("the video encoder stopped reading");
        return false;
    }
    return true;
}

// Written under a temporary name in the same directory, then renamed: a
// frame_NNNNN.png is whole or absent, whatever ends the process (a second
// ending signal removes the unfinished file).
bool writePngFrame(const uint8_t* pixels, long frame) {
    const CaptureSettings& s = g_capture.settings;
    char name[32];
    std::snprintf(name, sizeof name, "/frame_%05ld.png", frame);
    std::string failure;
    if (!writePng(g_capture.unfinished, s.width, s.height, 4, pixels, false, PNG_LEVEL, &failure)) {
        noteFailure(failure);
        return false;
    }
    if (std::rename(g_capture.unfinished.c_str(), (s.path + name).c_str()) != 0) {
        noteFailure(s.path + name + ": cannot write PNG");
        return false;
    }
    return true;
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

bool checkCapture(const std::string& path, std::string* error) {
    if (isVideoPath(path)) {
        if (findProgram("ffmpeg").empty()) {
            *error = "capturing a video needs ffmpeg, which is not installed (apt-get install ffmpeg), "
                     "or capture PNG frames to a directory instead";
            return false;
        }
    } else if (!makeDirectories(path)) {
        *error = path + ": cannot make the frame directory";
        return false;
    }
    return true;
}

bool startCapture(const CaptureSettings& settings, std::string* error) {
    g_capture = Capture{};
    g_capture.settings = settings;
    g_capture.video = isVideoPath(settings.path);
    // PNG frames keep the opaque pixels a window gives; a video ignores alpha.
    if (!checkCapture(settings.path, error) ||
        !drawOffscreen(settings.width, settings.height, settings.samples, !g_capture.video, error)) {
        return false;
    }
    FrameWriter::Write write = writePngFrame;
    if (g_capture.video) {
        const VideoSettings video{settings.path,       settings.width,      settings.height, settings.fps,
                                  settings.soundtrack, settings.firstFrame, settings.crf};
        if (!startVideoEncoder(g_capture.encoder, findProgram("ffmpeg"), video, error)) {
            return false;
        }
        write = writeVideoFrame;
    } else {
        g_capture.unfinished = settings.path + "/.frame.part";
        setFileToRemoveOnExit(g_capture.unfinished.c_str());
    }
    const size_t frameBytes = static_cast<size_t>(settings.width) * settings.height * 4;
    g_capture.writer = std::make_unique<FrameWriter>(frameBytes, WRITER_SLOTS, write);
    g_capture.active = true;
    g_capture.started = std::chrono::steady_clock::now();
    return true;
}

bool captureActive() { return g_capture.active; }

void captureFrame(float demoTime) {
    const long limit = g_capture.settings.frameLimit;
    // The show ends at the next frame; one the same pass draws is not taken.
    if (!g_capture.active || (limit > 0 && g_capture.frames >= limit)) {
        return;
    }
    uint8_t* slot = g_capture.writer->freeSlot();
    readFrame(slot, g_capture.video);
    g_capture.writer->submit(slot, g_capture.frames);
    if (g_capture.frames % PREVIEW_EVERY == 0) {
        previewFrame();
    }
    ++g_capture.frames;
    g_capture.demoTime = demoTime;
    // A writer that failed (the encoder died, the disk is full) ends the show
    // at the next frame instead of drawing the rest for nothing.
    if (g_capture.writer->failed()) {
        reportFailure("the frames could not be written");
        g_endRequested = true;
        return;
    }
    if (g_capture.frames == limit) {
        g_endRequested = true;
    }
    printProgress(demoTime, false);
}

bool finishCapture() {
    if (!g_capture.active) {
        return true;
    }
    g_capture.active = false;
    bool ok = g_capture.writer->finish();
    g_capture.writer.reset();
    setFileToRemoveOnExit(nullptr);
    printProgress(g_capture.demoTime, true);
    endProgressLine();
    if (!ok) {
        reportFailure("the frames could not be written");
    }
    if (g_capture.video && !finishVideoEncoder(g_capture.encoder) && ok) {
        ok = false;
        std::fprintf(stderr, "kaskade: %s: the video could not be written\n", g_capture.settings.path.c_str());
    }
    return ok;
}
