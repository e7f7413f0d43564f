// libFuzzer target: the input is a delivered buffer. The first byte picks the adapter (GigE
// Vision, USB3 Vision, or the generic one with a chunk list derived from the input and kept
// inside the buffer, as the transport layer guarantees); the rest is attached. Accepted
// buffers have every chunk feature read, then the buffer is moved, detached and the caches
// cleared, reading again each time. Only the invalid-layout RuntimeException may leave an
// attach; reads may fail with GenICam exceptions; anything else, a crash or a sanitizer report
// is a finding.
#include "FuzzNodeMap.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

// Chunk ports of every kind a description uses: cached and not, registers whose address or
// length come from the chunk itself, and a chunk image read as a raw register.
const char kDescription[] = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Fuzz" VendorName="Test" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="" ProductGuid="" VersionGuid=""
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Port Name="ImagePort"><ChunkID>00000001</ChunkID></Port>
  <Port Name="CountPort"><ChunkID>0x2</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>
  <Port Name="TextPort"><ChunkID>3</ChunkID></Port>
  <Port Name="BigPort"><ChunkID>FFFFFFFF</ChunkID><CacheChunkData>Yes</CacheChunkData></Port>
  <IntReg Name="Stride"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>ImagePort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <MaskedIntReg Name="Width"><Address>4</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>ImagePort</pPort><LSB>16</LSB><MSB>31</MSB><Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess></MaskedIntReg>
  <IntReg Name="Count"><Address>0</Address><Length>8</Length><AccessMode>RO</AccessMode>
    <pPort>CountPort</pPort><Sign>Signed</Sign><Endianess>BigEndian</Endianess></IntReg>
  <IntReg Name="TextLength"><Address>0</Address><Length>2</Length><AccessMode>RO</AccessMode>
    <pPort>TextPort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <StringReg Name="Text"><Address>2</Address><pLength>TextLength</pLength>
    <AccessMode>RO</AccessMode><pPort>TextPort</pPort></StringReg>
  <IntReg Name="Indirect"><pAddress>TextLength</pAddress><Length>4</Length>
    <AccessMode>RO</AccessMode><pPort>BigPort</pPort><Sign>Unsigned</Sign>
    <Endianess>LittleEndian</Endianess></IntReg>
  <Register Name="Raw"><Address>0</Address><Length>16</Length><AccessMode>RO</AccessMode>
    <pPort>BigPort</pPort></Register>
  <FloatReg Name="Exposure"><Address>8</Address><Length>8</Length><AccessMode>RO</AccessMode>
    <pPort>ImagePort</pPort><Endianess>LittleEndian</Endianess></FloatReg>
</RegisterDescription>
)";

GenApi::INodeMap& Map() {
    static GenApi::INodeMap* map = FuzzSupport::LoadMap(kDescription);
    return *map;
}

// Up to eight chunks, each from 6 input bytes: ID selector, offset and length within the
// buffer.
std::vector<GenApi::SingleChunkData_t> ChunkList(const uint8_t* data, size_t size) {
    std::vector<GenApi::SingleChunkData_t> chunks;
    static const uint64_t kIds[] = {1, 2, 3, 0xFFFFFFFF, 4};
    for (size_t i = 0; i + 6 <= size && chunks.size() < 8; i += 6) {
        size_t offset = (data[i + 1] | data[i + 2] << 8) % size;
        size_t length = (data[i + 3] | data[i + 4] << 8) % (size - offset + 1);
        chunks.push_back({kIds[data[i] % 5], static_cast<ptrdiff_t>(offset), length});
    }
    return chunks;
}

void Exercise(GenApi::CChunkAdapter& adapter, std::vector<uint8_t>& buffer) {
    GenApi::INodeMap& map = Map();
    FuzzSupport::ReadEverything(map);
    std::vector<uint8_t> moved(buffer);
    adapter.UpdateBuffer(moved.data());
    FuzzSupport::ReadEverything(map);
    adapter.DetachBuffer();
    FuzzSupport::ReadEverything(map);
    adapter.ClearCaches();
    FuzzSupport::ReadEverything(map);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    std::vector<uint8_t> buffer(data + 1, data + size);
    FuzzSupport::OnlyGenICamExceptions([&] {
        GenApi::INodeMap& map = Map();
        GenApi::AttachStatistics_t statistics{};
        std::unique_ptr<GenApi::CChunkAdapter> adapter;
        switch (data[0] % 3) {
        case 0:
            adapter = std::make_unique<GenApi::CChunkAdapterGEV>(&map, data[0] & 0x80 ? 4 : -1);
            break;
        case 1:
            adapter = std::make_unique<GenApi::CChunkAdapterU3V>(&map);
            break;
        default: {
            auto generic = std::make_unique<GenApi::CChunkAdapterGeneric>(&map);
            auto chunks = ChunkList(buffer.data(), buffer.size());
            if (!buffer.empty()) {
                generic->AttachBuffer(buffer.data(), chunks.data(),
                                      static_cast<int64_t>(chunks.size()), &statistics);
                Exercise(*generic, buffer);
            }
            return;
        }
        }
        bool valid = adapter->CheckBufferLayout(buffer.data(), static_cast<int64_t>(buffer.size()));
        try {
            adapter->AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()), &statistics);
        } catch (const GenICam::RuntimeException&) {
            if (valid)
                std::abort(); // the check and the attach disagree
            return;
        }
        if (!valid || statistics.NumAttachedChunks > statistics.NumChunks)
            std::abort();
        Exercise(*adapter, buffer);
    });
    return 0;
}
