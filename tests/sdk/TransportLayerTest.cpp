#include "SpineTestSupport.h"
#include "core/GetInfo.h"
#include "core/TLDataStream.h"
#include "core/TLDevice.h"
#include "core/TLInterface.h"
#include "core/TLSystem.h"

#include <GenTL/GenTLExtensions.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using SpineTest::Capture;
using SpineTest::Outcome;

namespace {

// The producer opened down to the first camera's data stream through the wrappers alone.
class TransportLayer : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(GenTL::GCInitLib(), GenTL::GC_ERR_SUCCESS);
        ASSERT_EQ(system.Open(), GenTL::GC_ERR_SUCCESS);
        ASSERT_EQ(system.OpenInterface("VirtualIF0", &interfaceHandle), GenTL::GC_ERR_SUCCESS);
        iface = std::make_unique<Orvan::TLInterface>(interfaceHandle);
        bool changed = false;
        ASSERT_EQ(iface->UpdateDeviceList(&changed, 100), GenTL::GC_ERR_SUCCESS);
        char id[128] = {};
        size_t size = sizeof(id);
        ASSERT_EQ(iface->GetDeviceID(0, id, &size), GenTL::GC_ERR_SUCCESS);
        deviceId = id;
    }
    void TearDown() override {
        OrvanTC_Reset();
        if (iface)
            iface->Close();
        system.Close();
        GenTL::GCCloseLib();
    }

    void ExpectFailure(const std::function<void()>& call, const std::string& className,
                       const std::string& message) {
        Outcome outcome = Capture(call);
        EXPECT_EQ(outcome.className, className);
        EXPECT_EQ(outcome.message, message);
    }

    Orvan::TLSystem system;
    void* interfaceHandle = nullptr;
    std::unique_ptr<Orvan::TLInterface> iface;
    std::string deviceId;
};

} // namespace

TEST_F(TransportLayer, DeletingAWrapperLeavesItsHandleOpen) {
    iface.reset();
    Orvan::TLInterface again(interfaceHandle);
    uint32_t devices = 0;
    EXPECT_EQ(again.GetNumDevices(&devices), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(devices, 1u);
    EXPECT_EQ(again.Close(), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(again.GetNumDevices(&devices), GenTL::GC_ERR_INVALID_HANDLE);
}

TEST_F(TransportLayer, ReadersCheckTheirArgumentsBeforeAnyCall) {
    Orvan::TLDataStream stream(reinterpret_cast<void*>(1));
    int buffer = 0;
    const char* id = deviceId.c_str();
    ExpectFailure(
        [&] {
            Orvan::GetInfo<uint64_t>(static_cast<Orvan::TLDataStream*>(nullptr), &buffer,
                                     GenTL::BUFFER_INFO_SIZE);
        },
        "InvalidArgumentException",
        "InvalidArgumentException: DataStream is null (Buffer, GetInfo)");
    ExpectFailure([&] { Orvan::GetInfo<bool>(&stream, nullptr, GenTL::BUFFER_INFO_IS_INCOMPLETE); },
                  "InvalidArgumentException",
                  "InvalidArgumentException: Buffer is null (Buffer, GetInfo)");
    ExpectFailure(
        [&] {
            Orvan::GetInfo<uint32_t>(static_cast<Orvan::TLInterface*>(nullptr), id,
                                     GenTL::DEVICE_INFO_ORVAN_GEV_IP_ADDRESS);
        },
        "InvalidArgumentException",
        "InvalidArgumentException: Interface is null (System, GetInfo)");
    ExpectFailure(
        [&] {
            Orvan::GetInfo<bool>(iface.get(), nullptr, GenTL::DEVICE_INFO_ORVAN_GEV_LLA_ENABLED);
        },
        "InvalidArgumentException", "InvalidArgumentException: pDevId is null (System, GetInfo)");
    ExpectFailure(
        [&] {
            Orvan::GetInfo<uint64_t>(static_cast<Orvan::TLInterface*>(nullptr),
                                     GenTL::INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS);
        },
        "InvalidArgumentException",
        "InvalidArgumentException: Interface is null (System, GetInfo)");
}

TEST_F(TransportLayer, ReadersReturnTypedValuesOrTranslateFailures) {
    const char* id = deviceId.c_str();
    EXPECT_EQ(Orvan::GetInfo<uint32_t>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_SUBNET_MASK),
              0xFFFF0000u);
    EXPECT_TRUE(Orvan::GetInfo<bool>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_LLA_ENABLED));
    EXPECT_EQ(Orvan::GetInfo<int64_t>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS) >>
                  24,
              0x024F56);
    EXPECT_EQ(Orvan::GetInfo<uint64_t>(iface.get(), GenTL::INTERFACE_INFO_ORVAN_GEV_IP_ADDRESS),
              0x7F000001u);
    EXPECT_EQ(Orvan::GetInfoString(iface.get(), id, GenTL::DEVICE_INFO_VENDOR), "Orvan");

    ExpectFailure([&] { Orvan::GetInfoString(iface.get(), id, GenTL::DEVICE_INFO_ACCESS_STATUS); },
                  "LogicalErrorException",
                  "LogicalErrorException: Incorrect datatype returned (string expected) (System, "
                  "GetInfoString)");

    struct Row {
        const char* call;
        int32_t code;
        std::function<void()> read;
        const char* expected;
    };
    const Row rows[] = {
        {"IFGetDeviceInfo", GenTL::GC_ERR_NOT_AVAILABLE,
         [&] {
             Orvan::GetInfo<uint32_t>(iface.get(), id, GenTL::DEVICE_INFO_ORVAN_GEV_IP_ADDRESS);
         },
         "LogicalErrorException (GC_ERR_NOT_AVAILABLE): Unable to get buffer information (System, "
         "GetInfo; GenTL::IFGetDeviceInfo); injected"},
        {"IFGetInfo", GenTL::GC_ERR_INVALID_HANDLE,
         [&] { Orvan::GetInfo<int64_t>(iface.get(), GenTL::INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS); },
         "InvalidArgumentException (GC_ERR_INVALID_HANDLE): Unable to get buffer information "
         "(System, GetInfo; GenTL::IFGetInfo); injected"},
        {"IFGetDeviceInfo", GenTL::GC_ERR_BUFFER_TOO_SMALL,
         [&] { Orvan::GetInfoString(iface.get(), id, GenTL::DEVICE_INFO_MODEL); },
         "InvalidArgumentException (GC_ERR_BUFFER_TOO_SMALL): Unable to get device information "
         "(System, GetInfoString; GenTL::IFGetDeviceInfo); injected"},
    };
    for (const Row& row : rows) {
        OrvanTC_FailCall(row.call, 1, row.code, "injected");
        Outcome outcome = Capture(row.read);
        EXPECT_EQ(outcome.message, row.expected);
    }
}

