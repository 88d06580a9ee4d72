#include "tests/support/show_process.h"

#include "tests/audio/test_sounds.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

const char* const SHORT_SONG_WARNING =
    "kaskade: harbour.mp3 lasts 20.0 s, shorter than the show (226.9 s): the show will not get past part 1\n";

std::string readTextFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string runCommand(const std::string& command) {
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[65536];
        for (size_t got = 0; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
            output.append(buffer, got);
        }
        pclose(pipe);
    }
    return output;
}

std::string onDisplay(const std::string& display) { return display.empty() ? "" : "DISPLAY=" + display + " "; }

bool endsWithFrameRateLine(const std::string& out) {
    const size_t at = out.rfind("fps: ");
    if (at == std::string::npos) {
        return false;
    }
    double value = -1;
    char newline = 0;
    return std::sscanf(out.c_str() + at, "fps: %lf%c", &value, &newline) == 2 && newline == '\n' && value >= 0;
}

std::vector<uint8_t> windowPixels(const std::string& display, const std::string& id, int* width, int* height,
                                  bool own) {
    std::vector<uint8_t> rgb;
    Display* x = XOpenDisplay(display.c_str());
    if (x == nullptr || id.empty()) {
        return rgb;
    }
    const Window window = std::stoul(id);
    const Window root = DefaultRootWindow(x);
    XWindowAttributes attributes{};
    XGetWindowAttributes(x, window, &attributes);
    *width = attributes.width;
    *height = attributes.height;
    rgb.resize(static_cast<size_t>(*width) * *height * 3);
    for (size_t i = 0; i < rgb.size(); i += 3) {
        rgb[i] = 255;
        rgb[i + 2] = 255;
    }
    // From the root window unless asked otherwise: the show's window may stand partly off the screen.
    int left = 0;
    int top = 0;
    Window child = 0;
    if (!own) {
        XTranslateCoordinates(x, window, root, 0, 0, &left, &top, &child);
    }
    const int x0 = std::max(left, 0);
    const int y0 = std::max(top, 0);
    const int x1 = own ? *width : std::min(left + *width, DisplayWidth(x, DefaultScreen(x)));
    const int y1 = own ? *height : std::min(top + *height, DisplayHeight(x, DefaultScreen(x)));
    XImage* image = x1 > x0 && y1 > y0 ? XGetImage(x, own ? window : root, x0, y0, static_cast<unsigned>(x1 - x0),
                                                   static_cast<unsigned>(y1 - y0), AllPlanes, ZPixmap)
                                       : nullptr;
    if (image == nullptr && own) {
        rgb.clear();
    }
    for (int row = 0; image != nullptr && row < y1 - y0; ++row) {
        for (int column = 0; column < x1 - x0; ++column) {
            const unsigned long pixel = XGetPixel(image, column, row);
            uint8_t* out = &rgb[(static_cast<size_t>(y0 - top + row) * *width + (x0 - left + column)) * 3];
            out[0] = static_cast<uint8_t>(pixel >> 16);
            out[1] = static_cast<uint8_t>(pixel >> 8);
            out[2] = static_cast<uint8_t>(pixel);
        }
    }
    if (image != nullptr) {
        XDestroyImage(image);
    }
    XCloseDisplay(x);
    return rgb;
}

std::string windowRectangle(const std::string& display, const std::string& id) {
    Display* x = XOpenDisplay(display.c_str());
    if (x == nullptr || id.empty()) {
        return "";
    }
    XWindowAttributes attributes{};
    int left = 0;
    int top = 0;
    Window child = 0;
    const Window window = std::stoul(id);
    XGetWindowAttributes(x, window, &attributes);
    XTranslateCoordinates(x, window, DefaultRootWindow(x), 0, 0, &left, &top, &child);
    XCloseDisplay(x);
    return std::to_string(attributes.width) + "x" + std::to_string(attributes.height) + "+" + std::to_string(left) +
           "+" + std::to_string(top);
}

LitPixels litPixels(const std::vector<uint8_t>& rgb, int width, int height, int x0, int y0, int x1, int y1) {
    LitPixels lit;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const uint8_t* p = &rgb[(static_cast<size_t>(row) * width + column) * 3];
            if (p[0] + p[1] + p[2] == 0) {
                continue;
            }
            const bool inside = column >= x0 && column < x1 && row >= y0 && row < y1;
            (inside ? lit.inside : lit.outside) += 1;
        }
    }
    return lit;
}

void ShowProcess::SetUp() {
    if (std::getenv("DISPLAY") == nullptr) {
        GTEST_SKIP() << "needs an X display (the suite runs under xvfb-run)";
    }
    const std::string archive = std::string(KASKADE_SHOW_DIR) + "/3d";
    if (access(archive.c_str(), R_OK) != 0) {
        GTEST_SKIP() << "the show's content is not built in " << KASKADE_SHOW_DIR;
    }
    dir_ = makeTempDir();
    writeMp3(dir_ + "/harbour.mp3", tone(44100 * 20, 44100, 9000, 9000));
    ASSERT_EQ(symlink(archive.c_str(), (dir_ + "/3d").c_str()), 0);
}

