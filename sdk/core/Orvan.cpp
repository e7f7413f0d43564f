#include "ErrorTranslation.h"
#include "System.h"

#include <GenTL/GenTL.h>

namespace Orvan {

ISystem* OpenSystem() {
    GenTL::GC_ERROR status = GenTL::GCInitLib();
    if (status == GenTL::GC_ERR_RESOURCE_IN_USE) {
        // The producer refuses a second initialisation; this one site names the code with its
        // namespace.
        std::string message = "RuntimeException (GenTL::GC_ERR_RESOURCE_IN_USE): Library already "
                              "initialized (must initialize only once) (Orvan, OpenSystem; "
                              "GenTL::GCInitLib); " +
                              ProducerErrorText();
        throw GenICam::RuntimeException(message.c_str(), __FILE__, __LINE__);
    }
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to initialize library", ORVAN_SITE("Orvan", "OpenSystem"),
                        "GCInitLib");
    GenTL::TL_HANDLE handle = nullptr;
    status = GenTL::TLOpen(&handle);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to open system", ORVAN_SITE("Orvan", "OpenSystem"),
                        "TLOpen");
    return new System(handle);
}

void CloseSystem(ISystem* system) {
    if (!dynamic_cast<System*>(system))
        ThrowLibraryError<GenICam::InvalidArgumentException>("System is null",
                                                             ORVAN_SITE("Orvan", "CloseSystem"));
    delete system;
    GenTL::GC_ERROR status = GenTL::GCCloseLib();
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to close library", ORVAN_SITE("Orvan", "CloseSystem"),
                        "GCCloseLib");
}

GenICam::gcstring GetVersion() {
    return "0.1.104.0";
}

} // namespace Orvan
