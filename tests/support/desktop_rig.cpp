#include "tests/support/desktop_rig.h"

#include "tests/support/fatal_catcher.h"
#include "tests/support/show_process.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace {

constexpr const char* XORG = "/usr/lib/xorg/Xorg";
constexpr const char* DUMMY_DRIVER = "/usr/lib/xorg/modules/drivers/dummy_drv.so";

bool exists(const char* path) { return access(path, X_OK) == 0 || access(path, R_OK) == 0; }

bool onPath(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

// Starts `argv` with `environment` added, its output in `log`, as a child that
// gets SIGTERM when the test's thread ends, however it ends. `keepFd` stays
// open in the child (an X server's -displayfd).
pid_t spawn(const std::vector<std::string>& argv, const std::vector<std::string>& environment, const std::string& log,
            int keepFd = -1) {
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid != 0) {
        return pid;
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) {
        _exit(127);  // the test is already gone
    }
    const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int null = open("/dev/null", O_RDONLY);
    dup2(null, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(out, STDERR_FILENO);
    for (int fd = 3; fd < 1024; ++fd) {
        if (fd != keepFd) {
            close(fd);
        }
    }
    for (const std::string& variable : environment) {
        putenv(const_cast<char*>(variable.c_str()));
    }
    std::vector<char*> args;
    for (const std::string& argument : argv) {
        args.push_back(const_cast<char*>(argument.c_str()));
    }
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
}

// The display number an X server writes on its -displayfd once it takes clients.
std::string readDisplayNumber(int fd, int timeoutMs) {
    std::string number;
    pollfd ready{fd, POLLIN, 0};
    char c = 0;
    while (poll(&ready, 1, timeoutMs) == 1 && read(fd, &c, 1) == 1 && c != '\n') {
        number += c;
    }
    return c == '\n' && !number.empty() ? ":" + number : "";
}

bool takesClients(const std::string& display) {
    Display* x = XOpenDisplay(display.c_str());
    if (x != nullptr) {
        XCloseDisplay(x);
    }
    return x != nullptr;
}

// A window manager redirects the root window's map requests; one that speaks
// EWMH names its check window on the root window too.
bool windowManagerRuns(const std::string& display, bool ewmh) {
    Display* x = XOpenDisplay(display.c_str());
    if (x == nullptr) {
        return false;
    }
    XWindowAttributes root{};
    XGetWindowAttributes(x, DefaultRootWindow(x), &root);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    const bool named = XGetWindowProperty(x, DefaultRootWindow(x), XInternAtom(x, "_NET_SUPPORTING_WM_CHECK", False),
                                          0, 1, False, XA_WINDOW, &type, &format, &count, &after, &data) == Success &&
                       count == 1;
    if (data != nullptr) {
        XFree(data);
    }
    XCloseDisplay(x);
    return (root.all_event_masks & SubstructureRedirectMask) != 0 && (named || !ewmh);
}

}  // namespace

std::unique_ptr<DesktopRig> DesktopRig::screen(int width, int height, const std::string& workDir, std::string* whyNot) {
    return start(Kind::Screen, workDir, whyNot, std::to_string(width) + "x" + std::to_string(height));
}

std::unique_ptr<DesktopRig> DesktopRig::start(Kind kind, const std::string& workDir, std::string* whyNot,
                                              const std::string& size) {
    std::unique_ptr<DesktopRig> rig(new DesktopRig);
    rig->kind_ = kind;
    rig->size_ = size;
    rig->workDir_ = workDir;
    const bool monitors = kind == Kind::TwoMonitors || kind == Kind::ThreeMonitors || kind == Kind::TwoMonitorsOpenbox;
    const bool openbox = kind == Kind::Openbox || kind == Kind::TwoMonitorsOpenbox;
    if (monitors && geteuid() != 0) {
        *whyNot = "the several-monitor desktop runs Xorg, which needs root";
        return nullptr;
    }
    if (monitors && (!exists(XORG) || !exists(DUMMY_DRIVER) || !onPath("xrandr"))) {
        *whyNot = "the several-monitor desktop needs xserver-xorg-core, xserver-xorg-video-dummy and x11-xserver-utils";
        return nullptr;
    }
    if ((openbox && !onPath("openbox")) || (kind == Kind::Twm && !onPath("twm")) ||
        ((kind == Kind::Openbox || kind == Kind::Twm || kind == Kind::Screen) && !onPath("Xvfb"))) {
        *whyNot = "the window-manager desktops need xvfb, openbox and twm";
        return nullptr;
    }
    if (kind == Kind::Xwayland && (!onPath("weston") || !onPath("Xwayland"))) {
        *whyNot = "the Wayland desktop needs weston and xwayland";
        return nullptr;
    }
    if (kind == Kind::Xwayland) {
        const std::string runtime = workDir + "/xdg";
        mkdir(runtime.c_str(), 0700);
        const std::string log = workDir + "/weston.log";
        rig->servers_.push_back(spawn({"weston", "--config=" + testDataPath("rigs/weston.ini"),
                                       "--socket=wl-kaskade", "--width=1280", "--height=1024", "--log=" + log},
                                      {"XDG_RUNTIME_DIR=" + runtime}, workDir + "/weston.out"));
        const std::string marker = "xserver listening on display ";
        within(10000, [&] { return readTextFile(log).find(marker) != std::string::npos; });
        const std::string text = readTextFile(log);
        const size_t at = text.find(marker);
        if (at != std::string::npos) {
            rig->display_ = text.substr(at + marker.size(), text.find_first_not_of(":0123456789", at + marker.size()) -
                                                                (at + marker.size()));
        }
        // Xwayland itself starts with its first client.
        if (rig->display_.empty() || !within(10000, [&] { return takesClients(rig->display_); })) {
            *whyNot = "weston or its Xwayland did not start (see " + log + ")";
            return nullptr;
        }
        return rig;
    }
    int ends[2];
    if (pipe(ends) != 0) {
        *whyNot = "no pipe";
        return nullptr;
    }
    const std::string fd = std::to_string(ends[1]);
    if (monitors) {
        rig->servers_.push_back(spawn({XORG, "-displayfd", fd, "-config", testDataPath("rigs/multihead-xorg.conf"),
                                       "-noreset", "+extension", "RANDR", "-nolisten", "tcp", "-logfile",
                                       workDir + "/xorg.log"},
                                      {}, workDir + "/xorg.out", ends[1]));
    } else {
        rig->servers_.push_back(spawn({"Xvfb", "-displayfd", fd, "-screen", "0", rig->size_ + "x24", "-noreset",
                                       "-nolisten", "tcp"},
                                      {}, workDir + "/xvfb.out", ends[1]));
    }
    close(ends[1]);
    rig->display_ = readDisplayNumber(ends[0], 10000);
    close(ends[0]);
    if (rig->display_.empty()) {
        *whyNot = "the X server did not start (see " + workDir + ")";
        return nullptr;
    }
    if (openbox || kind == Kind::Twm) {
        const std::string config =
            kind == Kind::Openbox ? "/etc/xdg/openbox/rc.xml" : testDataPath("rigs/openbox-mouse.xml");
        rig->servers_.push_back(spawn(openbox ? std::vector<std::string>{"openbox", "--config-file", config}
                                              : std::vector<std::string>{"twm"},
                                      {"DISPLAY=" + rig->display_}, workDir + "/window-manager.out"));
        if (!within(10000, [&] { return windowManagerRuns(rig->display_, openbox); })) {
            *whyNot = "the window manager did not start";
            return nullptr;
        }
    }
    if (monitors && !rig->layOut()) {
        *whyNot = "xrandr could not lay out the monitors";
        return nullptr;
    }
    return rig;
}

