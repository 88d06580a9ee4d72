// Construction and release of the camera and light records, and the
// per-frame camera update from its tracks.
#include "engine/world.h"

Camera::Camera()
    : positionTrack(new Track), targetTrack(new Track), track3(new Track), track4(new Track) {}

Camera::~Camera() {
    delete positionTrack;
    delete targetTrack;
    delete track3;
    delete track4;
}

// A track of one key holds that key's value; an empty track leaves `field`.
static void followTrack(const Track& track, int frame, Vector& field) {
    if (track.keyCount > 1) {
        field = evaluateTrack(track, static_cast<float>(frame));
    } else if (track.keyCount == 1) {
        field = track.keys[0].value;
    }
}

void Camera::update(int frame) {
    followTrack(*positionTrack, frame, position);
    followTrack(*targetTrack, frame, target);
}

Light::Light() : positionTrack(new Track) {}

Light::~Light() { delete positionTrack; }

Spotlight::Spotlight() : targetTrack(new Track), positionTrack(new Track) {}

Spotlight::~Spotlight() {
    delete targetTrack;
    delete positionTrack;
}
