#include "InfoValue.h"

#include "GenTLError.h"

namespace Orvan {
namespace Producer {

InfoValue InfoValue::String(const std::string& text) {
    InfoValue result;
    result.m_type = GenTL::INFO_DATATYPE_STRING;
    result.m_bytes.assign(text.begin(), text.end());
    result.m_bytes.push_back(0);
    return result;
}

InfoValue InfoValue::Bytes(const void* data, size_t size) {
    InfoValue result;
    result.m_type = GenTL::INFO_DATATYPE_BUFFER;
    const auto* bytes = static_cast<const uint8_t*>(data);
    result.m_bytes.assign(bytes, bytes + size);
    return result;
}

void InfoValue::WriteTo(GenTL::INFO_DATATYPE* type, void* buffer, size_t* size) const {
    RequirePointer(size, "size");
    if (type)
        *type = m_type;
    size_t capacity = *size;
    *size = Size();
    if (!buffer)
        return;
    if (capacity < Size())
        throw GenTLError(GenTL::GC_ERR_BUFFER_TOO_SMALL,
                         "The buffer holds " + std::to_string(capacity) +
                             " bytes, the value needs " + std::to_string(Size()));
    std::memcpy(buffer, Data(), Size());
}

void WriteText(const std::string& text, char* buffer, size_t* size) {
    InfoValue::String(text).WriteTo(nullptr, buffer, size);
}

} // namespace Producer
} // namespace Orvan
