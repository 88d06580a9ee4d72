// The sequencer and the viewer's controls, driven with parts that keep to the
// schedule on a clock the test sets and write down what they do, by the cases
// of tests/data/app/player.txt: set-ups run once and in order, a part change
// draws two frames in one call, the end state runs nothing but the end path; a
// pause stops the clock and the draw steps after the frame being drawn, a jump
// lands exactly where a show started at that part lands, back goes one part
// further within the first 2 s, a seek lands the clock on the moment, and a
// capture takes none of it. The frame rate counts only the time played.
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/clock.h"
#include "audio/music.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"

#include "tests/support/fatal_catcher.h"

#include <GL/freeglut.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Events = std::vector<std::string>;
Events g_events;
uint32_t g_now = 0;
uint32_t testClock() { return g_now; }

template <int K>
void setup() {
    g_events.push_back("setup " + std::to_string(K));
}

// Reads the clock, says what it drew (and whether the platform is to keep
// the picture), and ends after its end time.
template <int K>
void draw() {
    if (K == 1 && g_partCounter == 0) {
        setup<1>();
        g_partCounter += 1;
    }
    updateMusicClock();
    g_events.push_back("draw " + std::to_string(K) + " at " + std::to_string(g_demoTime).substr(0, 6) +
                       (g_framesUnseen ? " unseen" : "") + (playerHoldsNextPicture() ? " held" : ""));
    if (g_demoTime > partEndTime(K)) {
        g_partCounter += 1;
    }
}

const PartSteps PARTS[PART_COUNT] = {
    {setup<1>, draw<1>},   {setup<2>, draw<2>},   {setup<3>, draw<3>},   {setup<4>, draw<4>},   {setup<5>, draw<5>},
    {setup<6>, draw<6>},   {setup<7>, draw<7>},   {setup<8>, draw<8>},   {setup<9>, draw<9>},   {setup<10>, draw<10>},
    {setup<11>, draw<11>}, {setup<12>, draw<12>}, {setup<13>, draw<13>},
};

void recordEnd() { g_events.push_back("end"); }
void recordStartState() { g_events.push_back("start state"); }
void recordStartOver() {
    g_events.push_back("start over");
    startShowAgain();
}

constexpr int SPACE = ' ';
constexpr int ESCAPE = 27;

int g_toggles = 0;

class Show : public ::testing::Test {
protected:
    void SetUp() override {
        g_partSteps = PARTS;
        g_endPath = recordEnd;
        g_partCounter = 0;
        g_millisecondClock = testClock;
        g_now = 50000;
        g_musicStartTick = g_now;
        g_playerPlatform = PlayerPlatform{};
        g_playerPlatform.returnToStartState = recordStartState;
        g_playerPlatform.toggleFullscreen = [] { ++g_toggles; };
        g_playerFixedStepFps = 0;
        g_toggles = 0;
        g_events.clear();
    }
    void TearDown() override {
        if (playerPaused()) {
            onKey(SPACE, 0, 0);
        }
        g_partSteps = nullptr;
        g_partCounter = 0;
        g_endPath = runEndPath;
        g_showStartsOver = nullptr;
        g_millisecondClock = monotonicMillis;
        g_playerPlatform = PlayerPlatform{};
        g_playerEnabled = true;
        g_endRequested = false;
    }

    // The clock at demo time `tenths` of the show started at g_musicStartTick.
    static void at(double tenths) { g_now = g_musicStartTick + static_cast<uint32_t>(std::lround(tenths * 100.0)); }

    // One pass of the main loop; returns what it ran.
    static Events frame() {
        g_events.clear();
        onFrame();
        return g_events;
    }
};

