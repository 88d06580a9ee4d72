// The audio layer under the music: which files open as what, gapless looping
// with an end sync per loop, modules, and the 20 ms peak level, as played and
// anywhere in the song.
#include "audio/audio_output.h"
#include "audio/level_meter.h"
#include "audio/pcm_decoder.h"
#include "audio/sound_source.h"
#include "tests/audio/test_sounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

constexpr size_t TONE_FRAMES = 11025;  // 0.25 s

int g_syncCount = 0;
void countSync(uint32_t, uint32_t, uint32_t) { ++g_syncCount; }

class AudioLayer : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = makeTempDir();
        g_syncCount = 0;
        audioInitWithoutDevice();
    }
    void TearDown() override { audioFree(); }

    std::string path(const char* name) const { return dir_ + "/" + name; }

    // Mixes `frames` frames in device-sized pieces and returns them all.
    static std::vector<int16_t> mix(size_t frames) {
        std::vector<int16_t> out(frames * 2);
        for (size_t done = 0; done < frames; done += 1024) {
            audioMix(out.data() + 2 * done, std::min<size_t>(1024, frames - done));
        }
        return out;
    }

    std::string dir_;
};

TEST_F(AudioLayer, ProbeTellsMp3ModuleAndEverythingElseApart) {
    writeMp3(path("a.mp3"), tone(TONE_FRAMES, TONE_FRAMES, 8000, 8000));
    writeModule(path("a.mod"));
    writeWav(path("a.wav"), tone(TONE_FRAMES, TONE_FRAMES, 8000, 8000));
    writeBytes(path("garbage"), std::vector<uint8_t>(3000, 0x5A));
    writeBytes(path("empty"), {});

    EXPECT_EQ(probeSoundFile(path("a.mp3").c_str()), SoundFormat::Mp3);
    EXPECT_EQ(probeSoundFile(path("a.mod").c_str()), SoundFormat::Module);
    EXPECT_EQ(probeSoundFile(path("a.wav").c_str()), SoundFormat::Unknown);
    EXPECT_EQ(probeSoundFile(path("garbage").c_str()), SoundFormat::Unknown);
    EXPECT_EQ(probeSoundFile(path("empty").c_str()), SoundFormat::Unreadable);
    EXPECT_EQ(probeSoundFile(path("missing").c_str()), SoundFormat::Unreadable);

    // Neither decoder takes what is not its own.
    EXPECT_EQ(audioStreamCreateFile(path("a.wav").c_str()), 0u);
    EXPECT_EQ(audioStreamCreateFile(path("a.mod").c_str()), 0u);
    EXPECT_EQ(audioMusicLoad(path("a.mp3").c_str()), 0u);
    EXPECT_EQ(audioMusicLoad(path("a.wav").c_str()), 0u);
}

TEST_F(AudioLayer, StreamLoopsSampleExactlyWithAnEndSyncPerLoop) {
    writeMp3(path("tone.mp3"), tone(TONE_FRAMES, TONE_FRAMES, 12000, 6000));
    DecodedAudio decoded;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(path("tone.mp3"), &decoded, &error)) << error;
    // The encoder's delay and padding are honoured: exactly the samples encoded.
    ASSERT_EQ(decoded.frames(), TONE_FRAMES);

    const AudioHandle stream = audioStreamCreateFile(path("tone.mp3").c_str());
    ASSERT_NE(stream, 0u);
    audioChannelSetSync(stream, countSync);
    audioChannelPlay(stream, true);
    const std::vector<int16_t> played = mix(TONE_FRAMES * 7 / 2);

    EXPECT_EQ(g_syncCount, 3);
    for (size_t i = 0; i < played.size(); ++i) {
        ASSERT_EQ(played[i], decoded.samples[i % decoded.samples.size()]) << "sample " << i;
    }
}

