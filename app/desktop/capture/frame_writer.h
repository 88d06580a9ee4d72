// Captured frames written by a thread of their own: the show's thread reads a
// finished frame into a free slot and goes on drawing while the writer
// compresses it to a PNG file or feeds it, with its stretch of the soundtrack,
// to the video encoder. A few slots keep both busy; the show's thread waits
// only when all of them are still being written.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

class FrameWriter {
public:
    // What writes one frame: its pixels (top row first) and its number in
    // the capture. False when it cannot (the writer then drops the rest).
    using Write = std::function<bool(const uint8_t* pixels, long frame)>;

    // `frameBytes` per slot, `slots` slots.
    FrameWriter(size_t frameBytes, int slots, Write write);
    // Writes what is queued, then stops the thread.
    ~FrameWriter();
    FrameWriter(const FrameWriter&) = delete;
    FrameWriter& operator=(const FrameWriter&) = delete;

    // A slot to read the next frame into; waits while none is free.
    uint8_t* freeSlot();
    // Hands the slot from freeSlot over, as frame `frame`.
    void submit(uint8_t* slot, long frame);
    // Writes what is queued; false when any write failed.
    bool finish();
    // True once a write failed (the writer then drops the rest).
    bool failed() const;

private:
    struct Impl;
    Impl* impl_;
};
