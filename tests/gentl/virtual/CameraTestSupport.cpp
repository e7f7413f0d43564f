#include "CameraTestSupport.h"

#include "virtual/CameraModel.h"

#include <pugixml.hpp>

#include <cstring>
#include <stdexcept>

namespace CameraTest {

using namespace GenTL;

FakeFrameSink::FakeFrameSink(size_t buffers, size_t size) : m_buffers(buffers) {
    for (size_t i = 0; i < buffers; ++i) {
        m_buffers[i].assign(size, 0xCD);
        m_free.push_back(i);
    }
}

bool FakeFrameSink::AcquireBuffer(FillSlot& slot) {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_calls;
    if (m_free.empty())
        return false;
    const size_t index = m_free.front();
    m_free.erase(m_free.begin());
    slot.data = m_buffers[index].data();
    slot.size = m_buffers[index].size();
    slot.token = reinterpret_cast<void*>(index);
    return true;
}

void FakeFrameSink::Deliver(const FillSlot& slot, const FrameInfo& info) {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_calls;
    m_frames.push_back({info, std::vector<uint8_t>(slot.data, slot.data + info.sizeFilled)});
    if (!m_hold)
        m_free.push_back(reinterpret_cast<size_t>(slot.token));
    m_changed.notify_all();
}

void FakeFrameSink::Return(const FillSlot& slot) {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_calls;
    m_free.insert(m_free.begin(), reinterpret_cast<size_t>(slot.token));
}

void FakeFrameSink::SignalLeader() {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_calls;
    ++m_leaders;
}

void FakeFrameSink::CountLostFrame() {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_calls;
    ++m_lost;
    m_changed.notify_all();
}

void FakeFrameSink::DeliverStreamEvent(int32_t eventType, const void*, size_t) {
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_calls;
    if (eventType == 1001)
        ++m_streamEvents;
    m_changed.notify_all();
}

void FakeFrameSink::HoldBuffers(bool hold) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_hold = hold;
}

std::vector<DeliveredFrame> FakeFrameSink::WaitFrames(size_t count,
                                                      std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, timeout, [&] { return m_frames.size() >= count; });
    return m_frames;
}

std::vector<DeliveredFrame> FakeFrameSink::Frames() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_frames;
}

size_t FakeFrameSink::Lost() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_lost;
}

size_t FakeFrameSink::Leaders() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_leaders;
}

size_t FakeFrameSink::StreamEvents() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_streamEvents;
}

size_t FakeFrameSink::Calls() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

void FakeEventSink::DeliverRemoteEvent(const void* data, size_t size) {
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto* bytes = static_cast<const uint8_t*>(data);
    m_messages.emplace_back(bytes, bytes + size);
    m_changed.notify_all();
}

std::vector<std::vector<uint8_t>> FakeEventSink::WaitMessages(size_t count,
                                                              std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait_for(lock, timeout, [&] { return m_messages.size() >= count; });
    return m_messages;
}

Features::Features(Orvan::Producer::VirtualCamera& camera) : m_camera(camera) {
    pugi::xml_document doc;
    if (!doc.load_string(camera.DescriptionXml().c_str()))
        throw std::runtime_error("description does not parse");
    for (pugi::xml_node node : doc.document_element().children()) {
        const std::string kind = node.name();
        const std::string name = node.attribute("Name").value();
        if (kind == "IntReg" || kind == "FloatReg" || kind == "StringReg") {
            if (std::string(node.child_value("pPort")) != "Device")
                continue;
            const Register reg{std::stoull(node.child_value("Address"), nullptr, 0),
                               uint32_t(std::stoul(node.child_value("Length"), nullptr, 0)),
                               kind == "FloatReg"};
            m_registers[name] = reg;
            const std::string suffix = "_Reg";
            if (name.size() > suffix.size() && name.compare(name.size() - 4, 4, suffix) == 0)
                m_registers[name.substr(0, name.size() - 4)] = reg;
        }
        if (kind == "Enumeration")
            for (pugi::xml_node entry : node.children("EnumEntry"))
                m_entries[name].emplace_back(entry.attribute("Name").value(),
                                             std::stoll(entry.child_value("Value"), nullptr, 0));
    }
}

const Features::Register& Features::Find(const std::string& node) const {
    auto found = m_registers.find(node);
    if (found == m_registers.end())
        throw std::out_of_range("no register for " + node);
    return found->second;
}

uint64_t BigEndian(const uint8_t* p, size_t size) {
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | p[i];
    return value;
}

int64_t Features::Int(const std::string& node) {
    const Register& reg = Find(node);
    uint8_t bytes[8] = {};
    size_t size = reg.length;
    if (m_camera.ReadPort(reg.address, bytes, &size) != GC_ERR_SUCCESS)
        throw std::runtime_error("cannot read " + node);
    return int64_t(BigEndian(bytes, reg.length));
}

double Features::Float(const std::string& node) {
    const uint64_t bits = uint64_t(Int(node));
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::string Features::String(const std::string& node) {
    const Register& reg = Find(node);
    std::vector<char> text(reg.length + 1, '\0');
    size_t size = reg.length;
    if (m_camera.ReadPort(reg.address, text.data(), &size) != GC_ERR_SUCCESS)
        throw std::runtime_error("cannot read " + node);
    return text.data();
}

std::string Features::Enum(const std::string& node) {
    const int64_t value = Int(node);
    for (const auto& [entry, entryValue] : m_entries.at(node))
        if (entryValue == value)
            return entry;
    return "?";
}

GC_ERROR Features::SetInt(const std::string& node, int64_t value) {
    const Register& reg = Find(node);
    uint8_t bytes[8];
    for (size_t i = reg.length; i-- > 0; value >>= 8)
        bytes[i] = uint8_t(value);
    size_t size = reg.length;
    return m_camera.WritePort(reg.address, bytes, &size);
}

GC_ERROR Features::SetFloat(const std::string& node, double value) {
    int64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return SetInt(node, bits);
}

GC_ERROR Features::SetEnum(const std::string& node, const std::string& entry) {
    for (const auto& [name, value] : m_entries.at(node))
        if (name == entry)
            return SetInt(node, value);
    throw std::out_of_range(node + " has no entry " + entry);
}

GC_ERROR Features::Execute(const std::string& command) {
    return SetInt(command, 1);
}

std::vector<std::string> Features::Entries(const std::string& node) {
    std::vector<std::string> names;
    for (const auto& entry : m_entries.at(node))
        names.push_back(entry.first);
    return names;
}

std::unique_ptr<Orvan::Producer::VirtualCamera> MakeCamera(const std::string& model,
                                                           uint32_t index) {
    return std::make_unique<Orvan::Producer::VirtualCamera>(
        *Orvan::Producer::FindCameraModel(model), index);
}

std::vector<ParsedChunk> ParseChunks(const std::vector<uint8_t>& payload) {
    std::vector<ParsedChunk> chunks;
    size_t end = payload.size();
    while (end > 0) {
        if (end < 8)
            return {};
        const auto id = uint32_t(BigEndian(payload.data() + end - 8, 4));
        const auto length = uint32_t(BigEndian(payload.data() + end - 4, 4));
        if (length > end - 8)
            return {};
        end -= 8 + length;
        chunks.insert(chunks.begin(), ParsedChunk{id, end, length});
    }
    return chunks;
}

} // namespace CameraTest
