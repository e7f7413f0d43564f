// Reads the chunk data that the camera appends to each image, and checks each image's CRC.
//
// With ChunkModeActive the camera sends, after the pixels, small tagged blocks such as the frame
// number, the exposure time and a CRC-32 of the image. ChunkSelector and ChunkEnable choose which
// ones. The SDK parses them for every delivered image: they read as nodes named "Chunk..." of the
// image's chunk view, and VerifyCRC compares the CRC chunk with the CRC of the data received.
#include <Orvan/OrvanApi.h>

#include <cstdio>
#include <iostream>

int main() {
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    try {
        system = Orvan::OpenSystem();
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (devices.empty())
            throw GENERIC_EXCEPTION("no camera found");
        device = system->CreateDevice(devices.front());

        // Chunk settings are locked while streaming: set them first.
        GenApi::INodeMap* nodeMap = device->GetNodeMap();
        Orvan::SetNodeValue<bool>(nodeMap, "ChunkModeActive", true);
        for (const char* chunk : {"CRC", "FrameID", "ExposureTime", "Timestamp"}) {
            Orvan::SetNodeValue<GenICam::gcstring>(nodeMap, "ChunkSelector", chunk);
            Orvan::SetNodeValue<bool>(nodeMap, "ChunkEnable", true);
        }

        int verified = 0;
        device->StartStream();
        for (int i = 0; i < 5; ++i) {
            Orvan::IImage* image = device->GetImage(2000);
            // Null when the image carries no chunk data.
            Orvan::IChunkData* chunks = image->AsChunkData();
            if (chunks != nullptr) {
                GenApi::CIntegerPtr crc = chunks->GetChunk("ChunkCRC");
                GenApi::CIntegerPtr frame = chunks->GetChunk("ChunkFrameID");
                GenApi::CFloatPtr exposure = chunks->GetChunk("ChunkExposureTime");
                const bool intact = image->VerifyCRC();
                verified += intact ? 1 : 0;
                std::printf("Image %llu: CRC 0x%08llX %s, exposure %.0f us\n",
                            static_cast<unsigned long long>(frame->GetValue()),
                            static_cast<unsigned long long>(crc->GetValue()),
                            intact ? "verified" : "WRONG", exposure->GetValue());
            }
            device->RequeueBuffer(image);
        }
        device->StopStream();

        std::cout << verified << " of 5 CRCs verified\n";
        system->DestroyDevice(device);
        Orvan::CloseSystem(system);
        return verified == 5 ? 0 : 1;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
