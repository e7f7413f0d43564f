// A data stream that answers buffer-info queries from a table and counts them, standing in for
// the producer behind delivered buffers.
#ifndef ORVAN_TESTS_SDK_FAKEDATASTREAM_H
#define ORVAN_TESTS_SDK_FAKEDATASTREAM_H

#include "core/TLDataStream.h"

#include <cstring>
#include <map>

class FakeDataStream : public Orvan::TLDataStream {
public:
    FakeDataStream() : TLDataStream(reinterpret_cast<void*>(0x5)) {}

    int32_t GetBufferInfo(void*, int32_t cmd, int32_t*, void* buffer, size_t* size) override {
        ++queries;
        const auto found = values.find(cmd);
        if (failing || found == values.end())
            return GenTL::GC_ERR_NOT_AVAILABLE;
        // Every value is stored widened; the reader gets the bytes its type needs.
        std::memcpy(buffer, &found->second, *size);
        return GenTL::GC_ERR_SUCCESS;
    }

    std::map<int32_t, uint64_t> values;
    bool failing = false;
    int queries = 0;
};

#endif
