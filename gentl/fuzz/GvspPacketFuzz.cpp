// The GVSP decoder on the whole input, then the input cut into datagrams and fed to the
// reassembly in batches, with buffers sometimes missing and time moving on. The sink aborts on
// any misuse of its buffers: one handed back twice, never handed out, or kept after Abort.
#include "gige/GvspAssembler.h"
#include "gige/GvspPacket.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

using namespace Orvan::Producer;

constexpr size_t kBuffers = 3;

class CheckingSink : public FrameSink {
public:
    CheckingSink(size_t bufferSize, uint8_t refusals)
        : storage_(kBuffers, std::vector<uint8_t>(bufferSize)), refusals_(refusals) {}

    bool AcquireBuffer(FillSlot& slot) override {
        refusals_ = static_cast<uint8_t>(refusals_ >> 1 | refusals_ << 7);
        if (refusals_ & 1)
            return false;
        for (size_t i = 0; i < kBuffers; ++i) {
            if (!out_[i]) {
                out_[i] = true;
                slot.data = storage_[i].data();
                slot.size = storage_[i].size();
                slot.token = reinterpret_cast<void*>(i);
                return true;
            }
        }
        return false;
    }
    void Deliver(const FillSlot& slot, const FrameInfo& info) override {
        if (info.sizeFilled > slot.size)
            std::abort();
        Back(slot);
    }
    void Return(const FillSlot& slot) override { Back(slot); }
    void SignalLeader() override {}
    void CountLostFrame() override {}
    void DeliverStreamEvent(int32_t, const void*, size_t) override {}

    bool AllBack() const {
        return std::none_of(out_, out_ + kBuffers, [](bool b) { return b; });
    }

private:
    void Back(const FillSlot& slot) {
        const size_t i = reinterpret_cast<size_t>(slot.token);
        if (i >= kBuffers || !out_[i] || slot.data != storage_[i].data())
            std::abort();
        out_[i] = false;
    }

    std::vector<std::vector<uint8_t>> storage_;
    bool out_[kBuffers] = {};
    uint8_t refusals_;
};

struct Reader {
    const uint8_t* data;
    size_t size;
    size_t Take(size_t want) {
        const size_t n = std::min(want, size);
        data += n;
        size -= n;
        return n;
    }
    uint8_t Byte() {
        const uint8_t value = size > 0 ? *data : 0;
        Take(1);
        return value;
    }
};

void FeedAssembler(Reader in) {
    const uint8_t mode = in.Byte();
    GvspAssembler::Options options;
    options.extendedIds = (mode & 1) != 0;
    options.packetSize = 64 + 40 * (mode >> 4); // small packets make many ids per buffer
    options.batchSize = 1 + (mode >> 1 & 7);
    options.maxFramesInFlight = 1 + (mode >> 1 & 3);
    CheckingSink sink(256 + 128 * (in.Byte() & 15), in.Byte());
    ResendSettings resend;
    resend.requestDelayUs = 10;
    resend.retryTimeoutUs = 20;
    resend.frameTimeoutUs = 500;
    uint64_t requests = 0;
    {
        GvspAssembler assembler(sink, options, resend,
                                [&](uint64_t, uint32_t first, uint32_t last) {
                                    if (first > last)
                                        std::abort();
                                    ++requests;
                                });
        uint64_t now = 0;
        while (in.size > 0) {
            GvspAssembler::Slot* slots = assembler.PrepareBatch();
            const size_t count = 1 + in.Byte() % assembler.BatchSize();
            for (size_t i = 0; i < count; ++i) {
                const size_t length = in.Byte();
                const uint8_t* bytes = in.data;
                const size_t got = in.Take(length);
                const size_t head = std::min(got, assembler.HeaderSize());
                const size_t body = std::min(got - head, slots[i].bodyCapacity);
                std::memcpy(slots[i].header, bytes, head);
                std::memcpy(slots[i].body, bytes + head, body);
                slots[i].length = head + body;
                slots[i].truncated = head + body < got;
            }
            assembler.ProcessBatch(count, now);
            now += in.Byte() * 4;
            assembler.Poll(now);
        }
        assembler.Abort();
    }
    if (!sink.AllBack())
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const auto packet = ParseGvspPacket(data, size)) {
        if (packet->dataSize > size || packet->header.size > size)
            std::abort();
    }
    FeedAssembler(Reader{data, size});
    return 0;
}
