#ifndef GENAPI_IENUMERATION_H
#define GENAPI_IENUMERATION_H

#include <GenApi/Container.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IValue.h>

namespace GenApi {

struct IEnumeration : virtual public IValue {
    // Symbolic names of the entries that are currently available.
    virtual void GetSymbolics(StringList_t& symbolics) = 0;
    // Every entry node, available or not.
    virtual void GetEntries(NodeList_t& entries) = 0;
    virtual IEnumeration& operator=(const gcstring& symbolic) = 0;
    virtual void SetIntValue(int64_t value, bool verify = true) = 0;
    virtual gcstring operator*() = 0;
    virtual int64_t GetIntValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual IEnumEntry* GetEntryByName(const gcstring& symbolic) = 0;
    virtual IEnumEntry* GetEntry(const int64_t intValue) = 0;
    virtual IEnumEntry* GetCurrentEntry(bool verify = false, bool ignoreCache = false) = 0;
};

} // namespace GenApi

#endif
