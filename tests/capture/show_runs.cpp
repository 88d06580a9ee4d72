#include "tests/capture/show_runs.h"

#include "tests/audio/test_sounds.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string quoted(const std::string& text) { return "'" + text + "'"; }

int runShow(const std::string& arguments, const std::string& errPath, const std::string& environment) {
    const std::string command = "cd " + quoted(KASKADE_SHOW_DIR) + " && " + environment + " " + quoted(KASKADE_PROGRAM) +
                                " " + arguments + " > /dev/null 2> " + quoted(errPath);
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

pid_t startShow(const std::vector<std::string>& arguments) {
    const pid_t pid = fork();
    if (pid == 0) {
        std::vector<char*> argv{const_cast<char*>(KASKADE_PROGRAM)};
        for (const std::string& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        if (chdir(KASKADE_SHOW_DIR) == 0 && freopen("/dev/null", "w", stdout) && freopen("/dev/null", "w", stderr)) {
            execv(KASKADE_PROGRAM, argv.data());
        }
        _exit(126);
    }
    return pid;
}

int waitForShow(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string frameName(int frame) {
    char name[32];
    std::snprintf(name, sizeof name, "/frame_%05d.png", frame);
    return name;
}

int captureUntil(const std::vector<std::string>& arguments, const std::string& directory, int frame) {
    std::vector<std::string> all = arguments;
    all.insert(all.end(), {"--capture", directory});
    const pid_t pid = startShow(all);
    // Once the frame after it is there, the frame is complete.
    const std::string after = directory + frameName(frame + 1);
    for (int waited = 0; waited < 120000 && access(after.c_str(), F_OK) != 0; waited += 20) {
        usleep(20000);
    }
    kill(pid, SIGINT);
    return waitForShow(pid);
}

std::map<std::string, double> probeVideo(const std::string& path) {
    std::map<std::string, double> probe;
    FILE* pipe = popen(("ffprobe -v error -count_frames -show_entries "
                        "stream=codec_type,width,height,r_frame_rate,duration,nb_read_frames "
                        "-of default=noprint_wrappers=1 " + quoted(path)).c_str(), "r");
    if (pipe == nullptr) {
        return probe;
    }
    std::string stream;
    char line[256];
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        std::string text(line);
        const size_t equals = text.find('=');
        if (equals == std::string::npos) {
            continue;
        }
        const std::string key = text.substr(0, equals);
        const std::string value = text.substr(equals + 1, text.find('\n') - equals - 1);
        if (key == "codec_type") {
            stream = value;
        } else if (value != "N/A" && !value.empty()) {
            double number = 0;
            double divisor = 1;
            if (std::sscanf(value.c_str(), "%lf/%lf", &number, &divisor) >= 1 && divisor != 0) {
                const std::string name = key == "r_frame_rate" ? "fps" : key == "nb_read_frames" ? "frames" : key;
                probe[stream + " " + name] = number / divisor;
            }
        }
    }
    pclose(pipe);
    return probe;
}

void ShowRun::SetUp() {
    if (std::getenv("DISPLAY") == nullptr) {
        GTEST_SKIP() << "needs an X display (the suite runs under xvfb-run)";
    }
    if (access((std::string(KASKADE_SHOW_DIR) + "/3d").c_str(), R_OK) != 0) {
        GTEST_SKIP() << "the show's content is not built in " << KASKADE_SHOW_DIR;
    }
    dir_ = makeTempDir();
}
