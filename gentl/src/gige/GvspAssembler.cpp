#include "GvspAssembler.h"

#include "GevProtocol.h"

#include <algorithm>
#include <cstring>

namespace Orvan {
namespace Producer {

namespace {

// GenTL payload type of an image followed by chunks, as the SDK's buffer table knows it.
constexpr int32_t kPayloadImageExtendedChunk = 0x4001;
// A block this close behind the newest one is a late packet of a finished frame; anything
// further behind means the camera started counting again.
constexpr uint64_t kStaleWindow = 64;
constexpr uint16_t kStatusErrorBit = 0x8000;
// Multi-part payload packets carry less data each and every part may end in a short one, so a
// buffer holds more of their ids; this many parts fit before the leader tells how many come.
constexpr uint64_t kPartsBeforeLeader = 64;

// Only generic payload packets place their data by packet id, which is what lets them land in
// the buffer directly; multi-part packets address their part themselves, and the multi-zone,
// H.264 and GenDC forms are not taken.
bool IsDataFormat(uint8_t format) {
    return format == Gev::GenericPayload;
}

// Parts that are 2D images of one format and width, as a line-scan camera stacks them, read as
// one image of all their lines.
bool StackOfImages(const std::vector<FramePart>& parts) {
    if (parts.empty())
        return false;
    const FramePart& first = parts.front();
    return std::all_of(parts.begin(), parts.end(), [&](const FramePart& part) {
        return part.dataType == GenTL::PART_DATATYPE_2D_IMAGE && part.format == first.format &&
               part.width == first.width && part.paddingX == first.paddingX;
    });
}

int32_t GenTLPayloadType(uint16_t type, bool chunkFlag) {
    switch (type) {
    case Gev::Image:
    case Gev::MultiZoneImage:
        return chunkFlag ? kPayloadImageExtendedChunk : GenTL::PAYLOAD_TYPE_IMAGE;
    case Gev::ExtendedChunkData:
        return kPayloadImageExtendedChunk;
    case Gev::RawData:
        return GenTL::PAYLOAD_TYPE_RAW_DATA;
    case Gev::File:
        return GenTL::PAYLOAD_TYPE_FILE;
    case Gev::ChunkData:
        return GenTL::PAYLOAD_TYPE_CHUNK_DATA;
    case Gev::Jpeg:
        return GenTL::PAYLOAD_TYPE_JPEG;
    case Gev::Jpeg2000:
        return GenTL::PAYLOAD_TYPE_JPEG2000;
    case Gev::H264:
        return GenTL::PAYLOAD_TYPE_H264;
    case Gev::MultiPart:
        return GenTL::PAYLOAD_TYPE_MULTI_PART;
    default:
        return type >= Gev::DeviceSpecificBase ? GenTL::PAYLOAD_TYPE_DEVICE_SPECIFIC
                                               : GenTL::PAYLOAD_TYPE_UNKNOWN;
    }
}

// Split so that the product cannot overflow for any realistic tick frequency.
uint64_t TicksToNs(uint64_t ticks, uint64_t frequency) {
    if (frequency == 0)
        return ticks;
    constexpr uint64_t kNsPerSecond = 1000000000;
    return ticks / frequency * kNsPerSecond + ticks % frequency * kNsPerSecond / frequency;
}

uint64_t DivideUp(uint64_t value, uint64_t divisor) {
    return (value + divisor - 1) / divisor;
}

} // namespace

struct GvspAssembler::Frame {
    bool inUse = false;
    uint64_t blockId = 0;
    FillSlot slot;
    ResendSettings resend;
    bool leaderSeen = false;
    GvspLeader leader;
    bool trailerSeen = false;
    GvspTrailer trailer;
    uint32_t trailerId = 0;
    // Packet ids below capacityIds fit the buffer; one bit each.
    std::vector<uint64_t> received;
    uint32_t capacityIds = 0;
    bool anyReceived = false;
    uint32_t highestId = 0;
    uint64_t receivedCount = 0;
    uint64_t sizeFilled = 0;
    bool overflow = false;
    // A later block started before this one's trailer: the end is missing too.
    bool tailMissing = false;
    // A gap appeared that no request covers yet.
    bool freshGap = false;
    uint64_t freshGapSinceUs = 0;
    bool requested = false;
    uint32_t requestedUpTo = 0;
    uint64_t lastRequestUs = 0;
    uint32_t retries = 0;
    // The frame timeout runs from the trailer or a later block's start, else from the last
    // packet.
    bool deadlineSet = false;
    uint64_t deadlineStartUs = 0;
    uint64_t lastActivityUs = 0;
    bool done = false;

