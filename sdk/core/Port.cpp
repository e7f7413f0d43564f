#include "Port.h"

#include "ErrorTranslation.h"

namespace Orvan {

GenApi::EAccessMode Port::GetAccessMode() const {
    return GenApi::RW;
}

Port::~Port() = default;

void Port::Read(void* buffer, int64_t address, int64_t length) {
    if (!m_module)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Module is null",
                                                             ORVAN_SITE("Port", "Read"));
    size_t size = static_cast<size_t>(length);
    int32_t status = m_module->ReadPort(static_cast<uint64_t>(address), buffer, &size);
    // The producer's text goes into the description as well, so that it heads the message.
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to read port: " + ProducerErrorText(),
                        ORVAN_SITE("Port", "Read"), "GCReadPort");
}

void Port::Write(const void* buffer, int64_t address, int64_t length) {
    if (!m_module)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Module is null",
                                                             ORVAN_SITE("Port", "Write"));
    size_t size = static_cast<size_t>(length);
    int32_t status = m_module->WritePort(static_cast<uint64_t>(address), buffer, &size);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to write port: " + ProducerErrorText(),
                        ORVAN_SITE("Port", "Write"), "GCWritePort");
}

} // namespace Orvan