TEST_F(AudioLayer, AnMp3WithOtherBytesBeforeItsFirstFramePlays) {
    writeMp3(path("clean.mp3"), tone(TONE_FRAMES * 4, TONE_FRAMES * 4, 20000, 20000));
    std::ifstream in(path("clean.mp3"), std::ios::binary);
    const std::vector<uint8_t> clean((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    DecodedAudio reference;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(path("clean.mp3"), &reference, &error)) << error;

    std::vector<uint8_t> noise(700);
    for (size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<uint8_t>(i * 37 + 11);
    }
    const struct {
        const char* what;
        std::vector<uint8_t> before;
    } cases[] = {
        {"other bytes", noise},
        {"a stray frame header", {0xFF, 0xFB, 0x90, 0x64, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"a frame cut short", std::vector<uint8_t>(clean.end() - 300, clean.end())},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<uint8_t> bytes = c.before;
        bytes.insert(bytes.end(), clean.begin(), clean.end());
        writeBytes(path("junk.mp3"), bytes);
        EXPECT_EQ(probeSoundFile(path("junk.mp3").c_str()), SoundFormat::Mp3);
        DecodedAudio decoded;
        ASSERT_TRUE(decodeSoundtrack(path("junk.mp3"), &decoded, &error)) << error;
        // The same song, give or take what the decoder makes of a frame's worth of junk.
        EXPECT_NEAR(static_cast<double>(decoded.frames()), static_cast<double>(reference.frames()), 1152.0);

        const AudioHandle stream = audioStreamCreateFile(path("junk.mp3").c_str());
        ASSERT_NE(stream, 0u);
        audioChannelPlay(stream, true);
        mix(44100 * 3 / 10);
        EXPECT_NEAR(static_cast<int>(audioChannelGetLevel(stream) & 0xFFFF), 20000 / 256, 4);
        audioFree();
        audioInitWithoutDevice();
    }
}

TEST_F(AudioLayer, ModulePlaysAndLoopsThroughItsEnd) {
    writeModule(path("song.mod"));
    const AudioHandle module = audioMusicLoad(path("song.mod").c_str());
    ASSERT_NE(module, 0u);
    audioChannelSetSync(module, countSync);
    audioChannelPlay(module, true);
    // The song lasts 64 rows of 20 ms: 3 s of mixing passes its end twice.
    const std::vector<int16_t> played = mix(44100 * 3);
    EXPECT_EQ(g_syncCount, 2);
    // Still sounding after the second loop began.
    int peak = 0;
    for (size_t i = played.size() - 2 * 4410; i < played.size(); ++i) {
        peak = std::max(peak, std::abs(static_cast<int>(played[i])));
    }
    EXPECT_GT(peak, 1000);
}

TEST_F(AudioLayer, LevelFollowsTheLastTwentyMillisecondsPerChannel) {
    // 0.5 s loud (left 28000, right 8000), then 0.5 s of silence.
    writeMp3(path("beat.mp3"), tone(44100, 22050, 28000, 8000));
    const AudioHandle stream = audioStreamCreateFile(path("beat.mp3").c_str());
    audioChannelPlay(stream, true);

    mix(44100 * 4 / 10);
    const uint32_t loud = audioChannelGetLevel(stream);
    EXPECT_NEAR(static_cast<int>(loud & 0xFFFF), 28000 / 256, 4);
    EXPECT_NEAR(static_cast<int>(loud >> 16), 8000 / 256, 4);

    mix(44100 * 5 / 10);
    const uint32_t quiet = audioChannelGetLevel(stream);
    EXPECT_LE(quiet & 0xFFFF, 1u);
    EXPECT_LE(quiet >> 16, 1u);

    // The same levels, read at those places of the song (and past its end) without playing it.
    EXPECT_EQ(audioChannelLevelAt(stream, 400), loud);
    EXPECT_EQ(audioChannelLevelAt(stream, 1900), quiet);
    EXPECT_EQ(audioChannelLevelAt(stream, 1400), loud);
    EXPECT_EQ(audioChannelLevelAt(0, 400), 0xFFFFFFFFu);
}

TEST_F(AudioLayer, APausedChannelGoesOnWhereItStoppedAndItsLevelStands) {
    // Loud for 0.1 s, then silent: where the song stands shows in what is mixed.
    writeMp3(path("steps.mp3"), tone(TONE_FRAMES, 4410, 16000, 16000));
    DecodedAudio song;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(path("steps.mp3"), &song, &error)) << error;
    const AudioHandle stream = audioStreamCreateFile(path("steps.mp3").c_str());
    ASSERT_NE(stream, 0u);
    audioChannelPlay(stream, true);
    const std::vector<int16_t> before = mix(2048);
    const uint32_t level = audioChannelGetLevel(stream);
    EXPECT_GT(level & 0xFFFF, 40u);

    audioChannelPause(stream, true);
    const std::vector<int16_t> paused = mix(4096);
    EXPECT_EQ(paused, std::vector<int16_t>(paused.size(), 0)) << "a paused channel plays nothing";
    EXPECT_EQ(audioChannelGetLevel(stream), level) << "its level is the music's where it stopped";

    audioChannelPause(stream, false);
    const std::vector<int16_t> after = mix(2048);
    EXPECT_TRUE(std::equal(before.begin(), before.end(), song.samples.begin()));
    EXPECT_TRUE(std::equal(after.begin(), after.end(), song.samples.begin() + static_cast<long>(before.size())))
        << "it goes on with the sample after the last one played";
}

TEST_F(AudioLayer, TheGainScalesWhatIsPlayedButNotTheLevel) {
    writeMp3(path("tone.mp3"), tone(TONE_FRAMES, TONE_FRAMES, 16000, 8000));
    DecodedAudio song;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(path("tone.mp3"), &song, &error)) << error;
    const AudioHandle stream = audioStreamCreateFile(path("tone.mp3").c_str());
    ASSERT_NE(stream, 0u);
    audioChannelPlay(stream, true);
    mix(2048);
    const uint32_t fullLevel = audioChannelGetLevel(stream);

    audioChannelSetPosition(stream, 0);
    audioSetGain(0.25f);
    const std::vector<int16_t> quarter = mix(2048);
    for (size_t i = 0; i < quarter.size(); ++i) {
        ASSERT_EQ(quarter[i], static_cast<int16_t>(std::lround(song.samples[i] * 0.25f))) << "sample " << i;
    }
    EXPECT_EQ(audioChannelGetLevel(stream), fullLevel) << "the level meter reads the music, not the volume";

    audioSetGain(0.0f);
    const std::vector<int16_t> muted = mix(1024);
    EXPECT_EQ(muted, std::vector<int16_t>(muted.size(), 0));
    EXPECT_NEAR(static_cast<int>(audioChannelGetLevel(stream) & 0xFFFF), static_cast<int>(fullLevel & 0xFFFF), 2)
        << "muted, the parts still see the music";
}

