#ifndef GENAPI_IBOOLEAN_H
#define GENAPI_IBOOLEAN_H

#include <GenApi/IValue.h>

namespace GenApi {

struct IBoolean : virtual public IValue {
    virtual void SetValue(bool value, bool verify = true) = 0;
    virtual void operator=(bool value) = 0;
    virtual bool GetValue(bool verify = false, bool ignoreCache = false) const = 0;
    virtual bool operator()() const = 0;
};

} // namespace GenApi

#endif