void ShowProcess::TearDown() {
    // A test that failed half-way leaves no show running behind it.
    if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) == 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

void ShowProcess::useShowSoundtrack() {
    std::remove((dir_ + "/harbour.mp3").c_str());
    ASSERT_EQ(symlink(KASKADE_SHOW_DIR "/harbour.mp3", (dir_ + "/harbour.mp3").c_str()), 0);
}

void ShowProcess::start(const std::vector<std::string>& arguments, const std::string& display,
                        const char* audioDriver) {
    pid_ = fork();
    if (pid_ == 0) {
        if (chdir(dir_.c_str()) != 0) {
            _exit(125);
        }
        if (closeStandardFiles_) {
            close(STDIN_FILENO);
            close(STDOUT_FILENO);
            close(STDERR_FILENO);
        } else if (freopen("out.txt", "w", stdout) == nullptr || freopen("err.txt", "w", stderr) == nullptr) {
            _exit(125);
        }
        setenv("SDL_AUDIODRIVER", audioDriver, 1);
        for (const std::string& variable : environment_) {
            putenv(const_cast<char*>(variable.c_str()));
        }
        if (!display.empty()) {
            setenv("DISPLAY", display.c_str(), 1);
        }
        std::vector<char*> argv{const_cast<char*>(KASKADE_PROGRAM)};
        for (const std::string& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        execv(KASKADE_PROGRAM, argv.data());
        _exit(126);
    }
}

std::string ShowProcess::window(const std::string& display) {
    // Asked again and again rather than with --sync: a window that comes or
    // goes while xdotool walks the tree (a window manager's frames) ends its search.
    std::string id;
    within(20000, [&] {
        id = runCommand(onDisplay(display) + "xdotool search --onlyvisible --name 'kaskade \\[12\\]' 2>/dev/null");
        // A show that ended has no window to wait for (asked without reaping it).
        siginfo_t ended{};
        return !id.empty() ||
               (pid_ > 0 && waitid(P_PID, static_cast<id_t>(pid_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                ended.si_pid != 0);
    });
    return id.substr(0, id.find('\n'));
}

void ShowProcess::key(const std::string& id, const std::string& key, const std::string& display) {
    runCommand(onDisplay(display) + "xdotool key --window " + id + " " + key + " 2>/dev/null");
}

ShowResult ShowProcess::finish(int seconds) {
    ShowResult result;
    int status = 0;
    if (!within(seconds * 1000, [&] { return waitpid(pid_, &status, WNOHANG) != 0; })) {
        kill(pid_, SIGKILL);
        waitpid(pid_, &status, 0);
        ADD_FAILURE() << "kaskade did not end within " << seconds << " s";
    }
    pid_ = -1;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.out = readTextFile(dir_ + "/out.txt");
    result.err = readTextFile(dir_ + "/err.txt");
    return result;
}

ShowResult ShowProcess::run(const std::vector<std::string>& arguments, int seconds) {
    start(arguments);
    return finish(seconds);
}

int ShowProcess::captureUntil(std::vector<std::string> arguments, const std::string& directory, long frame) {
    arguments.insert(arguments.end(), {"--capture", directory});
    start(arguments);
    // Once the frame after it is there, the frame is whole.
    const std::string after = dir_ + "/" + directory + frameName(frame + 1);
    EXPECT_TRUE(within(120000, [&] { return access(after.c_str(), F_OK) == 0; })) << "no " << after;
    kill(pid_, SIGINT);
    return finish().status;
}

std::string ShowProcess::out() const { return readTextFile(dir_ + "/out.txt"); }
std::string ShowProcess::err() const { return readTextFile(dir_ + "/err.txt"); }

bool ShowProcess::errSays(const std::string& text, int seconds) const {
    return within(seconds * 1000, [&] { return err().find(text) != std::string::npos; });
}

std::string frameName(long frame) {
    char name[32];
    std::snprintf(name, sizeof name, "/frame_%05ld.png", frame);
    return name;
}

std::map<std::string, double> probeVideo(const std::string& path) {
    std::map<std::string, double> probe;
    std::istringstream lines(runCommand("ffprobe -v error -count_frames -show_entries "
                                        "stream=codec_type,width,height,r_frame_rate,duration,nb_read_frames "
                                        "-of default=noprint_wrappers=1 '" + path + "'"));
    std::string stream;
    for (std::string line; std::getline(lines, line);) {
        const size_t equals = line.find('=');
        if (equals == std::string::npos) {
            continue;
        }
        const std::string key = line.substr(0, equals);
        const std::string value = line.substr(equals + 1);
        double number = 0;
        double divisor = 1;
        if (key == "codec_type") {
            stream = value;
        } else if (std::sscanf(value.c_str(), "%lf/%lf", &number, &divisor) >= 1 && divisor != 0) {
            const std::string name = key == "r_frame_rate" ? "fps" : key == "nb_read_frames" ? "frames" : key;
            probe[stream + " " + name] = number / divisor;
        }
    }
    return probe;
}
