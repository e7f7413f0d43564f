// Opens the producer on fake cameras down to a data stream, with typed helpers for the info
// queries and the buffer-accounting check every lifecycle test ends with.
#ifndef ORVAN_TESTS_GENTL_PRODUCERFIXTURE_H
#define ORVAN_TESTS_GENTL_PRODUCERFIXTURE_H

#include "FakeCamera.h"

#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>
#include <GenTL/OrvanTestControl.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

// Reads an info value of type T through any GenTL info function: fn(args..., type, buffer, size).
template <typename T, typename Fn, typename... Args>
T InfoAs(Fn fn, Args... args) {
    T value{};
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
    size_t size = sizeof(T);
    EXPECT_EQ(fn(args..., &type, &value, &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(size, sizeof(T));
    return value;
}

template <typename Fn, typename... Args>
std::string InfoText(Fn fn, Args... args) {
    size_t size = 0;
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
    EXPECT_EQ(fn(args..., &type, nullptr, &size), GenTL::GC_ERR_SUCCESS);
    std::string text(size, '\0');
    EXPECT_EQ(fn(args..., &type, text.data(), &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(type, GenTL::INFO_DATATYPE_STRING);
    text.resize(size ? size - 1 : 0);
    return text;
}

std::string ProducerErrorText();
std::string ReadDescription(GenTL::PORT_HANDLE port);

class ProducerFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Fake cameras for the next open; call before Open.
    void UseCameras(uint32_t count, const FakeCamera::Options& options, uint32_t interfaces = 1);
    // GCInitLib, TLOpen, first interface, device list, first device and its first stream.
    void Open(GenTL::DEVICE_ACCESS_FLAGS access = GenTL::DEVICE_ACCESS_CONTROL);
    void OpenStream(uint32_t index = 0);

    FakeCamera& Camera(size_t index = 0) { return *m_cameras.at(index); }

    std::vector<GenTL::BUFFER_HANDLE> AllocBuffers(size_t count, size_t size = 0);
    void QueueAll(const std::vector<GenTL::BUFFER_HANDLE>& buffers);
    bool BufferFlag(GenTL::BUFFER_HANDLE buffer, GenTL::BUFFER_INFO_CMD cmd);
    uint64_t BufferValue(GenTL::BUFFER_HANDLE buffer, GenTL::BUFFER_INFO_CMD cmd);
    size_t StreamCount(GenTL::STREAM_INFO_CMD cmd);

    void Start(uint64_t frames = GENTL_INFINITE);
    void Stop();
    // Takes one delivered buffer; fails the test on anything but success.
    GenTL::BUFFER_HANDLE Take(uint64_t timeoutMs = 2000);
    // On a stopped stream: every announced buffer is in exactly one place (input pool, output
    // queue, or outside all queues), the ones the test holds are outside, and the counts agree.
    void ExpectAccounted();

    GenTL::TL_HANDLE m_system = nullptr;
    GenTL::IF_HANDLE m_interface = nullptr;
    GenTL::DEV_HANDLE m_device = nullptr;
    GenTL::DS_HANDLE m_stream = nullptr;
    GenTL::EVENT_HANDLE m_newBuffer = nullptr;
    std::string m_deviceId;
    std::set<GenTL::BUFFER_HANDLE> m_held; // delivered and not yet requeued
    std::vector<FakeCamera*> m_cameras;
};

// The producer opened down to the first camera's stream, with its new-buffer event.
class StreamFixture : public ProducerFixture {
protected:
    void SetUp() override {
        ProducerFixture::SetUp();
        Open();
        OpenStream();
    }
};

} // namespace Producer
} // namespace Orvan

#endif
