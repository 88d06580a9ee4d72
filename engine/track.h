// Keyframe tracks: keys, tangent preparation and evaluation of position tracks
// (cubic Hermite segments with Kochanek-Bartels tangents and ease in/out).
#pragma once

#include <cstdint>

#include "engine/vector.h"

// One key of a position track. Values are in engine axes.
struct Key {
    Vector value;            // the key's position
    int32_t frame = 0;       // frame number as the file holds it; evaluation uses
                             // only its low 16 bits, as a signed 16-bit number
    Vector tangentIn;        // used when the key ends a segment
    Vector tangentOut;       // used when the key starts a segment
    float tension = 0.0f;    // Kochanek-Bartels parameters, -1..1
    float continuity = 0.0f;
    float bias = 0.0f;
    float easeTo = 0.0f;     // ease arriving at this key, 0..1
    float easeFrom = 0.0f;   // ease leaving this key, 0..1
    uint16_t splineFlags = 0; // bit 0 tension, 1 continuity, 2 bias, 3 ease to, 4 ease from
};

// A position track. Owns its key array (keyCount keys, in ascending frame
// order, or none when keyCount is 0).
struct Track {
    uint32_t keyCount = 0;
    Key* keys = nullptr;
    uint16_t flags = 0; // the file's track flag word; not used by evaluation

    Track() = default;
    ~Track();
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;

    // Releases the current keys and takes `keys` (count elements, allocated
    // with new[]) in their place.
    void adoptKeys(Key* keys, uint32_t count);
};

// The scene's keyframe segment, owned by its World.
struct KeyframeSegment {
    int32_t startFrame = 0;
    int32_t endFrame = 0;
    uint8_t loop = 1; // 0: hold at endFrame; 1: wrap past endFrame
};

// The track's position at `frame` (x, y, z; w unspecified). Needs at least one
// key. A frame before the first key or after the last gives that key's value;
// a track of one key gives its value whatever the frame.
Vector evaluateTrack(const Track& track, float frame);

// The eased segment parameter for t in 0..1; a is the ease leaving the
// segment's first key, b the ease arriving at its second. Returns t when
// a + b is 0, and 1 at the point where the last step would divide by b = 0.
float ease(float t, float a, float b);

// Fills the tangents of every key; run once after a track has been read.
// Three keys or more: middle keys by computeMiddleTangents, then the first
// and last keys. Exactly two keys: both tangents p1 - p0 (straight, even
// motion). Frames that do not increase never cause a division by zero.
void prepareTangents(Track& track);

// Both tangents of an inner key from its neighbours.
void computeMiddleTangents(const Key& previous, Key& key, const Key& next);

// One axis of computeMiddleTangents: with dp = current - previous and
// dn = next - current, *inComponent = dp*ksm + dn*ksp and
// *outComponent = dp*kdm + dn*kdp.
void combineTangents(float previous, float current, float next, float* inComponent,
                     float* outComponent, float ksm, float ksp, float kdm, float kdp);

// tangentOut of a track's first key.
void computeFirstTangent(Key& first, const Key& second, const Key& third);

// tangentIn of a track's last key.
void computeLastTangent(const Key& thirdFromLast, const Key& secondFromLast, Key& last);
