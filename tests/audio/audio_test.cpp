// The audio layer and the music clock over replaceable inputs (the
// millisecond clock, the level source): gapless looping with an end sync per
// loop, pause and gain, MP3s behind other bytes, modules, the 20 ms peak
// level as played and anywhere in the song; the demo clock, the fixed-step
// clock and the audio failures.
#include "audio/audio_output.h"
#include "audio/clock.h"
#include "audio/fixed_step_clock.h"
#include "audio/level_meter.h"
#include "audio/music.h"
#include "audio/pcm_decoder.h"
#include "audio/sound_source.h"
#include "tests/audio/test_sounds.h"
#include "tests/engine/text_cases.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numeric>
#include <tuple>

namespace {

int g_syncCount = 0;
uint32_t g_fakeNow = 0;

// A four-channel ProTracker module: one looped square-wave sample, one note
// (C-2) at speed 1: 64 rows of 20 ms, about 1.3 s.
std::string moduleFile() {
    static const std::string path = makeTempDir() + "/song.mod";
    static const bool written = (writeBytes(path, textBytes(  // title, 31 sample records, song, pattern, sample
        "x00*42 x00 xFA x00 x40 x00 x00 x00 xFA S10 S10 S10 x01 x7F x00*128 'M.K.' x01 xAC x10 x00 x00 x00 x0F x01 "
        "x00*1016 P5 P5 P5 x60*16 xA0*4", {{"S10", "S S S S S S S S S S"}, {"S", "x00*29 x01"}, {"P5", "P P P P P"},
                                              {"P", "x60*16 xA0*16"}})), true);
    return written ? path : "";
}

class Audio : public ::testing::Test {
protected:
    void SetUp() override {
        g_syncCount = 0;
        setenv("SDL_AUDIODRIVER", "dummy", 1);
    }
    void TearDown() override {
        closeMusic();
        g_stream = g_music = 0;
        g_soundEnabled = true;
        g_millisecondClock = monotonicMillis;
        g_levelSource = audioChannelGetLevel;  // the fixed-step clock replaces both
    }
    // A channel of `file`, playing in a loop, counting its end syncs.
    static AudioHandle play(const std::string& file, bool module = false) {
        const AudioHandle channel = module ? audioMusicLoad(file.c_str()) : audioStreamCreateFile(file.c_str());
        audioChannelSetSync(channel, [](uint32_t, uint32_t, uint32_t) { ++g_syncCount; });
        audioChannelPlay(channel, true);
        return channel;
    }
    // Mixes `frames` frames as the device would ask for them.
    static std::vector<int16_t> mix(size_t frames) {
        std::vector<int16_t> out(frames * 2);
        audioMix(out.data(), frames);
        return out;
    }
    // The level's left and right parts.
    static std::pair<int, int> level(AudioHandle channel) {
        const uint32_t packed = audioChannelGetLevel(channel);
        return {static_cast<int>(packed & 0xFFFF), static_cast<int>(packed >> 16)};
    }
    std::string path(const char* name) const { return dir_ + "/" + name; }
    std::string dir_ = makeTempDir();
};

// One stream through sound and silence, a pause, two gains and three loops.
TEST_F(Audio, AStreamPlaysPausesAndLoopsSampleExactlyItsLevelReadingTheMusicNotTheVolume) {
    audioInitWithoutDevice();
    DecodedAudio song;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(testSound("song.mp3"), &song, &error)) << error;
    // The encoder's delay and padding are honoured: exactly the samples encoded.
    ASSERT_EQ(song.frames(), 22050u);
    const AudioHandle stream = play(testSound("song.mp3"));
    ASSERT_NE(stream, 0u);
    mix(4410);
    const auto [left, right] = level(stream);
    EXPECT_NEAR(left, 16000 / 256, 4);
    EXPECT_NEAR(right, 8000 / 256, 4);
    EXPECT_EQ(audioChannelGetLevel(stream + 1), 0xFFFFFFFFu) << "no such channel";
    // The same level read at that place of the song without playing it (a
    // seek's frames), after it loops too, and the silence later on.
    const uint32_t played = audioChannelGetLevel(stream);
    EXPECT_EQ(audioChannelLevelAt(stream, 100), played);
    EXPECT_EQ(audioChannelLevelAt(stream, 600), played);
    EXPECT_LE(audioChannelLevelAt(stream, 450) & 0xFFFF, 1u);
    EXPECT_EQ(audioChannelLevelAt(0, 100), 0xFFFFFFFFu);

    audioChannelPause(stream, true);
    EXPECT_EQ(mix(4096), std::vector<int16_t>(2 * 4096, 0)) << "a paused channel plays nothing";
    EXPECT_EQ(level(stream), std::pair(left, right)) << "its level is the music's where it stopped";
    audioChannelPause(stream, false);