    // Multi-part blocks: the leader's first parts, as many as lie wholly in the buffer.
    size_t partsInBuffer = 0;

    bool Has(uint32_t id) const { return (received[id / 64] >> (id % 64) & 1) != 0; }
    bool Multipart() const { return leaderSeen && leader.payloadType == Gev::MultiPart; }
    bool Complete() const { return trailerSeen && !overflow && receivedCount == trailerId + 1ull; }
    void NoteGap(uint64_t nowUs) {
        if (!freshGap) {
            freshGap = true;
            freshGapSinceUs = nowUs;
        }
    }
    void StartDeadline(uint64_t nowUs) {
        if (!deadlineSet) {
            deadlineSet = true;
            deadlineStartUs = nowUs;
        }
    }
};

uint32_t GvspAssembler::MinimumPacketSize(bool extendedIds) {
    const size_t header = extendedIds ? Gev::kGvspExtendedHeaderSize : Gev::kGvspHeaderSize;
    // Room for the largest leader this receiver decodes.
    constexpr size_t kLargestLeader = 40;
    return static_cast<uint32_t>(Gev::kIpUdpOverhead + header + kLargestLeader);
}

GvspAssembler::GvspAssembler(FrameSink& sink, const Options& options, const ResendSettings& resend,
                             ResendRequester requester)
    : sink_(sink), options_(options), resend_(resend), requester_(std::move(requester)),
      headerSize_(options.extendedIds ? Gev::kGvspExtendedHeaderSize : Gev::kGvspHeaderSize) {
    const uint32_t packetSize =
        std::max(options.packetSize, MinimumPacketSize(options.extendedIds));
    stride_ = packetSize - Gev::kIpUdpOverhead - headerSize_;
    const size_t batch = std::max<size_t>(options.batchSize, 1);
    slots_.resize(batch);
    headerScratch_.resize(batch * headerSize_);
    bodyScratch_.resize(batch * stride_);
    slotFrame_.resize(batch);
    slotPacket_.resize(batch);
    pool_.resize(std::max<size_t>(options.maxFramesInFlight, 1));
    inFlight_.reserve(pool_.size());
}

GvspAssembler::~GvspAssembler() {
    Abort();
}

GvspAssembler::Slot* GvspAssembler::PrepareBatch() {
    Frame* current = inFlight_.empty() ? nullptr : inFlight_.back();
    if (current != nullptr && (current->done || current->trailerSeen || current->Multipart()))
        current = nullptr;
    for (size_t i = 0; i < slots_.size(); ++i) {
        Slot& slot = slots_[i];
        slot.header = headerScratch_.data() + i * headerSize_;
        slot.body = bodyScratch_.data() + i * stride_;
        slot.bodyCapacity = stride_;
        slot.length = 0;
        slot.truncated = false;
        slotFrame_[i] = nullptr;
        if (current == nullptr)
            continue;
        const uint64_t id = uint64_t{current->highestId} + 1 + i;
        const uint64_t offset = (id - 1) * stride_;
        if (id > UINT32_MAX || offset + stride_ > current->slot.size)
            continue;
        slot.body = current->slot.data + offset;
        slotFrame_[i] = current;
        slotPacket_[i] = static_cast<uint32_t>(id);
    }
    return slots_.data();
}

void GvspAssembler::ProcessBatch(size_t count, uint64_t nowUs) {
    count = std::min(count, slots_.size());
    EvacuateMisplaced(count);
    for (size_t i = 0; i < count; ++i)
        Handle(slots_[i], slotFrame_[i] != nullptr, nowUs);
}

void GvspAssembler::OnDatagram(const uint8_t* data, size_t size, uint64_t nowUs) {
    Slot& slot = PrepareBatch()[0];
    const size_t head = std::min(size, headerSize_);
    const size_t body = std::min(size - head, slot.bodyCapacity);
    if (head > 0)
        std::memcpy(slot.header, data, head);
    if (body > 0)
        std::memcpy(slot.body, data + head, body);
    slot.length = head + body;
    slot.truncated = head + body < size;
    ProcessBatch(1, nowUs);
}

// A body that landed in a buffer but belongs elsewhere moves to its slot's scratch before any
// packet is stored, so that storing one packet never overwrites another still unread.
void GvspAssembler::EvacuateMisplaced(size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Frame* frame = slotFrame_[i];
        if (frame == nullptr)
            continue;
        Slot& slot = slots_[i];
        bool inPlace = false;
        if (!slot.truncated && slot.length > headerSize_) {
            const auto header = ParseGvspHeader(slot.header, headerSize_);
            inPlace = header && header->extendedId == options_.extendedIds &&
                      (header->status & kStatusErrorBit) == 0 && IsDataFormat(header->format) &&
                      header->blockId == frame->blockId && header->packetId == slotPacket_[i];
        }
        if (inPlace)
            continue;
        uint8_t* scratch = bodyScratch_.data() + i * stride_;
        if (slot.length > headerSize_)
            std::memcpy(scratch, slot.body, std::min(slot.length - headerSize_, stride_));
        slot.body = scratch;
        slotFrame_[i] = nullptr;
    }
}

void GvspAssembler::Handle(const Slot& slot, bool inPlace, uint64_t nowUs) {
    if (slot.truncated || slot.length < headerSize_)
        return;
    const auto header = ParseGvspHeader(slot.header, headerSize_);
    // An error status answers a resend request for a packet the camera no longer has; the
    // frame's timeout settles it.
    if (!header || header->extendedId != options_.extendedIds ||
        (header->status & kStatusErrorBit) != 0)
        return;
    Bump(counters_.packetsReceived);
    Frame* frame = FindOrOpen(header->blockId, header->format == Gev::Leader, nowUs);
    if (frame == nullptr)
        return;
    frame->lastActivityUs = nowUs;
    const uint32_t id = header->packetId;
    const size_t bodySize = slot.length - headerSize_;
    if (header->format == Gev::Leader) {
        auto leader = ParseGvspLeader(slot.body, bodySize, AnnouncedParts(*header));
        if (!leader || id != 0 || !MarkReceived(*frame, id, nowUs))
            return;
        frame->leader = std::move(*leader);
        frame->leaderSeen = true;
        if (frame->Multipart())
            LayOutParts(*frame);
    } else if (header->format == Gev::Trailer) {
        const auto trailer = ParseGvspTrailer(slot.body, bodySize);
        if (!trailer || id == 0 || frame->trailerSeen)
            return;
        if (id >= frame->capacityIds)
            frame->overflow = true;
        else if (!MarkReceived(*frame, id, nowUs))
            return;
        frame->trailer = *trailer;
        frame->trailerSeen = true;
        frame->trailerId = id;
        frame->StartDeadline(nowUs);
    } else if (IsDataFormat(header->format) && id != 0) {
        if (id >= frame->capacityIds)
            frame->overflow = true;
        else if (MarkReceived(*frame, id, nowUs))
            StoreData(*frame, id, slot.body, bodySize, inPlace);
    } else if (header->format == Gev::MultiPartPayload && id != 0) {
        // Before the leader there is nowhere to put the data: the packet counts as missing and
        // is asked for again once the leader is in.
        if (id >= frame->capacityIds)
            frame->overflow = true;
        else if (frame->Multipart() && MarkReceived(*frame, id, nowUs))
            StorePart(*frame, slot.body, bodySize);
    }
    UpdateDone(*frame);
    FlushDone();
}

GvspAssembler::Frame* GvspAssembler::FindOrOpen(uint64_t blockId, bool leader, uint64_t nowUs) {
    for (Frame* frame : inFlight_)
        if (frame->blockId == blockId)
            return frame;
    if (anySeen_) {
        // Standard block ids are 16 bits and wrap; the signed distance orders them.
        const int64_t behind =
            options_.extendedIds ? static_cast<int64_t>(newestBlock_ - blockId)
                                 : -static_cast<int64_t>(static_cast<int16_t>(static_cast<uint16_t>(
                                       blockId - static_cast<uint16_t>(newestBlock_))));
        // A leader of an older block while nothing is pending means the camera started
        // counting again (its acquisition was restarted); anything else is a late packet.
        const bool restart = leader && inFlight_.empty();
        if (behind >= 0 && static_cast<uint64_t>(behind) < kStaleWindow && !restart)
            return nullptr;
    }
    anySeen_ = true;
    newestBlock_ = blockId;
    return Open(blockId, nowUs);
}

GvspAssembler::Frame* GvspAssembler::Open(uint64_t blockId, uint64_t nowUs) {
    while (inFlight_.size() >= pool_.size()) {
        inFlight_.front()->done = true;
        FlushDone();
    }
    for (Frame* older : inFlight_) {
        older->StartDeadline(nowUs);
        if (!older->trailerSeen && !older->tailMissing) {
            older->tailMissing = true;
            older->NoteGap(nowUs);
        }
    }
    sink_.SignalLeader();
    FillSlot slot;
    if (!sink_.AcquireBuffer(slot)) {
        Bump(counters_.framesLost);
        sink_.CountLostFrame();
        return nullptr;
    }
    Frame* frame =
        &*std::find_if(pool_.begin(), pool_.end(), [](const Frame& f) { return !f.inUse; });
    std::vector<uint64_t> bits = std::move(frame->received);
    *frame = Frame();
    frame->inUse = true;
    frame->blockId = blockId;
    frame->slot = slot;
    frame->resend = resend_;
    const uint64_t ids =
        DivideUp(slot.size, stride_ - Gev::Part::DataHeaderSize) + 2 + kPartsBeforeLeader;
    frame->capacityIds = static_cast<uint32_t>(std::min<uint64_t>(ids, UINT32_MAX));
    bits.assign(DivideUp(frame->capacityIds, 64), 0);
    frame->received = std::move(bits);
    frame->lastActivityUs = nowUs;
    inFlight_.push_back(frame);
    return frame;
}

bool GvspAssembler::MarkReceived(Frame& frame, uint32_t id, uint64_t nowUs) {
    if (frame.Has(id))
        return false;
    frame.received[id / 64] |= uint64_t{1} << (id % 64);
    ++frame.receivedCount;
    const uint32_t expected = frame.anyReceived ? frame.highestId + 1 : 0;
    if (id > expected)
        frame.NoteGap(nowUs);
    if (!frame.anyReceived || id > frame.highestId) {
        frame.highestId = id;
        frame.anyReceived = true;
    }
    if (frame.requested && id <= frame.requestedUpTo)
        Bump(counters_.packetsRecovered);
    return true;
}

void GvspAssembler::StoreData(Frame& frame, uint32_t id, const uint8_t* body, size_t size,
                              bool inPlace) {
    const uint64_t offset = uint64_t{id - 1} * stride_;
    if (size > stride_ || offset >= frame.slot.size) {
        frame.overflow = true;
        return;
    }
    const size_t fits = static_cast<size_t>(std::min<uint64_t>(size, frame.slot.size - offset));
    if (fits < size)
        frame.overflow = true;
    uint8_t* target = frame.slot.data + offset;
    if (!inPlace && fits > 0)
        std::memcpy(target, body, fits);
    frame.sizeFilled = std::max(frame.sizeFilled, offset + fits);
}

// Parts lie one after the other in the buffer, as far as they fit; a multi-part block whose
// parts each end in a short packet may need more ids than the buffer alone suggested.
void GvspAssembler::LayOutParts(Frame& frame) {
    const uint64_t perPacket = stride_ - Gev::Part::DataHeaderSize;
    uint64_t offset = 0;
    uint64_t ids = 2;
    for (FramePart& part : frame.leader.parts) {
        if (part.size > frame.slot.size - offset)
            break;
        part.offset = offset;
        offset += part.size;
        ids += DivideUp(part.size, perPacket);
        ++frame.partsInBuffer;
    }
    if (ids > frame.capacityIds) {
        frame.capacityIds = static_cast<uint32_t>(std::min<uint64_t>(ids, UINT32_MAX));
        frame.received.resize(DivideUp(frame.capacityIds, 64), 0);
    }
}

void GvspAssembler::StorePart(Frame& frame, const uint8_t* body, size_t size) {
    const auto data = ParseGvspPartData(body, size);
    if (!data || data->part >= frame.leader.parts.size())
        return;
    const FramePart& part = frame.leader.parts[data->part];
    if (data->offset > part.size || data->size > part.size - data->offset)
        return; // not where the leader said the part ends: a broken packet
    if (data->part >= frame.partsInBuffer) {
        frame.overflow = true;
        return;
    }
    const uint64_t target = part.offset + data->offset;
    if (data->size > 0)
        std::memcpy(frame.slot.data + target, data->data, data->size);
    frame.sizeFilled = std::max(frame.sizeFilled, target + data->size);
}

void GvspAssembler::UpdateDone(Frame& frame) {
    if (frame.trailerSeen && (frame.overflow || frame.Complete()))
        frame.done = true;
}

void GvspAssembler::Poll(uint64_t nowUs) {
    for (Frame* frame : inFlight_)
        if (!frame->done)
            PollFrame(*frame, nowUs);
    FlushDone();
}

void GvspAssembler::PollFrame(Frame& frame, uint64_t nowUs) {
    const uint64_t since = frame.deadlineSet ? frame.deadlineStartUs : frame.lastActivityUs;
    if (nowUs >= since + frame.resend.frameTimeoutUs) {
        frame.done = true;
        return;
    }
    const ResendSettings& resend = frame.resend;
    // Once the block has ended, a frame that no request can complete is not held back longer
    // than reordering needs.
    if (!resend.enabled || resend.maxRetries == 0 || !requester_) {
        if (frame.deadlineSet && nowUs >= frame.deadlineStartUs + resend.requestDelayUs)
            frame.done = true;
        return;
    }
    if (frame.deadlineSet && frame.requested && !frame.freshGap &&
        frame.retries + 1 >= resend.maxRetries &&
        nowUs >= frame.lastRequestUs + resend.retryTimeoutUs) {
        frame.done = true;
        return;
    }
    // The last block of a stream has no later block to reveal a lost end; silence does.
    if (!frame.trailerSeen && !frame.tailMissing &&
        nowUs >= frame.lastActivityUs + resend.retryTimeoutUs) {
        frame.tailMissing = true;
        frame.NoteGap(nowUs);
    }
    const uint32_t limit = GapLimit(frame);
    const uint32_t from = frame.requested ? frame.requestedUpTo + 1 : 0;
    if (frame.freshGap && nowUs >= frame.freshGapSinceUs + resend.requestDelayUs) {
        frame.freshGap = false;
        if (from < limit) {
            RequestMissing(frame, from, limit - 1);
            frame.requested = true;
            frame.requestedUpTo = limit - 1;
            frame.lastRequestUs = nowUs;
        }
    } else if (frame.requested && frame.retries + 1 < resend.maxRetries &&
               nowUs >= frame.lastRequestUs + resend.retryTimeoutUs) {
        RequestMissing(frame, 0, std::min(frame.requestedUpTo, limit - 1));
        ++frame.retries;
        frame.lastRequestUs = nowUs;
    }
}

// Packet ids below the result may be asked for: those below the highest one seen, all but the
// trailer once it is known, and up to the estimated end when the tail went missing.
uint32_t GvspAssembler::GapLimit(const Frame& frame) const {
    uint64_t limit = frame.highestId;
    if (frame.trailerSeen)
        limit = frame.trailerId;
    else if (frame.tailMissing)
        limit = std::max<uint64_t>(EstimatedLastId(frame), frame.highestId + 1ull) + 1;
    return static_cast<uint32_t>(std::min<uint64_t>(limit, frame.capacityIds));
}

// The trailer's id as the leader lets it be guessed, or the last id that fits the buffer.
uint32_t GvspAssembler::EstimatedLastId(const Frame& frame) const {
    uint64_t bytes = 0;
    const GvspLeader& leader = frame.leader;
    if (frame.Multipart()) {
        uint64_t last = 1;
        for (const FramePart& part : leader.parts)
            last += DivideUp(part.size, stride_ - Gev::Part::DataHeaderSize);
        return static_cast<uint32_t>(std::min<uint64_t>(last, frame.capacityIds - 1ull));
    }
    if (frame.leaderSeen && leader.hasImage && !leader.chunkFlag) {
        const uint64_t bitsPerPixel = leader.pixelFormat >> 16 & 0xFF;
        bytes = (uint64_t{leader.sizeX} * bitsPerPixel / 8 + leader.paddingX) * leader.sizeY +
                leader.paddingY;
    } else if (frame.leaderSeen) {
        bytes = leader.payloadSize;
    }
    const uint64_t last = bytes > 0 ? DivideUp(bytes, stride_) + 1 : frame.capacityIds - 1ull;
    return static_cast<uint32_t>(std::min<uint64_t>(last, frame.capacityIds - 1ull));
}

void GvspAssembler::RequestMissing(Frame& frame, uint32_t first, uint32_t last) {
    uint32_t id = first;
    while (id <= last) {
        if (frame.Has(id)) {
            ++id;
            continue;
        }
        const uint32_t start = id;
        while (id < last && !frame.Has(id + 1))
            ++id;
        Bump(counters_.resendRequests);
        requester_(frame.blockId, start, id);
        if (id == last)
            break;
        ++id;
    }
}

void GvspAssembler::FlushDone() {
    while (!inFlight_.empty() && inFlight_.front()->done) {
        Frame* frame = inFlight_.front();
        inFlight_.erase(inFlight_.begin());
        Finish(*frame);
    }
}

void GvspAssembler::Finish(Frame& frame) {
    const FrameInfo info = Describe(frame);
    if (info.incomplete) {
        Bump(counters_.framesIncomplete);
        const uint64_t expected =
            frame.trailerSeen ? std::min<uint64_t>(frame.trailerId + 1ull, frame.capacityIds)
                              : frame.highestId + 2ull;
        if (expected > frame.receivedCount)
            Bump(counters_.packetsLost, expected - frame.receivedCount);
    }
    Bump(counters_.framesDelivered);
    frame.inUse = false;
    sink_.Deliver(frame.slot, info);
}

FrameInfo GvspAssembler::Describe(const Frame& frame) const {
    FrameInfo info;
    info.frameId = frame.blockId;
    info.sizeFilled = frame.sizeFilled;
    info.dataSize = frame.sizeFilled;
    info.incomplete = !frame.Complete();
    info.dataLargerThanBuffer = frame.overflow;
    const GvspLeader& leader = frame.leader;
    uint16_t type = frame.leaderSeen ? leader.payloadType : frame.trailer.payloadType;
    bool chunkFlag = frame.leaderSeen ? leader.chunkFlag : frame.trailer.chunkFlag;
    info.payloadType = GenTLPayloadType(type, chunkFlag);
    info.containsChunkData = chunkFlag || type == Gev::ChunkData || type == Gev::ExtendedChunkData;
    info.imagePresent = frame.leaderSeen ? leader.hasImage : frame.trailer.hasSizeY;
    if (frame.leaderSeen) {
        info.timestampTicks = leader.timestamp;
        info.timestampNs = TicksToNs(leader.timestamp, options_.tickFrequency);
        info.pixelFormat = leader.pixelFormat;
        info.width = leader.sizeX;
        info.height = leader.sizeY;
        info.offsetX = leader.offsetX;
        info.offsetY = leader.offsetY;
        info.paddingX = leader.paddingX;
        info.paddingY = leader.paddingY;
    }
    // Line-scan cameras may end a block early; the trailer says how many lines it holds. Some
    // cameras leave the field zero, which says nothing.
    if (frame.trailerSeen && frame.trailer.hasSizeY && frame.trailer.sizeY != 0)
        info.height = frame.trailer.sizeY;
    if (frame.Multipart())
        DescribeParts(frame, info);
    return info;
}

void GvspAssembler::DescribeParts(const Frame& frame, FrameInfo& info) const {
    const auto& parts = frame.leader.parts;
    info.parts.assign(parts.begin(), parts.begin() + long(frame.partsInBuffer));
    info.imagePresent = StackOfImages(info.parts);
    if (!info.imagePresent)
        return;
    const FramePart& first = info.parts.front();
    info.pixelFormat = first.format;
    info.width = first.width;
    info.offsetX = first.offsetX;
    info.offsetY = first.offsetY;
    info.paddingX = first.paddingX;
    info.height = 0;
    for (const FramePart& part : info.parts)
        info.height += part.height;
}

void GvspAssembler::Abort() {
    for (Frame* frame : inFlight_) {
        frame->inUse = false;
        sink_.Return(frame->slot);
    }
    inFlight_.clear();
}

StreamStatistics GvspAssembler::Statistics() const {
    StreamStatistics out;
    out.packetsReceived = counters_.packetsReceived.load(std::memory_order_relaxed);
    out.packetsRecovered = counters_.packetsRecovered.load(std::memory_order_relaxed);
    out.packetsLost = counters_.packetsLost.load(std::memory_order_relaxed);
    out.resendRequests = counters_.resendRequests.load(std::memory_order_relaxed);
    out.framesDelivered = counters_.framesDelivered.load(std::memory_order_relaxed);
    out.framesIncomplete = counters_.framesIncomplete.load(std::memory_order_relaxed);
    out.framesLost = counters_.framesLost.load(std::memory_order_relaxed);
    return out;
}

} // namespace Producer
} // namespace Orvan
