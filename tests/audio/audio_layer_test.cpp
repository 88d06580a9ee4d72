// The audio layer under the music: gapless looping with an end sync per loop,
// pause and gain, MP3s behind other bytes, modules, and the 20 ms peak level,
// as played and anywhere in the song.
#include "audio/audio_output.h"
#include "audio/level_meter.h"
#include "audio/pcm_decoder.h"
#include "audio/sound_source.h"
#include "tests/audio/test_sounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numeric>

namespace {

int g_syncCount = 0;

class AudioLayer : public ::testing::Test {
protected:
    void SetUp() override {
        g_syncCount = 0;
        audioInitWithoutDevice();
    }
    void TearDown() override { audioFree(); }

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
};

// One stream through sound and silence, a pause, two gains and three loops.
TEST_F(AudioLayer, AStreamPlaysPausesAndLoopsSampleExactlyItsLevelReadingTheMusicNotTheVolume) {
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
}

TEST(SoundFiles, AnMp3WithOtherBytesBeforeItsFirstFrameDecodesAsAStream) {
    std::ifstream in(testSound("song.mp3"), std::ios::binary);
    const std::vector<uint8_t> clean((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<uint8_t> noise(700);
    std::iota(noise.begin(), noise.end(), 11);
    const std::string junk = makeTempDir() + "/junk.mp3";
    for (std::vector<uint8_t> bytes : {noise, std::vector<uint8_t>{0xFF, 0xFB, 0x90, 0x64, 0, 0, 0, 0, 0, 0, 0, 0},
                                       std::vector<uint8_t>(clean.end() - 300, clean.end())}) {  // a frame cut short
        bytes.insert(bytes.end(), clean.begin(), clean.end());
        writeBytes(junk, bytes);
        DecodedAudio decoded;
        std::string error;
        ASSERT_TRUE(decodeSoundtrack(junk, &decoded, &error)) << error;
        // The same song, give or take what the decoder makes of a frame's worth of junk.
        EXPECT_NEAR(static_cast<double>(decoded.frames()), 22050.0, 1152.0) << bytes.size();
        EXPECT_NEAR(static_cast<int>(packedPeakLevel(&decoded.samples[8820], LEVEL_WINDOW_FRAMES) & 0xFFFF), 62, 4);
    }
}

TEST_F(AudioLayer, AModulePlaysAndLoopsThroughItsEnd) {
    EXPECT_EQ(audioMusicLoad(testSound("song.mp3").c_str()), 0u) << "an MP3 is no module";
    ASSERT_NE(play(testSound("song.mod"), true), 0u);
    // The song lasts 64 rows of 20 ms: 3 s of mixing passes its end twice.
    const std::vector<int16_t> played = mix(44100 * 3);
    EXPECT_EQ(g_syncCount, 2);
    // Still sounding after the second loop began.
    EXPECT_GT(*std::max_element(played.end() - 2 * 4410, played.end()), 1000);
}

TEST(LevelMeter, ScaleIsZeroToOneHundredTwentyEightPerChannel) {
    for (const auto& [peak, level] : {std::pair{0u, 0u}, {255u, 0u}, {256u, 1u}, {16384u, 64u}, {32767u, 127u}, {32768u, 128u}}) {
        EXPECT_EQ(levelFromPeak(peak), level) << peak;
    }
    std::vector<int16_t> window(LEVEL_WINDOW_FRAMES * 2, 0);
    window[10] = -32768;  // left
    window[21] = 4096;    // right
    EXPECT_EQ(packedPeakLevel(window.data(), LEVEL_WINDOW_FRAMES), 128u | (16u << 16));
}

}  // namespace
