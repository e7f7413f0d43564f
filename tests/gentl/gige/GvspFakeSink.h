// A stream module stand-in for the GVSP receive path: hands out buffers it owns and keeps what
// comes back.
#ifndef ORVAN_TESTS_GENTL_GIGE_GVSPFAKESINK_H
#define ORVAN_TESTS_GENTL_GIGE_GVSPFAKESINK_H

#include "RemoteDevice.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace GvspTest {

class FakeSink : public Orvan::Producer::FrameSink {
public:
    struct Delivered {
        Orvan::Producer::FrameInfo info;
        std::vector<uint8_t> data; // the filled part
    };

    FakeSink(size_t buffers, size_t bufferSize)
        : storage_(buffers, std::vector<uint8_t>(bufferSize)) {
        for (auto& buffer : storage_)
            queue_.push_back(buffer.data());
    }

    bool AcquireBuffer(Orvan::Producer::FillSlot& slot) override {
        std::lock_guard<std::mutex> lock(mutex_);
        if (queue_.empty())
            return false;
        slot.data = queue_.front();
        slot.size = storage_.front().size();
        queue_.pop_front();
        return true;
    }
    void Deliver(const Orvan::Producer::FillSlot& slot,
                 const Orvan::Producer::FrameInfo& info) override {
        std::lock_guard<std::mutex> lock(mutex_);
        delivered_.push_back({info, {slot.data, slot.data + info.sizeFilled}});
        queue_.push_back(slot.data); // the application requeues at once
        changed_.notify_all();
    }
    void Return(const Orvan::Producer::FillSlot& slot) override {
        std::lock_guard<std::mutex> lock(mutex_);
        ++returned_;
        queue_.push_front(slot.data);
    }
    void SignalLeader() override {
        std::lock_guard<std::mutex> lock(mutex_);
        ++leaders_;
    }
    void CountLostFrame() override {
        std::lock_guard<std::mutex> lock(mutex_);
        ++lost_;
    }
    void DeliverStreamEvent(int32_t, const void*, size_t) override {}

    // Keeps the next `count` frames without a buffer.
    void Starve(size_t count) {
        std::lock_guard<std::mutex> lock(mutex_);
        for (; count > 0 && !queue_.empty(); --count) {
            held_.push_back(queue_.front());
            queue_.pop_front();
        }
    }
    void Feed() {
        std::lock_guard<std::mutex> lock(mutex_);
        queue_.insert(queue_.end(), held_.begin(), held_.end());
        held_.clear();
    }

    template <class Rep, class Period>
    bool WaitFor(size_t frames, std::chrono::duration<Rep, Period> timeout) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, [&] { return delivered_.size() >= frames; });
    }
    std::vector<Delivered> Frames() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return delivered_;
    }
    size_t Returned() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return returned_;
    }
    size_t Lost() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return lost_;
    }
    size_t Leaders() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return leaders_;
    }
    size_t Queued() const {
        std::lock_guard<std::mutex> lock(mutex_);
        return queue_.size() + held_.size();
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::vector<uint8_t>> storage_;
    std::deque<uint8_t*> queue_;
    std::vector<uint8_t*> held_;
    std::vector<Delivered> delivered_;
    size_t returned_ = 0;
    size_t lost_ = 0;
    size_t leaders_ = 0;
};

} // namespace GvspTest

#endif
