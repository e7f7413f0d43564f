// Where a node's value lives: a constant of the description (which writes then change), another
// node (pValue), or one of several chosen by an index node (pIndex with pValueIndexed,
// ValueIndexed, pValueDefault, ValueDefault). Writes also go to every pValueCopy node.
#ifndef ORVAN_GENAPI_VALUESOURCE_H
#define ORVAN_GENAPI_VALUESOURCE_H

#include "NodeDescription.h"
#include "ValueAccess.h"

#include <GenApi/Types.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace GenApi {

struct IFloat;
struct IInteger;

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
    // The limits a value written here must respect when the owner gives none of its own: the
    // value goes to every value node (pValue and its pValueCopy companions), so it has to fit
    // all of them.
    template <class T>
    T CommonMin(T none) const {
        T min = none;
        for (Node* node : WrittenNodes())
            min = std::max(min, ReadMin<T>(node));
        return min;
    }
    template <class T>
    T CommonMax(T none) const {
        T max = none;
        for (Node* node : WrittenNodes())
            max = std::min(max, ReadMax<T>(node));
        return max;
    }

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
        // The node's numeric interfaces, looked up once: reads are the hot path.
        IInteger* integer = nullptr;
        IFloat* real = nullptr;
        Constant constant;
    };
    struct IndexedSlot {
        int64_t index;
        Slot slot;
    };

    Slot& Current() const;
    std::vector<Node*> WrittenNodes() const;
    static Slot MakeSlot(Node& owner, const Property& property, bool isNode);

    Slot m_default;
    bool m_hasDefault = false;
    Node* m_index = nullptr;
    std::vector<IndexedSlot> m_indexed;
    std::vector<Node*> m_copies;
    Node* m_lastListed = nullptr;
    std::vector<Node*> m_listed;
};

} // namespace detail
} // namespace GenApi

#endif
