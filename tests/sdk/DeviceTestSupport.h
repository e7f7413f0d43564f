// Opens the SDK on chosen virtual cameras and checks delivered images against the pictures the
// cameras draw.
#ifndef ORVAN_TESTS_SDK_DEVICETESTSUPPORT_H
#define ORVAN_TESTS_SDK_DEVICETESTSUPPORT_H

#include "SpineTestSupport.h"

#include <Orvan/IDevice.h>
#include <Orvan/OrvanApi.h>
#include <gtest/gtest.h>
#include <virtual/TestPattern.h>

#include <cstdint>
#include <vector>

namespace DeviceTest {

class DeviceFixture : public ::testing::Test {
protected:
    void Open(const std::vector<const char*>& models, uint32_t interfaces = 1) {
        OrvanTC_SetVirtualCameras(models.data(), static_cast<uint32_t>(models.size()), interfaces);
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        devices = system->GetDevices();
        ASSERT_EQ(devices.size(), models.size());
    }

    // Opens the camera and makes its frames small and fast: hundreds take milliseconds.
    Orvan::IDevice* Create(size_t index = 0) {
        Orvan::IDevice* opened = system->CreateDevice(devices.at(index));
        owned.push_back(opened);
        GenApi::INodeMap* nodeMap = opened->GetNodeMap();
        Orvan::SetNodeValue<int64_t>(nodeMap, "Width", 64);
        Orvan::SetNodeValue<int64_t>(nodeMap, "Height", 32);
        Orvan::SetNodeValue<double>(nodeMap, "ExposureTime", 100.0);
        return opened;
    }

    void Destroy(Orvan::IDevice* device) {
        owned.erase(std::remove(owned.begin(), owned.end(), device), owned.end());
        system->DestroyDevice(device);
    }

    void TearDown() override {
        for (Orvan::IDevice* device : owned)
            system->DestroyDevice(device);
        if (system)
            Orvan::CloseSystem(system);
        OrvanTC_Reset();
    }

    // The producer streams until stopped whatever count the start names; the camera itself
    // can be told to send exactly `count` frames.
    static void LimitFrames(Orvan::IDevice* device, int64_t count) {
        Orvan::SetNodeValue<GenICam::gcstring>(device->GetNodeMap(), "AcquisitionMode",
                                               "MultiFrame");
        Orvan::SetNodeValue<int64_t>(device->GetNodeMap(), "AcquisitionFrameCount", count);
    }

    static int64_t Integer(GenApi::INodeMap* nodeMap, const char* name) {
        return Orvan::GetNodeValue<int64_t>(nodeMap, name);
    }

    static int64_t Announced(Orvan::IDevice* device, int stream = 0) {
        return Integer(device->GetTLStreamNodeMap(stream), "StreamAnnouncedBufferCount");
    }

    Orvan::ISystem* system = nullptr;
    std::vector<Orvan::DeviceInfo> devices;
    std::vector<Orvan::IDevice*> owned;
};

// The frame number the camera stamped into the image, or 0 when the picture around it is not
// exactly the camera's picture of that frame.
inline uint64_t IntactFrame(Orvan::IImage* image) {
    const size_t size = image->GetWidth() * image->GetHeight() * image->GetBitsPerPixel() / 8;
    const uint8_t* data = image->GetData();
    const uint64_t frame = Orvan::Producer::ReadFrameStamp(data, size);
    const bool intact = Orvan::Producer::MatchesTestPattern(
        static_cast<uint32_t>(image->GetPixelFormat()), static_cast<uint32_t>(image->GetWidth()),
        static_cast<uint32_t>(image->GetHeight()), Orvan::Producer::PatternKind::MovingDiagonal,
        frame, data, size);
    return intact ? frame : 0;
}

} // namespace DeviceTest

#endif
