// Enumerations seen through a C++ enum of the application's own: parameter classes generated
// for a camera name each entry by an enumerator instead of by its symbolic string.
#ifndef GENAPI_IENUMERATIONT_H
#define GENAPI_IENUMERATIONT_H

#include <GenApi/IEnumeration.h>
#include <GenApi/Pointer.h>

namespace GenApi {

// Tells a typed enumeration which symbolic name each enumerator stands for.
struct IEnumReference {
    virtual void SetEnumReference(int index, gcstring name) = 0;
    virtual void SetNumEnums(int numEnums) = 0;
    virtual ~IEnumReference() = default;
};

template <typename EnumT>
struct IEnumerationT : public IEnumeration {
    using IEnumeration::GetEntry;
    using IEnumeration::operator=;

    virtual void SetValue(EnumT value, bool verify = true) = 0;
    virtual IEnumeration& operator=(EnumT value) = 0;
    virtual EnumT GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual EnumT operator()() = 0;
    virtual IEnumEntry* GetEntry(const EnumT value) = 0;
};

template <typename EnumT>
using CEnumerationTPtr = CPointer<IEnumerationT<EnumT>>;

} // namespace GenApi

#endif
