#ifndef GENAPI_IREGISTER_H
#define GENAPI_IREGISTER_H

#include <GenApi/IValue.h>

namespace GenApi {

struct IRegister : virtual public IValue {
    virtual void Set(const uint8_t* buffer, int64_t length, bool verify = true) = 0;
    virtual void Get(uint8_t* buffer, int64_t length, bool verify = false,
                     bool ignoreCache = false) = 0;
    virtual int64_t GetLength() = 0;
    virtual int64_t GetAddress() = 0;
};

} // namespace GenApi

#endif