TEST(LevelMeter, ScaleIsZeroToOneHundredTwentyEight) {
    EXPECT_EQ(levelFromPeak(0), 0u);
    EXPECT_EQ(levelFromPeak(255), 0u);
    EXPECT_EQ(levelFromPeak(256), 1u);
    EXPECT_EQ(levelFromPeak(16384), 64u);
    EXPECT_EQ(levelFromPeak(32767), 127u);
    EXPECT_EQ(levelFromPeak(32768), 128u);

    std::vector<int16_t> window(LEVEL_WINDOW_FRAMES * 2, 0);
    window[10] = -32768;  // left
    window[21] = 4096;    // right
    EXPECT_EQ(packedPeakLevel(window.data(), LEVEL_WINDOW_FRAMES), 128u | (16u << 16));
}

TEST(AudioWithoutChannel, ReportsTheErrorLevelAndIgnoresCalls) {
    audioInitWithoutDevice();
    EXPECT_EQ(audioChannelGetLevel(0), 0xFFFFFFFFu);
    EXPECT_EQ(audioChannelGetLevel(3), 0xFFFFFFFFu);
    audioChannelPlay(0, true);
    audioChannelSetSync(0, countSync);
    audioStart();
    audioFree();
    EXPECT_EQ(audioChannelGetLevel(1), 0xFFFFFFFFu);
}

}  // namespace