// The keys of the cases, as GLUT gives them: plain keys, special keys (+1000), and others.
void press(const std::string& name) {
    static const std::map<std::string, int> SPECIAL = {
        {"right", SPECIAL_KEY_RIGHT}, {"left", SPECIAL_KEY_LEFT}, {"pageup", SPECIAL_KEY_PAGE_UP},
        {"pagedown", SPECIAL_KEY_PAGE_DOWN}, {"home", SPECIAL_KEY_HOME}, {"up", SPECIAL_KEY_UP},
        {"down", SPECIAL_KEY_DOWN}, {"shift+right", SPECIAL_KEY_RIGHT + SPECIAL_KEY_SHIFT},
        {"shift+left", SPECIAL_KEY_LEFT + SPECIAL_KEY_SHIFT}};
    if (const auto special = SPECIAL.find(name); special != SPECIAL.end()) {
        onSpecialKey(special->second, 0, 0);
    } else if (name == "space" || name == "escape") {
        onKey(static_cast<unsigned char>(name == "space" ? SPACE : ESCAPE), 0, 0);
    } else if (name == "mouse-down" || name == "mouse-up") {
        onMouse(GLUT_MIDDLE_BUTTON, name == "mouse-down" ? GLUT_DOWN : GLUT_UP, 10, 10);
    } else if (name == "close") {
        onWindowClose();
    } else if (name == "signal") {
        g_endRequested = true;
    } else {
        ASSERT_EQ(name.size(), 1u) << "no key " << name;
        onKey(static_cast<unsigned char>(name[0]), 0, 0);
    }
}

// "a | b | c" as its events.
Events eventsOf(const std::string& text) {
    Events events;
    std::istringstream parts(text);
    for (std::string event; std::getline(parts, event, '|');) {
        const size_t from = event.find_first_not_of(' ');
        if (from != std::string::npos) {
            events.push_back(event.substr(from, event.find_last_not_of(' ') - from + 1));
        }
    }
    return events;
}

struct Case {
    std::string name;
    std::vector<std::string> steps;
};
void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

std::vector<Case> readCases() {
    std::vector<Case> cases;
    std::ifstream file(testDataPath("app/player.txt"));
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("case ", 0) == 0) {
            cases.push_back({line.substr(5), {}});
        } else if (!cases.empty() && !line.empty() && line[0] != '#') {
            cases.back().steps.push_back(line);
        }
    }
    return cases;
}

class Script : public Show, public ::testing::WithParamInterface<Case> {};

