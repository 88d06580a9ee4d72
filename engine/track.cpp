#include "engine/track.h"

#include <cstdint>

// Evaluation and tangent preparation use the low 16 bits of a key's frame,
// as a signed number.
static int keyFrame(const Key& key) { return static_cast<int16_t>(key.frame); }

// numerator / denominator of two frame differences, taken as for evenly
// spaced keys when frames do not increase (a zero denominator).
static float frameRatio(int numerator, int denominator, float even) {
    if (denominator == 0) {
        return even;
    }
    return static_cast<float>(numerator) / static_cast<float>(denominator);
}

Track::~Track() { delete[] keys; }

void Track::adoptKeys(Key* newKeys, uint32_t count) {
    delete[] keys;
    keys = newKeys;
    keyCount = count;
}

float ease(float t, float a, float b) {
    const float s = a + b;
    if (s == 0.0f) {
        return t;
    }
    if (s > 1.0f) {
        a = a / s;
        b = b / s;
    }
    const float k = 1.0f / (2.0f - a - b);
    if (t < a) {
        return (k / a) * t * t;
    }
    if (t < 1.0f - b) {
        return k * (2.0f * t - a);
    }
    if (b == 0.0f) {
        return 1.0f;
    }
    const float rest = 1.0f - t;
    return 1.0f - (k / b) * rest * rest;
}

Vector evaluateTrack(const Track& track, float frame) {
    const Key* keys = track.keys;
    const uint32_t count = track.keyCount;
    for (uint32_t i = 0; i + 1 < count; ++i) {
        const int fi = keyFrame(keys[i]);
        const int fj = keyFrame(keys[i + 1]);
        const float from = static_cast<float>(fi);
        const float to = static_cast<float>(fj);
        if (!((from <= frame && frame < to) || (from < frame && frame == to))) {
            continue;
        }
        const Key& k1 = keys[i];
        const Key& k2 = keys[i + 1];
        const float t = (frame - from) / static_cast<float>(fj - fi);
        const float u = ease(t, k1.easeFrom, k2.easeTo);
        const float u2 = u * u;
        const float u3 = u2 * u;
        const float h1 = 2.0f * u3 - 3.0f * u2 + 1.0f;
        const float h2 = 3.0f * u2 - 2.0f * u3;
        const float h3 = u3 - 2.0f * u2 + u;
        const float h4 = u3 - u2;
        Vector result;
        result.x = h1 * k1.value.x + h2 * k2.value.x + h3 * k1.tangentOut.x + h4 * k2.tangentIn.x;
        result.y = h1 * k1.value.y + h2 * k2.value.y + h3 * k1.tangentOut.y + h4 * k2.tangentIn.y;
        result.z = h1 * k1.value.z + h2 * k2.value.z + h3 * k1.tangentOut.z + h4 * k2.tangentIn.z;
        return result;
    }
    // No segment holds the frame: before the first key it holds the first
    // key's value, anywhere else the last key's.
    if (count == 0) {
        return Vector{};
    }
    if (frame < static_cast<float>(keyFrame(keys[0]))) {
        return keys[0].value;
    }
    return keys[count - 1].value;
}

void combineTangents(float previous, float current, float next, float* inComponent,
                     float* outComponent, float ksm, float ksp, float kdm, float kdp) {
    const float dp = current - previous;
    const float dn = next - current;
    *inComponent = dp * ksm + dn * ksp;
    *outComponent = dp * kdm + dn * kdp;
}

