// One answer of an info query (TLGetInfo, DSGetBufferInfo, ...): its GenTL data type and bytes,
// written out with the size rules every info function shares.
#ifndef ORVAN_GENTL_INFOVALUE_H
#define ORVAN_GENTL_INFOVALUE_H

#include <GenTL/GenTL.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class InfoValue {
public:
    static InfoValue String(const std::string& text);
    static InfoValue Bytes(const void* data, size_t size);
    static InfoValue Int32(int32_t value) { return Scalar(GenTL::INFO_DATATYPE_INT32, value); }
    static InfoValue UInt32(uint32_t value) { return Scalar(GenTL::INFO_DATATYPE_UINT32, value); }
    static InfoValue Int64(int64_t value) { return Scalar(GenTL::INFO_DATATYPE_INT64, value); }
    static InfoValue UInt64(uint64_t value) { return Scalar(GenTL::INFO_DATATYPE_UINT64, value); }
    static InfoValue SizeT(size_t value) { return Scalar(GenTL::INFO_DATATYPE_SIZET, value); }
    static InfoValue Ptr(const void* value) { return Scalar(GenTL::INFO_DATATYPE_PTR, value); }
    static InfoValue Bool8(bool value) {
        return Scalar(GenTL::INFO_DATATYPE_BOOL8, static_cast<uint8_t>(value ? 1 : 0));
    }

    // Writes type and value. A null buffer asks for the size only; too small a buffer fails with
    // GC_ERR_BUFFER_TOO_SMALL (thrown) and reports the size needed.
    void WriteTo(GenTL::INFO_DATATYPE* type, void* buffer, size_t* size) const;

    GenTL::INFO_DATATYPE Type() const { return m_type; }
    const uint8_t* Data() const { return m_bytes.empty() ? m_scalar : m_bytes.data(); }
    size_t Size() const { return m_bytes.empty() ? m_scalarSize : m_bytes.size(); }

private:
    template <typename T>
    static InfoValue Scalar(GenTL::INFO_DATATYPE type, T value) {
        static_assert(sizeof(T) <= sizeof(m_scalar), "scalars fit inline");
        InfoValue result;
        result.m_type = type;
        result.m_scalarSize = sizeof(T);
        std::memcpy(result.m_scalar, &value, sizeof(T));
        return result;
    }

    GenTL::INFO_DATATYPE m_type = GenTL::INFO_DATATYPE_UNKNOWN;
    // Scalars stay inline so the per-buffer queries allocate nothing.
    uint8_t m_scalar[8] = {};
    size_t m_scalarSize = 0;
    std::vector<uint8_t> m_bytes; // strings and byte blocks
};

// Copies text with its terminator into a caller buffer under the same size rules.
void WriteText(const std::string& text, char* buffer, size_t* size);

} // namespace Producer
} // namespace Orvan

#endif
