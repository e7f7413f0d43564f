// IntReg and MaskedIntReg nodes (StructEntry nodes become MaskedIntReg nodes): an integer stored
// in a register, optionally in a bit field of it.
#ifndef ORVAN_GENAPI_INTREGNODE_H
#define ORVAN_GENAPI_INTREGNODE_H

#include "IntegerBase.h"
#include "RegisterAccess.h"

namespace GenApi {
namespace detail {

class IntRegNode : public IntegerBase {
public:
    IntRegNode(NodeMap& map, const NodeDescription& description);
    void Link(const NodeDescription& description) override;
    void DropCache() override { m_register.DropCache(); }
    bool CacheValid() const override;

protected:
    bool KeepsValue() const override { return true; }
    EAccessMode InternalAccessMode() const override { return m_register.AccessMode(); }
    bool HasOwnCache() const override { return true; }
    ERepresentation DefaultRepresentation() override { return PureNumber; }
    int64_t RawValue(bool verify, bool ignoreCache) override;
    void WriteRaw(int64_t value, bool verify) override;
    int64_t RawMin() override;
    int64_t RawMax() override;

private:
    // The whole register as an unsigned number, in the register's byte order.
    uint64_t Assemble(const std::vector<uint8_t>& bytes) const;
    std::vector<uint8_t> Disassemble(uint64_t raw, size_t length) const;
    // Position of the field's lowest bit and its width, counted in the whole register.
    unsigned FieldShift(size_t length) const;
    unsigned FieldWidth(size_t length) const;

    RegisterAccess m_register;
    bool m_masked = false;
    bool m_signed = false;
    int64_t m_lsb = 0;
    int64_t m_msb = 0;
};

} // namespace detail
} // namespace GenApi

#endif