void computeMiddleTangents(const Key& previous, Key& key, const Key& next) {
    const int fp = keyFrame(previous);
    const int fc = keyFrame(key);
    const int fn = keyFrame(next);
    const float dt = 0.5f * static_cast<float>(fn - fp);
    const float rp = dt == 0.0f ? 1.0f : static_cast<float>(fc - fp) / dt;
    const float rn = dt == 0.0f ? 1.0f : static_cast<float>(fn - fc) / dt;
    const float q = key.continuity < 0.0f ? -key.continuity : key.continuity;
    const float ap = q + rp - q * rp;
    const float an = q + rn - q * rn;
    const float tm = 0.5f * (1.0f - key.tension);
    const float cm = 1.0f - key.continuity;
    const float cp = 2.0f - cm;
    const float bm = 1.0f - key.bias;
    const float bp = 2.0f - bm;
    const float ksm = tm * cm * bp * ap;
    const float ksp = tm * cp * bm * ap;
    const float kdm = tm * cp * bp * an;
    const float kdp = tm * cm * bm * an;
    combineTangents(previous.value.x, key.value.x, next.value.x, &key.tangentIn.x,
                    &key.tangentOut.x, ksm, ksp, kdm, kdp);
    combineTangents(previous.value.y, key.value.y, next.value.y, &key.tangentIn.y,
                    &key.tangentOut.y, ksm, ksp, kdm, kdp);
    combineTangents(previous.value.z, key.value.z, next.value.z, &key.tangentIn.z,
                    &key.tangentOut.z, ksm, ksp, kdm, kdp);
}

// The end tangent shared by computeFirstTangent and computeLastTangent, for
// one axis: (1.5 * (d1 - d2 / 2) + c * d2 + d2 / 2) * (1 - tension).
static float endTangent(float c, float d1, float d2, float tension) {
    const float half = 0.5f * d2;
    return (1.5f * (d1 - half) + c * d2 + half) * (1.0f - tension);
}

void computeFirstTangent(Key& first, const Key& second, const Key& third) {
    const int f0 = keyFrame(first);
    const int f1 = keyFrame(second);
    const int f2 = keyFrame(third);
    const float c = 0.25f - frameRatio(f1 - f0, 2 * (f2 - f0), 0.25f);
    const Vector& p0 = first.value;
    const Vector& p1 = second.value;
    const Vector& p2 = third.value;
    first.tangentOut.x = endTangent(c, p1.x - p0.x, p2.x - p0.x, first.tension);
    first.tangentOut.y = endTangent(c, p1.y - p0.y, p2.y - p0.y, first.tension);
    first.tangentOut.z = endTangent(c, p1.z - p0.z, p2.z - p0.z, first.tension);
}

void computeLastTangent(const Key& thirdFromLast, const Key& secondFromLast, Key& last) {
    const int fa = keyFrame(thirdFromLast);
    const int fb = keyFrame(secondFromLast);
    const int fl = keyFrame(last);
    const float c = 0.25f - frameRatio(fl - fb, 2 * (fl - fa), 0.25f);
    const Vector& pa = thirdFromLast.value;
    const Vector& pb = secondFromLast.value;
    const Vector& pl = last.value;
    last.tangentIn.x = endTangent(c, pl.x - pb.x, pl.x - pa.x, last.tension);
    last.tangentIn.y = endTangent(c, pl.y - pb.y, pl.y - pa.y, last.tension);
    last.tangentIn.z = endTangent(c, pl.z - pb.z, pl.z - pa.z, last.tension);
}

void prepareTangents(Track& track) {
    const uint32_t n = track.keyCount;
    Key* keys = track.keys;
    if (n == 2) {
        // One segment, no neighbours to shape it: a straight line at even speed.
        const Vector delta{keys[1].value.x - keys[0].value.x, keys[1].value.y - keys[0].value.y,
                           keys[1].value.z - keys[0].value.z, 0.0f};
        keys[0].tangentOut = delta;
        keys[1].tangentIn = delta;
        return;
    }
    if (n < 3) {
        return;
    }
    for (uint32_t i = 1; i + 1 < n; ++i) {
        computeMiddleTangents(keys[i - 1], keys[i], keys[i + 1]);
    }
    computeFirstTangent(keys[0], keys[1], keys[2]);
    computeLastTangent(keys[n - 3], keys[n - 2], keys[n - 1]);
}
