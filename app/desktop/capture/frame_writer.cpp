#include "app/desktop/capture/frame_writer.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

struct FrameWriter::Impl {
    Write write;
    std::vector<std::vector<uint8_t>> slots;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::deque<uint8_t*> free;
    std::deque<std::pair<uint8_t*, long>> queued;
    bool stopping = false;
    bool failed = false;
    std::thread thread;

    void run() {
        std::unique_lock<std::mutex> lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return stopping || !queued.empty(); });
            if (queued.empty()) {
                return;
            }
            const auto [slot, frame] = queued.front();
            queued.pop_front();
            const bool skip = failed;
            lock.unlock();
            const bool written = skip || write(slot, frame);
            lock.lock();
            failed = failed || !written;
            free.push_back(slot);
            changed.notify_all();
        }
    }
};

FrameWriter::FrameWriter(size_t frameBytes, int slots, Write write) : impl_(new Impl) {
    impl_->write = std::move(write);
    impl_->slots.resize(static_cast<size_t>(slots));
    for (std::vector<uint8_t>& slot : impl_->slots) {
        slot.resize(frameBytes);
        impl_->free.push_back(slot.data());
    }
    impl_->thread = std::thread([this] { impl_->run(); });
}

FrameWriter::~FrameWriter() {
    finish();
    delete impl_;
}

uint8_t* FrameWriter::freeSlot() {
    std::unique_lock<std::mutex> lock(impl_->mutex);
    impl_->changed.wait(lock, [this] { return !impl_->free.empty(); });
    uint8_t* slot = impl_->free.front();
    impl_->free.pop_front();
    return slot;
}

void FrameWriter::submit(uint8_t* slot, long frame) {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->queued.emplace_back(slot, frame);
    impl_->changed.notify_all();
}

bool FrameWriter::finish() {
    {
        std::lock_guard<std::mutex> lock(impl_->mutex);
        impl_->stopping = true;
        impl_->changed.notify_all();
    }
    if (impl_->thread.joinable()) {
        impl_->thread.join();
    }
    return !impl_->failed;
}

bool FrameWriter::failed() const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    return impl_->failed;
}
