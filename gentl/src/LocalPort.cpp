#include "LocalPort.h"

namespace Orvan {
namespace Producer {

void LocalPort::Read(uint64_t address, void* data, size_t size) {
    m_space.Read(address, data, size);
}

void LocalPort::Write(uint64_t address, const void* data, size_t size) {
    m_space.Write(address, data, size);
}

DescriptionLocation LocalPort::Description() const {
    DescriptionLocation location;
    location.url = m_url;
    return location;
}

} // namespace Producer
} // namespace Orvan
