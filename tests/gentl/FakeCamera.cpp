#include "FakeCamera.h"

#include <cstring>

namespace Orvan {
namespace Producer {

namespace {

constexpr uint64_t kDescriptionAddress = 0x10000;
constexpr size_t kRegisterBytes = 0x1000;

void PutBigEndian32(uint8_t* bytes, uint32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

uint64_t NowNs() {
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                     std::chrono::steady_clock::now().time_since_epoch())
                                     .count());
}

const char kDescription[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<RegisterDescription ModelName=\"Fake\" VendorName=\"Test\" StandardNameSpace=\"None\" "
    "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
    "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
    "ProductGuid=\"00000000-0000-0000-0000-000000000001\" "
    "VersionGuid=\"00000000-0000-0000-0000-000000000002\" "
    "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
    "  <Category Name=\"Root\"><pFeature>Scratch</pFeature></Category>\n"
    "  <Integer Name=\"Scratch\"><pValue>ScratchReg</pValue></Integer>\n"
    "  <IntReg Name=\"ScratchReg\"><Address>0x100</Address><Length>4</Length>"
    "<AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
    "<Endianess>BigEndian</Endianess></IntReg>\n"
    "  <Port Name=\"Device\"/>\n"
    "</RegisterDescription>\n";

} // namespace

FakeCamera::FakeCamera(uint32_t index, const Options& options)
    : m_options(options), m_registers(kRegisterBytes, 0), m_description(kDescription) {
    m_identity.id = "Fake" + std::to_string(index);
    m_identity.vendor = "Test";
    m_identity.model = "FakeCamera";
    m_identity.serialNumber = "SN" + std::to_string(1000 + index);
    m_identity.version = "1.0";
    m_identity.userDefinedName = "fake" + std::to_string(index);
    m_identity.mac = 0x020000000100ull + index;
    m_identity.ip = 0x7F000100u + index;
    m_identity.subnet = 0xFF000000u;
    m_identity.gateway = 0x7F000001u;
    m_pattern.resize(ImageBytes());
    for (size_t i = 0; i < m_pattern.size(); ++i)
        m_pattern[i] = static_cast<uint8_t>(i * 7);
    for (uint32_t i = 0; i < options.streams; ++i)
        m_workers.push_back(std::make_unique<Worker>());
}

FakeCamera::~FakeCamera() {
    for (uint32_t i = 0; i < m_workers.size(); ++i)
        StopStream(i);
}

GenTL::GC_ERROR FakeCamera::ReadPort(uint64_t address, void* data, size_t* size) {
    if (!IsConnected())
        return GenTL::GC_ERR_IO;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (address >= kDescriptionAddress &&
        address - kDescriptionAddress + *size <= m_description.size()) {
        std::memcpy(data, m_description.data() + (address - kDescriptionAddress), *size);
        return GenTL::GC_ERR_SUCCESS;
    }
    if (address + *size > m_registers.size())
        return GenTL::GC_ERR_INVALID_ADDRESS;
    std::memcpy(data, m_registers.data() + address, *size);
    return GenTL::GC_ERR_SUCCESS;
}

GenTL::GC_ERROR FakeCamera::WritePort(uint64_t address, const void* data, size_t* size) {
    if (!IsConnected())
        return GenTL::GC_ERR_IO;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (address + *size > m_registers.size())
        return GenTL::GC_ERR_INVALID_ADDRESS;
    std::memcpy(m_registers.data() + address, data, *size);
    return GenTL::GC_ERR_SUCCESS;
}

std::string FakeCamera::DescriptionUrl() const {
    char url[64];
    std::snprintf(url, sizeof(url), "local:FakeCamera.xml;%llX;%zX",
                  static_cast<unsigned long long>(kDescriptionAddress), m_description.size());
    return url;
}

void FakeCamera::DescriptionVersions(int32_t& schemaMajor, int32_t& schemaMinor, int32_t& fileMajor,
                                     int32_t& fileMinor, int32_t& fileSubminor) const {
    schemaMajor = 1;
    schemaMinor = 1;
    fileMajor = 2;
    fileMinor = 3;
    fileSubminor = 4;
}

std::string FakeCamera::StreamId(uint32_t index) const {
    return "Stream" + std::to_string(index);
}

uint64_t FakeCamera::PayloadSize(uint32_t) const {
    if (m_options.parts)
        return ImageBytes() * m_options.parts;
    return ImageBytes() + (m_options.chunks ? 8 + 8 + 8 : 0);
}

GenTL::GC_ERROR FakeCamera::StartStream(uint32_t index, FrameSink* sink, uint64_t maxFrames) {
    if (index >= m_workers.size() || !sink)
        return GenTL::GC_ERR_INVALID_PARAMETER;
    if (!IsConnected())
        return GenTL::GC_ERR_IO;
    Worker& worker = *m_workers[index];
    if (worker.running.load())
        return GenTL::GC_ERR_RESOURCE_IN_USE;
    worker.sink = sink;
    worker.maxFrames = maxFrames;
    worker.running.store(true);
    worker.thread = std::thread(&FakeCamera::Run, this, index);
    return GenTL::GC_ERR_SUCCESS;
}

void FakeCamera::StopStream(uint32_t index) {
    if (index >= m_workers.size())
        return;
    Worker& worker = *m_workers[index];
    worker.running.store(false);
    if (worker.thread.joinable())
        worker.thread.join();
}

void FakeCamera::SetEventSink(EventSink* sink) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_eventSink = sink;
}

GenTL::GC_ERROR FakeCamera::ActionCommand(uint32_t deviceKey, uint32_t, uint32_t, uint64_t) {
    m_actionDeviceKey.store(deviceKey);
    return GenTL::GC_ERR_SUCCESS;
}

GenTL::GC_ERROR FakeCamera::ForceIp(uint32_t ip, uint32_t subnet, uint32_t gateway) {
    m_identity.ip = ip;
    m_identity.subnet = subnet;
    m_identity.gateway = gateway;
    return GenTL::GC_ERR_SUCCESS;
}

void FakeCamera::InjectFrameFault(FrameFault fault, uint32_t count) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_fault = fault;
    m_faultCount = count;
}

