// Smart pointers that bind to a node when it has the requested interface and stay empty when it
// has not. They do not own the node.
#ifndef GENAPI_POINTER_H
#define GENAPI_POINTER_H

#include <Base/GCException.h>
#include <GenApi/IBoolean.h>
#include <GenApi/ICategory.h>
#include <GenApi/ICommand.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/INode.h>
#include <GenApi/INodeMap.h>
#include <GenApi/IPort.h>
#include <GenApi/IRegister.h>
#include <GenApi/ISelector.h>
#include <GenApi/IString.h>
#include <GenApi/IValue.h>

namespace GenApi {

template <class T, class B = IBase>
class CPointer {
public:
    CPointer() noexcept : m_pT(nullptr) {}
    CPointer(B* base) : m_pT(dynamic_cast<T*>(base)) {}
    CPointer(const CPointer& other) noexcept : m_pT(other.m_pT) {}
    template <class U>
    CPointer(const CPointer<U, B>& other) : m_pT(dynamic_cast<T*>(other.m_pT)) {}

    CPointer& operator=(const CPointer& other) noexcept {
        m_pT = other.m_pT;
        return *this;
    }
    template <class U>
    CPointer& operator=(const CPointer<U, B>& other) {
        m_pT = dynamic_cast<T*>(other.m_pT);
        return *this;
    }
    CPointer& operator=(B* base) {
        m_pT = dynamic_cast<T*>(base);
        return *this;
    }

    operator T*() const { return Checked(); }
    T& operator*() const { return *Checked(); }
    T* operator->() const { return Checked(); }

    bool IsValid() const noexcept { return m_pT != nullptr; }
    explicit operator bool() const noexcept { return m_pT != nullptr; }
    void Release() noexcept { m_pT = nullptr; }

    bool operator==(T* other) const noexcept { return m_pT == other; }
    bool operator!=(T* other) const noexcept { return m_pT != other; }
    bool operator==(const CPointer& other) const noexcept { return m_pT == other.m_pT; }
    bool operator!=(const CPointer& other) const noexcept { return m_pT != other.m_pT; }
    // `ptr == NULL`, `ptr == nullptr` and `ptr == 0` compare through the T* overloads.

    T* m_pT;

private:
    T* Checked() const {
        if (!m_pT)
            throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
        return m_pT;
    }
};

using CBasePtr = CPointer<IBase>;
using CNodePtr = CPointer<INode>;
using CValuePtr = CPointer<IValue>;
using CIntegerPtr = CPointer<IInteger>;
using CFloatPtr = CPointer<IFloat>;
using CBooleanPtr = CPointer<IBoolean>;
using CStringPtr = CPointer<IString>;
using CEnumerationPtr = CPointer<IEnumeration>;
using CEnumEntryPtr = CPointer<IEnumEntry>;
using CCommandPtr = CPointer<ICommand>;
using CRegisterPtr = CPointer<IRegister>;
using CCategoryPtr = CPointer<ICategory>;
using CPortPtr = CPointer<IPort>;
using CPortConstructPtr = CPointer<IPortConstruct>;
using CSelectorPtr = CPointer<ISelector>;
using CNodeMapPtr = CPointer<INodeMap, INodeMap>;

} // namespace GenApi

#endif
