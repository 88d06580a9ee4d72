// Keyframe tracks: tangents, evaluation, ease and the World's frame clock, call
// by call from tests/data/engine/tracks.txt; the camera update.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>
#include <tuple>
#include <vector>

#include "engine/world.h"
#include "tests/support/fatal_catcher.h"

namespace {

// The numbers of `words` ("-" reads as NaN: not checked).
std::vector<float> numbers(const std::vector<std::string>& words) {
    std::vector<float> out;
    for (const std::string& word : words) out.push_back(word == "-" ? NAN : std::strtof(word.c_str(), nullptr));
    return out;
}

// A track of `keys` (FRAME,X[,TENSION,CONTINUITY,BIAS,EASE_TO,EASE_FROM]), prepared as the reader prepares it.
void fill(Track& track, const std::vector<std::string>& keys) {
    track.adoptKeys(new Key[keys.size()], static_cast<uint32_t>(keys.size()));
    for (size_t i = 0; i < keys.size(); ++i) {
        std::string text = keys[i];
        std::replace(text.begin(), text.end(), ',', ' ');
        std::istringstream fields(text);
        std::vector<float> v = numbers({std::istream_iterator<std::string>(fields), {}});
        v.resize(7, 0.0f);
        Key& k = track.keys[i];
        k.frame = static_cast<int32_t>(v[0]);
        k.value = Vector{v[1], -v[1], 2.0f * v[1], 0.0f};
        std::tie(k.tension, k.continuity, k.bias, k.easeTo, k.easeFrom) = std::tie(v[2], v[3], v[4], v[5], v[6]);
    }
    prepareTangents(track);
}

TEST(Tracks, CallsGiveTheirResults) {
    std::ifstream file(testDataPath("engine/tracks.txt"));
    int number = 0, calls = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.empty() || line[0] == '#') continue;
        SCOPED_TRACE("tracks.txt:" + std::to_string(number) + ": " + line);
        ++calls;
        std::istringstream words(line);
        std::string name, word;
        std::vector<std::string> keys, at, results;
        std::vector<std::string>* into = &keys;
        for (words >> name; words >> word;) {
            into = word == "at" ? &at : word == "->" ? &results : into;
            if (word != "at" && word != "->") into->push_back(word);
        }
        const std::vector<float> args = numbers(keys), want = numbers(results);
        if (name == "ease") {
            EXPECT_NEAR(ease(args[0], args[1], args[2]), want[0], 1e-6f);
        } else if (name == "frame") {
            World world;
            *world.segment = {static_cast<int32_t>(args[0]), static_cast<int32_t>(args[1]), static_cast<uint8_t>(args[2])};
            world.setFrame(args[3]);
            EXPECT_EQ(world.currentFrame, want[0]);
        } else if (name == "track") {
            Track track;
            fill(track, keys);
            for (size_t i = 0; i < track.keyCount && results == std::vector<std::string>{"finite"}; ++i) {
                EXPECT_TRUE(std::isfinite(track.keys[i].tangentIn.x + track.keys[i].tangentOut.x)) << "key " << i;
            }
            const size_t bar = std::find(results.begin(), results.end(), "|") - results.begin();
            for (size_t i = 0; i < bar && results[0] != "finite"; ++i) {
                const Vector& tangent = i % 2 == 0 ? track.keys[(i + 1) / 2].tangentOut : track.keys[(i + 1) / 2].tangentIn;
                EXPECT_TRUE(std::isnan(want[i]) || (std::fabs(tangent.x - want[i]) < 1e-4f && std::fabs(tangent.z - 2 * want[i]) < 2e-4f))
                    << "tangent " << i << ": " << tangent.x << ", z " << tangent.z;
            }
            for (size_t i = 0; i < at.size(); ++i) {
                const Vector v = evaluateTrack(track, std::strtof(at[i].c_str(), nullptr));
                const float x = results[0] == "finite" ? v.x : want[bar + 1 + i];
                EXPECT_TRUE(std::isfinite(v.x) && std::fabs(v.x - x) < 2e-5f && std::fabs(v.y + x) < 2e-5f && std::fabs(v.z - 2 * x) < 4e-5f)
                    << "at " << at[i] << ": (" << v.x << "," << v.y << "," << v.z << ")";
            }
        } else {
            ADD_FAILURE() << "no such call";
        }
    }
    EXPECT_GT(calls, 30);
}

TEST(Tracks, CameraTakesItsTracksAndEmptyTracksMoveNothing) {
    Camera camera;
    camera.position = Vector{1, 2, 3, 0};
    fill(*camera.targetTrack, {"50,9"});
    camera.update(15);
    EXPECT_EQ(std::vector({camera.position.x, camera.position.y, camera.position.z}), std::vector({1.0f, 2.0f, 3.0f}));
    // One key holds whatever the frame.
    EXPECT_EQ(std::vector({camera.target.x, camera.target.y, camera.target.z}), std::vector({9.0f, -9.0f, 18.0f}));
}

}  // namespace
