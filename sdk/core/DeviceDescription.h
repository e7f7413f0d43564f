// The camera side of description loading: the remote port, the URLs it offers and the
// description bytes behind them. The device object calls these when it is opened.
#ifndef ORVAN_CORE_DEVICEDESCRIPTION_H
#define ORVAN_CORE_DEVICEDESCRIPTION_H

#include "TLBase.h"
#include "TLDevice.h"

#include <cstdint>
#include <string>

namespace Orvan {

// Where a camera's description lies, and its versions.
struct XmlUrlInfo {
    std::string url;
    int32_t schemaVersionMajor = 0;
    int32_t schemaVersionMinor = 0;
    int32_t fileVersionMajor = 0;
    int32_t fileVersionMinor = 0;
    int32_t fileVersionSubminor = 0;
};

// The remote camera's port handle.
void* GetRemotePort(TLDevice* device);

// The newest description the module offers (highest file version; the first of equals).
XmlUrlInfo GetUrlInfo(TLBase* module);

// Reads the description that info names, from the module's register space or from disk, and
// unpacks it when zipped. *data receives plain XML allocated with new[], which the caller
// frees with delete[]; size its length. Web addresses are refused.
void ReadXML(TLBase* module, XmlUrlInfo info, char** data, uint64_t& size);

} // namespace Orvan

#endif
