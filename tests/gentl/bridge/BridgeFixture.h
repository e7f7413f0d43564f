// The SDK opened on this project's producer with other producers loaded from the test folders
// (see ../producer/CMakeLists.txt), and no virtual or network camera of its own in the way.
#ifndef ORVAN_TESTS_GENTL_BRIDGE_BRIDGEFIXTURE_H
#define ORVAN_TESTS_GENTL_BRIDGE_BRIDGEFIXTURE_H

#include <GenTL/OrvanTestControl.h>
#include <Orvan/GenApiCustom.h>
#include <Orvan/OrvanApi.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>
#include <vector>

namespace BridgeTest {

inline std::string Folder(const std::string& name) {
    return std::string(ORVAN_TEST_PRODUCER_DIR) + "/" + name;
}

// The test producer's switch, reached in the copy the producer loaded.
inline void FailNext(const char* function, GenTL::GC_ERROR code, const char* text) {
    void* library = dlopen((Folder("good") + "/TestProducer.cti").c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr);
    auto failNext = reinterpret_cast<void (*)(const char*, GenTL::GC_ERROR, const char*)>(
        dlsym(library, "TP_FailNext"));
    ASSERT_NE(failNext, nullptr);
    failNext(function, code, text);
    dlclose(library);
}

class BridgeFixture : public ::testing::Test {
protected:
    // folders: colon-separated, relative to the test producer folder.
    void Open(const std::string& folders, std::vector<const char*> ownCameras = {}) {
        OrvanTC_SetVirtualCameras(ownCameras.data(), static_cast<uint32_t>(ownCameras.size()), 1);
        std::string path;
        for (size_t start = 0; start <= folders.size();) {
            size_t end = folders.find(':', start);
            end = end == std::string::npos ? folders.size() : end;
            path += (path.empty() ? "" : ":") + Folder(folders.substr(start, end - start));
            start = end + 1;
        }
        OrvanTC_SetGenTLProducers(path.c_str());
        system = Orvan::OpenSystem();
        system->UpdateDevices(200);
    }

    void TearDown() override {
        for (Orvan::IDevice* device : opened)
            system->DestroyDevice(device);
        if (system)
            Orvan::CloseSystem(system);
        OrvanTC_Reset();
    }

    // The cameras found on interfaces whose id starts with prefix.
    std::vector<Orvan::DeviceInfo> CamerasOf(const std::string& prefix) {
        std::vector<Orvan::DeviceInfo> found;
        for (const Orvan::DeviceInfo& info : system->GetDevices())
            if (std::string(info.InterfaceId().c_str()).rfind(prefix, 0) == 0)
                found.push_back(info);
        return found;
    }

    Orvan::IDevice* OpenCamera(const std::string& prefix, size_t index = 0) {
        std::vector<Orvan::DeviceInfo> cameras = CamerasOf(prefix);
        if (cameras.size() <= index)
            throw std::runtime_error("no camera " + std::to_string(index) + " behind " + prefix);
        opened.push_back(system->CreateDevice(cameras[index]));
        return opened.back();
    }

    Orvan::ISystem* system = nullptr;
    std::vector<Orvan::IDevice*> opened;
};

} // namespace BridgeTest

#endif
