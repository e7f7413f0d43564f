// Where a node's value lives: a constant of the description (which writes then change), another
// node (pValue), or one of several chosen by an index node (pIndex with pValueIndexed,
// ValueIndexed, pValueDefault, ValueDefault). Writes also go to every pValueCopy node.
#ifndef ORVAN_GENAPI_VALUESOURCE_H
#define ORVAN_GENAPI_VALUESOURCE_H

#include "NodeDescription.h"

#include <GenApi/Types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace GenApi {
namespace detail {

class Node;

class ValueSource {
public:
    struct Constant {
        int64_t intValue = 0;
        double floatValue = 0.0;
        std::string text;
    };

    // Reads the value elements of the description; `owner` records the links.
    void Link(Node& owner, const NodeDescription& description);

    bool IsSet() const { return m_hasDefault || m_index; }
    // The node the value currently comes from, or null for a constant.
    Node* CurrentNode() const;
    // The node the value comes from now, or null for a constant (CurrentNode, but a pIndex that
    // cannot be read gives the default).
    Node* ValueNode() const;
    // The node whose limits the owner takes over when it has none of its own: the last of the
    // value nodes (pValue and its pValueCopy companions) the description lists.
    Node* LimitsNode() const;

    EAccessMode AccessMode() const;
    bool CacheValid() const;

    int64_t GetInt(bool verify, bool ignoreCache) const;
    double GetFloat(bool verify, bool ignoreCache) const;
    const std::string& GetString(bool verify, bool ignoreCache) const;
    void SetInt(int64_t value, bool verify);
    void SetFloat(double value, bool verify);
    void SetString(const std::string& value, bool verify);

private:
    struct Slot {
        Node* node = nullptr;
        Constant constant;
    };
    struct IndexedSlot {
        int64_t index;
        Slot slot;
    };

    Slot& Current() const;
    static Slot MakeSlot(Node& owner, const Property& property, bool isNode);

    Slot m_default;
    bool m_hasDefault = false;
    Node* m_index = nullptr;
    std::vector<IndexedSlot> m_indexed;
    std::vector<Node*> m_copies;
    Node* m_lastListed = nullptr;
};

} // namespace detail
} // namespace GenApi

#endif