    audioSetGain(0.25f);
    const std::vector<int16_t> quarter = mix(2048);
    for (size_t i = 0; i < quarter.size(); ++i) {
        ASSERT_EQ(quarter[i], static_cast<int16_t>(std::lround(song.samples[2 * 4410 + i] * 0.25f))) << i;
    }
    EXPECT_NEAR(level(stream).first, left, 2) << "the level meter reads the music, not the volume";
    audioSetGain(0.0f);
    EXPECT_EQ(mix(1024), std::vector<int16_t>(2 * 1024, 0));
    EXPECT_NEAR(level(stream).first, left, 2) << "muted, the parts still see the music";
    audioSetGain(1.0f);

    const size_t at = 4410 + 2048 + 1024;
    const std::vector<int16_t> rest = mix(3 * 22050 + 13025 - at);  // into the silence of the fourth pass
    EXPECT_LE(std::max(level(stream).first, level(stream).second), 1);
    EXPECT_EQ(g_syncCount, 3);
    for (size_t i = 0; i < rest.size(); ++i) {
        ASSERT_EQ(rest[i], song.samples[(2 * at + i) % song.samples.size()]) << "sample " << i;
    }
    // The meter's scale: 0 to 128 a channel, the peak's top bits.
    for (const auto& [peak, scaled] : {std::pair{0u, 0u}, {255u, 0u}, {256u, 1u}, {16384u, 64u}, {32767u, 127u}, {32768u, 128u}}) {
        EXPECT_EQ(levelFromPeak(peak), scaled) << peak;
    }
    std::vector<int16_t> window(LEVEL_WINDOW_FRAMES * 2, 0);
    std::tie(window[10], window[21]) = std::pair(-32768, 4096);  // left, right
    EXPECT_EQ(packedPeakLevel(window.data(), LEVEL_WINDOW_FRAMES), 128u | (16u << 16));
}

TEST_F(Audio, AnMp3WithOtherBytesBeforeItsFirstFrameDecodesAsAStream) {
    std::ifstream in(testSound("song.mp3"), std::ios::binary);
    const std::vector<uint8_t> clean((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<uint8_t> noise(700);
    std::iota(noise.begin(), noise.end(), 11);
    for (std::vector<uint8_t> bytes : {noise, std::vector<uint8_t>{0xFF, 0xFB, 0x90, 0x64, 0, 0, 0, 0, 0, 0, 0, 0},
                                       std::vector<uint8_t>(clean.end() - 300, clean.end())}) {  // a frame cut short
        bytes.insert(bytes.end(), clean.begin(), clean.end());
        writeBytes(path("junk.mp3"), bytes);
        DecodedAudio decoded;
        std::string error;
        ASSERT_TRUE(decodeSoundtrack(path("junk.mp3"), &decoded, &error)) << error;
        // The same song, give or take what the decoder makes of a frame's worth of junk.
        EXPECT_NEAR(static_cast<double>(decoded.frames()), 22050.0, 1152.0) << bytes.size();
        EXPECT_NEAR(static_cast<int>(packedPeakLevel(&decoded.samples[8820], LEVEL_WINDOW_FRAMES) & 0xFFFF), 62, 4);
    }
}

TEST_F(Audio, AModulePlaysAndLoopsThroughItsEnd) {
    audioInitWithoutDevice();
    EXPECT_EQ(audioMusicLoad(testSound("song.mp3").c_str()), 0u) << "an MP3 is no module";
    ASSERT_NE(play(moduleFile(), true), 0u);
    // The song lasts 64 rows of 20 ms: 3 s of mixing passes its end twice.
    const std::vector<int16_t> played = mix(44100 * 3);
    EXPECT_EQ(g_syncCount, 2);
    // Still sounding after the second loop began.
    EXPECT_GT(*std::max_element(played.end() - 2 * 4410, played.end()), 1000);
}

TEST_F(Audio, TheClockStartsAtTheMusicsPlaceCountsTenthsAcrossTheTimersWrapAgainFromTheEndSyncAndStandsWhilePaused) {
    openMusic(moduleFile().c_str());
    ASSERT_NE(g_music, 0u);
    g_millisecondClock = [] { return g_fakeNow; };
    g_fakeNow = 0xFFFFFF00u;
    startMusicAt(250);
    updateMusicClock();
    // Rows of 20 ms: the music and the clock start at the row before or after 250 ms.
    const long startMillis = std::lround(g_demoTime * 100);
    EXPECT_TRUE(startMillis == 240 || startMillis == 260) << g_demoTime;
    g_fakeNow += 12345;  // wraps past 2^32
    updateMusicClock();
    EXPECT_EQ(g_demoTime, static_cast<float>((12345 + startMillis) * DEMO_TIME_SCALE));
    onMusicEnd(0, 1, 0);
    g_fakeNow += 100;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 1.0f);
    // A pause stands the clock; it goes on from there, the time paused left out.
    pauseMusic();
    g_fakeNow += 5000;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 1.0f);
    resumeMusic();
    g_fakeNow += 100;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 2.0f);
}

