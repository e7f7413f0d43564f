// Buffer entry points: buffer and part information, chunk layout.
#include "BufferInfoQuery.h"
#include "ChunkParser.h"
#include "DataStream.h"
#include "EntryGuard.h"
#include "gentl/ForeignCalls.h"

#include <GenTL/GenTL.h>

#include <algorithm>

using namespace Orvan::Producer;

namespace {

BufferPool& GetPool(GenTL::DS_HANDLE handle, std::shared_ptr<DataStream>& keepAlive) {
    keepAlive = Resolve<DataStream>(handle, HandleKind::Stream);
    return keepAlive->Pool();
}

std::vector<GenTL::SINGLE_CHUNK_DATA> Chunks(const StreamBuffer& buffer) {
    if (!buffer.frame.containsChunkData)
        throw GenTLError(GenTL::GC_ERR_NO_DATA, "The buffer carries no chunk data");
    return ParseGigEChunks(buffer.base, std::min<uint64_t>(buffer.frame.sizeFilled, buffer.size));
}

} // namespace

namespace GenTL {
extern "C" {

GC_ERROR DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetBufferInfo(hDataStream, hBuffer, cmd, type, buffer, size);
    return Guarded(EntryPoint::DSGetBufferInfo, [&] {
        std::shared_ptr<DataStream> stream;
        InfoValue value = GetPool(hDataStream, stream).Inspect(hBuffer, [cmd](StreamBuffer& b) {
            return QueryBufferInfo(b, cmd);
        });
        value.WriteTo(type, buffer, size);
    });
}

GC_ERROR DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                              SINGLE_CHUNK_DATA* chunks, size_t* numChunks) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetBufferChunkData(hDataStream, hBuffer, chunks, numChunks);
    return Guarded(EntryPoint::DSGetBufferChunkData, [&] {
        std::shared_ptr<DataStream> stream;
        auto found = GetPool(hDataStream, stream).Inspect(hBuffer, Chunks);
        RequirePointer(numChunks, "numChunks");
        const size_t capacity = *numChunks;
        *numChunks = found.size();
        if (!chunks)
            return;
        if (capacity < found.size())
            throw GenTLError(GC_ERR_BUFFER_TOO_SMALL,
                             "The buffer holds " + std::to_string(found.size()) + " chunks");
        std::copy(found.begin(), found.end(), chunks);
    });
}

GC_ERROR DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* numParts) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetNumBufferParts(hDataStream, hBuffer, numParts);
    return Guarded(EntryPoint::DSGetNumBufferParts, [&] {
        std::shared_ptr<DataStream> stream;
        uint32_t parts = GetPool(hDataStream, stream).Inspect(hBuffer, BufferPartCount);
        RequirePointer(numParts, "numParts");
        *numParts = parts;
    });
}

GC_ERROR DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t partIndex,
                             BUFFER_PART_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                             size_t* size) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetBufferPartInfo(hDataStream, hBuffer, partIndex, cmd, type, buffer,
                                            size);
    return Guarded(EntryPoint::DSGetBufferPartInfo, [&] {
        std::shared_ptr<DataStream> stream;
        InfoValue value = GetPool(hDataStream, stream).Inspect(hBuffer, [&](StreamBuffer& b) {
            return QueryBufferPartInfo(b, partIndex, cmd);
        });
        value.WriteTo(type, buffer, size);
    });
}

// Stacked queries answer each entry; the result is the first entry's failure, if any.
GC_ERROR DSGetBufferInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                DS_BUFFER_INFO_STACKED* queries, size_t numQueries) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetBufferInfoStacked(hDataStream, hBuffer, queries, numQueries);
    return Guarded(EntryPoint::DSGetBufferInfoStacked, [&] {
        if (numQueries)
            RequirePointer(queries, "queries");
        for (size_t i = 0; i < numQueries; ++i)
            queries[i].iResult =
                DSGetBufferInfo(hDataStream, hBuffer, queries[i].iInfoCmd, &queries[i].iType,
                                queries[i].pBuffer, &queries[i].iSize);
        for (size_t i = 0; i < numQueries; ++i)
            if (queries[i].iResult != GC_ERR_SUCCESS)
                throw GenTLError(queries[i].iResult,
                                 "Stacked buffer query " + std::to_string(i) + " failed");
    });
}

GC_ERROR DSGetBufferPartInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                    DS_BUFFER_PART_INFO_STACKED* queries, size_t numQueries) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetBufferPartInfoStacked(hDataStream, hBuffer, queries, numQueries);
    return Guarded(EntryPoint::DSGetBufferPartInfoStacked, [&] {
        if (numQueries)
            RequirePointer(queries, "queries");
        for (size_t i = 0; i < numQueries; ++i)
            queries[i].iResult = DSGetBufferPartInfo(hDataStream, hBuffer, queries[i].iPartIndex,
                                                     queries[i].iInfoCmd, &queries[i].iType,
                                                     queries[i].pBuffer, &queries[i].iSize);
        for (size_t i = 0; i < numQueries; ++i)
            if (queries[i].iResult != GC_ERR_SUCCESS)
                throw GenTLError(queries[i].iResult,
                                 "Stacked part query " + std::to_string(i) + " failed");
    });
}

} // extern "C"
} // namespace GenTL
