// Common part of every node that carries a value.
#ifndef GENAPI_IVALUE_H
#define GENAPI_IVALUE_H

#include <GenApi/IBase.h>

namespace GenApi {

struct INode;

struct IValue : virtual public IBase {
    virtual INode* GetNode() = 0;
    virtual gcstring ToString(bool verify = false, bool ignoreCache = false) = 0;
    virtual void FromString(const gcstring& valueString, bool verify = true) = 0;
    virtual bool IsValueCacheValid() const = 0;
};

} // namespace GenApi

#endif