TEST_P(Script, RunsAsWrittenDown) {
    for (const std::string& step : GetParam().steps) {
        SCOPED_TRACE(step);
        std::istringstream words(step);
        std::string command;
        words >> command;
        std::string rest;
        std::getline(words, rest);
        const auto number = [&] { return std::stod(rest); };
        const auto yes = [&] { return rest.find("yes") != std::string::npos; };
        if (command == "start" || command == "rebuild") {
            int part = 0;
            int fps = 0;
            std::istringstream(rest) >> part >> fps;
            g_events.clear();
            g_partCounter = 0;
            startShowAt(part, fps);
            if (command == "start") {
                onFrame();
            }
        } else if (command == "wait") {
            g_now += static_cast<uint32_t>(number());
        } else if (command == "at") {
            at(number());
        } else if (command == "now" || command == "zero") {
            if (command == "now") {
                g_now = static_cast<uint32_t>(number());
            } else {
                g_musicStartTick = static_cast<uint32_t>(number());
            }
        } else if (command == "key") {
            std::istringstream keys(rest);
            for (std::string key; keys >> key;) {
                press(key);
            }
        } else if (command == "jump" || command == "seek" || command == "seekby" || command == "volume") {
            command == "jump" ? playerJumpTo(static_cast<int32_t>(number()))
            : command == "seek" ? playerSeekTo(number())
            : command == "seekby" ? playerSeekBy(number())
                                  : playerSetVolume(static_cast<int>(number()));
        } else if (command == "set-counter") {
            g_partCounter = static_cast<int32_t>(number());
        } else if (command == "capture") {
            g_playerEnabled = false;
        } else if (command == "loop") {
            g_showStartsOver = recordStartOver;
        } else if (command == "frame") {
            EXPECT_EQ(frame(), eventsOf(rest));
        } else if (command == "last") {
            const Events want = eventsOf(rest);
            const Events got = frame();
            ASSERT_GE(got.size(), want.size()) << ::testing::PrintToString(got);
            EXPECT_EQ(Events(got.end() - static_cast<long>(want.size()), got.end()), want);
        } else if (command == "events") {
            EXPECT_EQ(std::exchange(g_events, {}), eventsOf(rest));
        } else if (command == "part" || command == "counter" || command == "volume-is" || command == "toggles") {
            const int got = command == "part" ? playerPart() : command == "counter" ? g_partCounter
                            : command == "volume-is" ? playerVolume() : g_toggles;
            EXPECT_EQ(got, static_cast<int>(number()));
        } else if (command == "paused" || command == "music-paused" || command == "muted") {
            EXPECT_EQ(command == "paused" ? playerPaused() : command == "muted" ? playerMuted() : musicPaused(), yes());
        } else if (command == "gain") {
            EXPECT_FLOAT_EQ(playerGain(playerVolume(), playerMuted()), static_cast<float>(number()));
        } else if (command == "time") {
            updateMusicClock();
            EXPECT_FLOAT_EQ(g_demoTime, static_cast<float>(number()));
        } else if (command == "first-tick" || command == "back") {
            double a = 0, b = 0, c = 0;
            std::istringstream(rest) >> a >> b >> c;
            EXPECT_EQ(command == "back" ? partBackTarget(static_cast<int32_t>(a), static_cast<float>(b))
                                        : firstTickOfPart(static_cast<int32_t>(a), static_cast<int>(b)),
                      static_cast<long>(c));
        } else {
            FAIL() << "no such step";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, Script, ::testing::ValuesIn(readCases()), [](const auto& info) {
    std::string name;
    for (const char c : info.param.name) {
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return name;
});

TEST_F(Show, EveryPartIsSetUpOnceInOrderAndAPartChangeDrawsTwoFramesInOneCall) {
    EXPECT_EQ(frame(), (Events{"setup 1", "draw 1 at 0.0000"}));
    for (int k = 1; k <= PART_COUNT; ++k) {
        at(partEndTime(k));
        EXPECT_EQ(frame().size(), 1u) << "part " << k << " goes on at its end time";
        at(partEndTime(k) + 0.1);
        const std::string time = std::to_string(partEndTime(k) + 0.1f).substr(0, 6);
        const std::string drawn = "draw " + std::to_string(k) + " at " + time;
        if (k < PART_COUNT) {
            const std::string next = std::to_string(k + 1);
            EXPECT_EQ(frame(), (Events{drawn, "setup " + next, "draw " + next + " at " + time}));
            EXPECT_EQ(g_partCounter, 2 * (k + 1) - 1);
        } else {
            EXPECT_EQ(frame(), (Events{drawn, "end"})) << "the last part's final frame, then the end path";
        }
    }
}

TEST_F(Show, RPrintsTheDemoTimeAndOtherKeysDoNothing) {
    at(123.45);
    updateMusicClock();
    g_partCounter = 3;
    ::testing::internal::CaptureStdout();
    onKey('r', 0, 0);
    onKey('R', 0, 0);
    onKey('q', 0, 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "123.449997\n");
    EXPECT_EQ(g_partCounter, 3);
}

int64_t g_wall = 0;

TEST(FrameRate, IsFramesTimesAThousandOverTheMillisecondsPlayedForMonths) {
    EXPECT_DOUBLE_EQ(framesPerSecondAt(600, 1000, 11000), 60.0);
    EXPECT_DOUBLE_EQ(framesPerSecondAt(1, 0, 3), 1000.0 / 3.0);
    // No frame counted, or no time passed: 0, printed as 0.00.
    EXPECT_DOUBLE_EQ(framesPerSecondAt(0, 1000, 9000), 0.0);
    EXPECT_DOUBLE_EQ(framesPerSecondAt(10, 1000, 1000), 0.0);

    const auto wallClock = g_wallMillis;
    g_wallMillis = [] { return g_wall; };
    g_wall = 123'456;
    startFrameCounter();
    g_wall += 100;
    g_frameCount = 10;
    pauseFrameCounter();
    g_wall += 400;
    EXPECT_DOUBLE_EQ(framesPerSecond(), 100.0) << "paused: the time played so far";
    resumeFrameCounter();
    g_wall += 100;
    g_frameCount = 20;
    EXPECT_DOUBLE_EQ(framesPerSecond(), 100.0) << "the 0.4 s paused left out";
    // A show looping at 60 frames/s for 579 days: 3e9 frames, far past 32-bit
    // frames times a thousand and 32-bit milliseconds.
    startFrameCounter();
    g_frameCount = 3'000'000'000;
    g_wall += g_frameCount * 1000 / 60;
    EXPECT_NEAR(framesPerSecond(), 60.0, 0.001);
    g_frameCount = 0;
    g_wallMillis = wallClock;
}

}  // namespace