bool FakeCamera::TakeFault(FrameFault& fault) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_faultCount == 0)
        return false;
    --m_faultCount;
    fault = m_fault;
    return true;
}

void FakeCamera::FireEvent(uint16_t eventId) {
    uint8_t message[8 + 24] = {0x42, 0x00, 0x00, 0xC2, 0x00, 24, 0x00, 0x01};
    message[10] = static_cast<uint8_t>(eventId >> 8);
    message[11] = static_cast<uint8_t>(eventId);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_eventSink)
        m_eventSink->DeliverRemoteEvent(message, sizeof(message));
}

void FakeCamera::SendStreamEvent(uint32_t stream, int32_t type, const std::vector<uint8_t>& data) {
    Worker& worker = *m_workers.at(stream);
    if (worker.running.load())
        worker.sink->DeliverStreamEvent(type, data.data(), data.size());
}

void FakeCamera::Fill(uint8_t* data, size_t size, uint64_t frameId, FrameInfo& info) const {
    const uint64_t image = ImageBytes();
    uint64_t needed = PayloadSize(0);
    info.dataSize = needed;
    info.dataLargerThanBuffer = needed > size;
    info.incomplete = info.dataLargerThanBuffer;
    const size_t copies = m_options.parts ? m_options.parts : 1;
    size_t written = 0;
    for (size_t copy = 0; copy < copies && written + image <= size; ++copy) {
        std::memcpy(data + written, m_pattern.data(), image);
        std::memcpy(data + written, &frameId, sizeof(frameId));
        FramePart part;
        part.offset = written;
        part.size = image;
        part.format = info.pixelFormat;
        part.width = info.width;
        part.height = info.height;
        info.parts.push_back(part);
        written += image;
    }
    if (m_options.chunks && needed <= size) {
        PutBigEndian32(data + written, kImageChunkId);
        PutBigEndian32(data + written + 4, static_cast<uint32_t>(image));
        std::memcpy(data + written + 8, &frameId, sizeof(frameId));
        PutBigEndian32(data + written + 16, kFrameIdChunkId);
        PutBigEndian32(data + written + 20, 8);
        written += 24;
    }
    info.sizeFilled = written;
    info.payloadType = m_options.parts    ? GenTL::PAYLOAD_TYPE_MULTI_PART
                       : m_options.chunks ? 0x4001
                                          : GenTL::PAYLOAD_TYPE_IMAGE;
    info.containsChunkData = m_options.chunks;
}

void FakeCamera::Run(uint32_t index) {
    Worker& worker = *m_workers[index];
    uint64_t frames = 0;
    const auto idle = m_options.period.count() ? m_options.period : std::chrono::microseconds(20);
    while (worker.running.load()) {
        if (!IsConnected() || frames >= worker.maxFrames) {
            std::this_thread::sleep_for(idle);
            continue;
        }
        worker.sink->SignalLeader();
        FillSlot slot;
        if (!worker.sink->AcquireBuffer(slot)) {
            worker.sink->CountLostFrame();
            // Free-running, the next buffer is usually a requeue away: yield rather than sleep.
            if (m_options.period.count())
                std::this_thread::sleep_for(idle);
            else
                std::this_thread::yield();
            continue;
        }
        ++frames; // a dropped frame still used up its id
        FrameFault fault;
        bool faulty = TakeFault(fault);
        if (faulty && fault == FrameFault::Drop) {
            worker.sink->Return(slot);
            worker.sink->CountLostFrame();
            continue;
        }
        FrameInfo info;
        info.frameId = frames;
        info.timestampNs = NowNs();
        info.timestampTicks = info.timestampNs;
        info.pixelFormat = 0x01080001; // Mono8
        info.width = m_options.width;
        info.height = m_options.height;
        Fill(slot.data, slot.size, info.frameId, info);
        if (faulty && fault == FrameFault::Incomplete)
            info.incomplete = true;
        if (faulty && fault == FrameFault::Corrupt && slot.size > 8)
            slot.data[8] ^= 0xFF;
        worker.sink->Deliver(slot, info);
        if (m_options.period.count())
            std::this_thread::sleep_for(m_options.period);
    }
}

} // namespace Producer
} // namespace Orvan
