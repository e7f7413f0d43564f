// Root of every GenApi interface.
#ifndef GENAPI_IBASE_H
#define GENAPI_IBASE_H

#include <GenApi/Types.h>

namespace GenApi {

struct IBase {
    virtual EAccessMode GetAccessMode() const = 0;
    virtual ~IBase() = default;
};

} // namespace GenApi

#endif