TEST_F(TransportLayer, BufferReadersWorkOnAnnouncedBuffers) {
    void* deviceHandle = nullptr;
    ASSERT_EQ(iface->OpenDevice(deviceId.c_str(), GenTL::DEVICE_ACCESS_CONTROL, &deviceHandle),
              GenTL::GC_ERR_SUCCESS);
    Orvan::TLDevice device(deviceHandle);
    char streamId[128] = {};
    size_t size = sizeof(streamId);
    ASSERT_EQ(device.GetDataStreamID(0, streamId, &size), GenTL::GC_ERR_SUCCESS);
    void* streamHandle = nullptr;
    ASSERT_EQ(device.OpenDataStream(streamId, &streamHandle), GenTL::GC_ERR_SUCCESS);
    Orvan::TLDataStream stream(streamHandle);
    void* buffer = nullptr;
    ASSERT_EQ(stream.AllocAndAnnounceBuffer(4096, nullptr, &buffer), GenTL::GC_ERR_SUCCESS);

    EXPECT_EQ(Orvan::GetInfo<uint64_t>(&stream, buffer, GenTL::BUFFER_INFO_SIZE), 4096u);
    EXPECT_NE(Orvan::GetInfo<uint8_t*>(&stream, buffer, GenTL::BUFFER_INFO_BASE), nullptr);
    OrvanTC_FailCall("DSGetBufferInfo", 1, GenTL::GC_ERR_INVALID_BUFFER, "gone");
    ExpectFailure([&] { Orvan::GetInfo<uint64_t>(&stream, buffer, GenTL::BUFFER_INFO_SIZE); },
                  "InvalidArgumentException",
                  "InvalidArgumentException (GC_ERR_INVALID_BUFFER): Unable to get buffer "
                  "information (Buffer, GetInfo; GenTL::DSGetBufferInfo); gone");

    EXPECT_EQ(stream.RevokeBuffer(buffer, nullptr, nullptr), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(stream.Close(), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(device.Close(), GenTL::GC_ERR_SUCCESS);
}
