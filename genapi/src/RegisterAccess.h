// The register part of IntReg, MaskedIntReg, FloatReg, StringReg and Register nodes: where the
// register lies, how long it is, which port reaches it, and the cached copy of its bytes.
#ifndef ORVAN_GENAPI_REGISTERACCESS_H
#define ORVAN_GENAPI_REGISTERACCESS_H

#include "NodeDescription.h"

#include <GenApi/Types.h>

#include <cstdint>
#include <vector>

namespace GenApi {
namespace detail {

class Node;
class PortNode;

class RegisterAccess {
public:
    void Link(Node& owner, const NodeDescription& description);

    int64_t Address() const;
    int64_t Length() const;
    EAccessMode AccessMode() const;
    EEndianess Endianess() const { return m_endianess; }

    // Reads Length() bytes, from the cache when it holds them.
    const std::vector<uint8_t>& Read(bool ignoreCache);
    void Write(const uint8_t* data, int64_t length);
    void DropCache() { m_cacheValid = false; }
    bool CacheValid() const { return m_cacheValid; }
    // Another register wrote [address, address + length) on the same port: a cached copy of
    // any of those bytes is stale, and so is everything computed from it.
    void Overwritten(int64_t address, int64_t length);

private:
    struct IndexTerm {
        Node* index;
        Node* offsetNode;
        int64_t offset;
    };

    static int64_t AddressOf(Node* node);

    Node* m_owner = nullptr;
    int64_t m_constantAddress = 0;
    std::vector<Node*> m_addressNodes;
    std::vector<IndexTerm> m_indexTerms;
    int64_t m_constantLength = 0;
    Node* m_lengthNode = nullptr;
    PortNode* m_port = nullptr;
    EAccessMode m_accessMode = RO;
    EEndianess m_endianess = LittleEndian;
    std::vector<uint8_t> m_cache;
    // Where the cached bytes were read from: the address may depend on other nodes.
    int64_t m_cacheAddress = 0;
    bool m_cacheValid = false;
};

} // namespace detail
} // namespace GenApi

#endif
