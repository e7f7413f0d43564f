// Feeds the image receiver datagrams cut from the fuzzer's bytes. The first byte says whether
// running out of datagrams reads as a deliberate close or as a failing receive; after it, each
// datagram is a 16-bit little-endian length followed by that many bytes (fewer at the end).
// Announced image sizes are folded below 1 MiB: a real receiver allocates whatever the metadata
// announces, and gigabyte allocations would only slow the search down.
#include "net/ImageReception.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

class FuzzedDatagrams : public Orvan::DatagramSource {
public:
    FuzzedDatagrams(const uint8_t* data, size_t size) : m_data(data), m_end(data + size) {
        if (m_data < m_end)
            m_closeAtEnd = (*m_data++ & 1) != 0;
    }

    long Receive(uint8_t* buffer, size_t capacity, bool wholeLength) override {
        if (m_end - m_data < 2) {
            m_exhausted = true;
            errno = EBADF;
            return m_closeAtEnd ? 0 : -1;
        }
        size_t length = m_data[0] | (static_cast<size_t>(m_data[1]) << 8);
        m_data += 2;
        length = std::min(length, static_cast<size_t>(m_end - m_data));
        const size_t copied = std::min(length, capacity);
        std::memcpy(buffer, m_data, copied);
        m_data += length;
        if (wholeLength && copied == Orvan::kMetadataBytes)
            FoldAnnouncedSize(buffer);
        return static_cast<long>(wholeLength ? length : copied);
    }

    bool Closed() const override { return m_exhausted && m_closeAtEnd; }
    bool Exhausted() const { return m_exhausted; }

private:
    static void FoldAnnouncedSize(uint8_t* metadata) {
        uint32_t announced;
        std::memcpy(&announced, metadata + 8, 4);
        announced %= kMaxAnnouncedBytes;
        std::memcpy(metadata + 8, &announced, 4);
    }

    static constexpr uint32_t kMaxAnnouncedBytes = 1u << 20;
    const uint8_t* m_data;
    const uint8_t* m_end;
    bool m_closeAtEnd = false;
    bool m_exhausted = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDatagrams source(data, size);
    while (!source.Exhausted()) {
        Orvan::ImageReception image = Orvan::ReceiveImageDatagrams(source);
        if (image.outcome != Orvan::ImageReception::Outcome::Image)
            continue;
        // A whole image cannot hold more bytes than the input carried, and every announced byte
        // must lie inside the data area (the sanitizer checks each read).
        if (image.size > size || image.data == nullptr)
            std::abort();
        volatile uint8_t sink = 0;
        for (uint32_t i = 0; i < image.size; ++i)
            sink = sink ^ image.data[i];
    }
    return 0;
}
