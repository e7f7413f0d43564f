#include "System.h"

#include <GenTL/GenTL.h>

namespace Orvan {

System::~System() {
    GenTL::TLClose(m_systemHandle);
}

} // namespace Orvan
