// Arbitrary datagrams through everything that reads what a camera sends on the control and
// message channels: acknowledge headers, their sorting, payload checks, discovery answers and
// event commands.
#include "gige/GevProtocol.h"
#include "gige/GvcpCodec.h"

#include <cstddef>
#include <cstdint>

using namespace Orvan::Producer;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The first two bytes play the request id the host waits for.
    if (size < 2)
        return 0;
    const uint16_t requestId = static_cast<uint16_t>(data[0] << 8 | data[1]);
    data += 2;
    size -= 2;

    if (std::optional<GvcpAck> ack = ParseAck(data, size)) {
        const uint16_t answers[] = {Orvan::Gev::ReadRegAck, Orvan::Gev::ReadMemAck,
                                    Orvan::Gev::WriteRegAck, Orvan::Gev::ActionAck};
        uint32_t pendingMs = 0;
        for (uint16_t answer : answers)
            ClassifyAck(*ack, answer, requestId, pendingMs);
        uint32_t values[135];
        ParseReadRegAck(*ack, values, requestId % 136);
        uint8_t block[Orvan::Gev::kReadMemMax];
        ParseReadMemAck(*ack, requestId, block, (requestId % 135) * 4);
    }
    ParseDiscoveryAck(data, size, requestId);
    if (std::optional<GvcpCommandHeader> command = ParseCommandHeader(data, size)) {
        volatile uint8_t sink = 0;
        for (size_t i = 0; i < command->payloadSize; ++i)
            sink = sink + command->payload[i];
    }
    return 0;
}