// What the probe tells a file, and what openMusic makes of it: a stream, a
// module, or the end of the show with status 0.
TEST_F(Audio, TheSoundtrackOpensAsAStreamOrElseAModuleAndAnythingElseIsFatal) {
    writeBytes(path("garbage.mp3"), std::vector<uint8_t>(5000, 0x33));
    std::vector<uint8_t> noise(200000);
    uint32_t state = 12345;
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<uint8_t>((state = state * 1664525u + 1013904223u) >> 24); });
    writeBytes(path("noise.mp3"), noise);
    writeBytes(path("empty.mp3"), {});
    ASSERT_EQ(mkdir(path("folder.mp3").c_str(), 0755), 0);
    enum Opens { STREAM, MODULE, FATAL };
    const std::tuple<std::string, SoundFormat, Opens> files[] = {
        {testSound("song.mp3"), SoundFormat::Mp3, STREAM},    {moduleFile(), SoundFormat::Module, MODULE},
        {testSound("song.wav"), SoundFormat::Unknown, FATAL}, {path("garbage.mp3"), SoundFormat::Unknown, FATAL},
        {path("noise.mp3"), SoundFormat::Unknown, FATAL},     {path("empty.mp3"), SoundFormat::Unreadable, FATAL},
        {path("folder.mp3"), SoundFormat::Unreadable, FATAL}, {path("missing.mp3"), SoundFormat::Unreadable, FATAL},
        {testDataPath("pcx/allegro_mysha.pcx"), SoundFormat::Unknown, FATAL},
        {testDataPath("3ds/test1.3ds"), SoundFormat::Unknown, FATAL}};
    for (const auto& [file, format, opens] : files) {
        SCOPED_TRACE(file);
        EXPECT_EQ(probeSoundFile(file.c_str()), format);
        if (opens == FATAL) {
            const FatalError error = expectFatal([&] { openMusic(file.c_str()); });
            EXPECT_EQ(error.caption + ": " + error.text + " " + std::to_string(error.status), "BASS ERROR: Can't play the file 0");
        } else {
            openMusic(file.c_str());
            EXPECT_EQ(std::pair(g_stream != 0, g_music != 0), std::pair(opens == STREAM, opens == MODULE));
            closeMusic();
            g_stream = g_music = 0;
        }
    }
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    const FatalError device = expectFatal([] { openMusic(testSound("song.mp3").c_str()); });
    EXPECT_EQ(device.caption + ": " + device.text + " " + std::to_string(device.status), "BASS ERROR: Can't initialize device 0");
}

// The fixed-step clock: frame k sees round(k * 1000 / fps) ms, the level comes
// from the decoded soundtrack at that moment, and the song's end moves the zero.
TEST_F(Audio, WithoutSoundOnTheFixedStepClockFrameKSeesRoundedMillisAndTheSoundtracksLevelThere) {
    g_soundEnabled = false;  // nothing is opened, and the clock still starts
    openMusic(path("missing.mp3").c_str());
    EXPECT_EQ(g_stream + g_music, 0u);
    std::string error;
    ASSERT_TRUE(startFixedStepClock(30, "", &error));
    startMusic();
    advanceFixedStepClock();
    updateMusicClock();
    EXPECT_EQ(g_levelLeft + g_levelRight, 2 * 65535u) << "a silent show has no level";
    EXPECT_FALSE(startFixedStepClock(30, testDataPath("3ds/test1.3ds"), &error));
    EXPECT_NE(error.find("test1.3ds"), std::string::npos);
    ASSERT_TRUE(startFixedStepClock(30, testSound("song.mp3"), &error)) << error;
    startMusic();
    // The song sounds for its first 250 ms and starts again at 500.
    const struct { int frames, millis, left, right; } steps[] = {
        {1, 33, 62, 31}, {1, 67, 62, 31}, {6, 267, 62, 31},  // the 20 ms before 267 ms hold sound
        {4, 400, 0, 0},  {3, 0, 0, 0},    {3, 100, 62, 31}};
    for (const auto& [frames, millis, left, right] : steps) {
        setFixedStepFrame(fixedStepFrames() + frames);  // the frames swapped
        updateMusicClock();
        EXPECT_EQ(g_demoTime, static_cast<float>(millis * DEMO_TIME_SCALE)) << millis;
        EXPECT_NEAR(static_cast<int>(g_levelLeft), left, 4) << millis;
        EXPECT_NEAR(static_cast<int>(g_levelRight), right, 4) << millis;
    }
}

}  // namespace