bool DesktopRig::layOut() const {
    const std::string xrandr = "DISPLAY=" + display_ + " xrandr ";
    std::string commands;
    if (kind_ == Kind::TwoMonitors || kind_ == Kind::TwoMonitorsOpenbox) {
        commands = xrandr + "--addmode DUMMY1 1280x1024_60.00 2>/dev/null; " + xrandr +
                   "--output DUMMY0 --primary --mode 1920x1080_75.00 --rate 75 --pos 0x0 --rotate normal "
                   "--output DUMMY1 --mode 1280x1024_60.00 --pos 1920x0 --rotate normal --output DUMMY2 --off";
    } else if (kind_ == Kind::ThreeMonitors) {
        commands = xrandr + "--addmode DUMMY1 1280x1024_60.00 2>/dev/null; " + xrandr +
                   "--addmode DUMMY2 1024x768_75.00 2>/dev/null; " + xrandr +
                   "--output DUMMY1 --mode 1280x1024_60.00 --pos 0x0 --rotate normal "
                   "--output DUMMY2 --mode 1024x768_75.00 --pos 1280x0 --rotate normal "
                   "--output DUMMY0 --primary --mode 1920x1080_75.00 --rate 75 --pos 2304x0 --rotate normal";
    } else {
        return true;
    }
    return std::system(commands.c_str()) == 0;
}

void DesktopRig::killWindowManager() {
    if (servers_.size() > 1) {
        kill(servers_.back(), SIGKILL);
        waitpid(servers_.back(), nullptr, 0);
        servers_.pop_back();
    }
}

bool DesktopRig::addMode(int width, int height) const {
    const std::string xrandr = "DISPLAY=" + display_ + " xrandr ";
    const std::string name = std::to_string(width) + "x" + std::to_string(height);
    const std::string sides = std::to_string(width) + " " + std::to_string(width) + " " + std::to_string(width) +
                              " " + std::to_string(width) + " " + std::to_string(height) + " " +
                              std::to_string(height) + " " + std::to_string(height) + " " + std::to_string(height);
    const double clock = width * height * 60 / 1e6;
    return std::system((xrandr + "--newmode " + name + " " + std::to_string(clock) + " " + sides + " && " + xrandr +
                        "--addmode screen " + name + " >/dev/null 2>&1")
                           .c_str()) == 0;
}

std::string DesktopRig::currentSize() const {
    std::istringstream lines(runCommand(onDisplay(display_) + "xrandr 2>/dev/null"));
    int width = 0;
    int height = 0;
    // The first lit output's mode, which a switch changes; the screen's own
    // size ("current") stays as it was.
    for (std::string line; width == 0 && std::getline(lines, line);) {
        if (const size_t lit = line.find(" connected "); lit != std::string::npos) {
            std::sscanf(line.c_str() + lit, " connected%*[^0-9]%dx%d+", &width, &height);
        }
    }
    return width > 0 ? std::to_string(width) + "x" + std::to_string(height) : "";
}

DesktopRig::~DesktopRig() {
    for (auto server = servers_.rbegin(); server != servers_.rend(); ++server) {
        kill(*server, SIGTERM);
        int status = 0;
        if (!within(5000, [&] { return waitpid(*server, &status, WNOHANG) != 0; })) {
            kill(*server, SIGKILL);
            waitpid(*server, &status, 0);
        }
    }
}
