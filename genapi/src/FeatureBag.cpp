#include <GenApi/Persistence.h>

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/ICategory.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IInteger.h>
#include <GenApi/INode.h>
#include <GenApi/ISelector.h>

#include <algorithm>
#include <istream>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace GenApi {

namespace {

const char kMagicGuid[] = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";
const char kBaggerGuid[] = "{4709CB3C-7322-4460-84C3-DA11DDA09939}";
const char kVersion[] = "3.3.0";
// An integer selector is walked value by value only up to this many values; a wider one is
// stored with its current value alone.
constexpr int64_t kMaxIntegerSelectorValues = 64;

bool Persistable(IValue* value) {
    INode* node = value->GetNode();
    if (!node->IsStreamable() || node->GetPrincipalInterfaceType() == intfICommand ||
        node->GetPrincipalInterfaceType() == intfICategory)
        return false;
    try {
        EAccessMode mode = node->GetAccessMode();
        return IsReadable(mode) && IsWritable(mode);
    } catch (const GenICam::GenericException&) {
        return false;
    }
}

// The values a selector is stored under, in order; empty when it is not walked.
std::vector<gcstring> SelectorValues(IValue* value) {
    std::vector<gcstring> values;
    auto* selector = dynamic_cast<ISelector*>(value);
    FeatureList_t selected;
    if (!selector || !selector->IsSelector())
        return values;
    selector->GetSelectedFeatures(selected);
    if (selected.empty())
        return values;
    if (auto* enumeration = dynamic_cast<IEnumeration*>(value)) {
        StringList_t symbolics;
        try {
            enumeration->GetSymbolics(symbolics);
        } catch (const GenICam::GenericException&) {
            return values;
        }
        values.assign(symbolics.begin(), symbolics.end());
    } else if (auto* integer = dynamic_cast<IInteger*>(value)) {
        int64_t min = 0, max = 0, inc = 0;
        try {
            min = integer->GetMin();
            max = integer->GetMax();
            inc = integer->GetInc();
        } catch (const GenICam::GenericException&) {
            return values;
        }
        if (inc <= 0 || max < min ||
            static_cast<uint64_t>(max) - static_cast<uint64_t>(min) >=
                static_cast<uint64_t>(inc) * kMaxIntegerSelectorValues)
            return values;
        for (int64_t v = min; v <= max; v += inc) {
            values.push_back(std::to_string(v).c_str());
            if (max - v < inc)
                break;
        }
    }
    return values;
}

class BagWriter {
public:
    BagWriter(gcstring_vector& names, gcstring_vector& values, int maxEntries,
              const gcstring_vector* filter)
        : m_names(names), m_values(values), m_maxEntries(maxEntries), m_filter(filter) {}

    void StoreMap(INodeMap* nodeMap) {
        std::vector<IValue*> order;
        std::set<INode*> seen;
        CollectCategory(nodeMap->GetNode("Root"), order, seen);
        NodeList_t nodes;
        nodeMap->GetNodes(nodes);
        for (INode* node : nodes)
            if (auto* value = dynamic_cast<IValue*>(node); value && seen.insert(node).second)
                order.push_back(value);
        for (IValue* value : order)
            if (!m_stored.count(value->GetNode()) && !StoredUnderSelector(value))
                Store(value);
    }

private:
    void CollectCategory(INode* node, std::vector<IValue*>& order, std::set<INode*>& seen) {
        auto* category = dynamic_cast<ICategory*>(node);
        if (!category || !seen.insert(node).second)
            return;
        FeatureList_t features;
        category->GetFeatures(features);
        for (IValue* feature : features) {
            INode* featureNode = feature->GetNode();
            if (dynamic_cast<ICategory*>(featureNode))
                CollectCategory(featureNode, order, seen);
            else if (seen.insert(featureNode).second)
                order.push_back(feature);
        }
    }

    bool Wanted(IValue* value) {
        if (!m_filter)
            return true;
        gcstring name = value->GetNode()->GetName();
        return std::find(m_filter->begin(), m_filter->end(), name) != m_filter->end();
    }

    // Such a feature is written in its selector's walk, once per selector value.
    bool StoredUnderSelector(IValue* value) {
        auto* selected = dynamic_cast<ISelector*>(value);
        FeatureList_t selecting;
        if (selected)
            selected->GetSelectingFeatures(selecting);
        return std::any_of(selecting.begin(), selecting.end(), [this](IValue* selector) {
            return Wanted(selector) && Persistable(selector) && !SelectorValues(selector).empty();
        });
    }

    void Store(IValue* value) {
        INode* node = value->GetNode();
        m_stored.insert(node);
        if (!Wanted(value) || !Persistable(value) || m_walking.count(node))
            return;
        std::vector<gcstring> walk = SelectorValues(value);
        gcstring original;
        if (walk.empty() || !TryRead(value, original)) {
            Emit(value);
            return;
        }
        m_walking.insert(node);
        FeatureList_t selected;
        dynamic_cast<ISelector*>(value)->GetSelectedFeatures(selected);
        for (const gcstring& selectorValue : walk) {
            if (!TryWrite(value, selectorValue))
                continue;
            Emit(value);
            for (IValue* feature : selected)
                Store(feature);
        }
        TryWrite(value, original);
        Emit(value);
        m_walking.erase(node);
    }

    static bool TryRead(IValue* value, gcstring& text) {
        try {
            text = value->ToString();
            return true;
        } catch (const GenICam::GenericException&) {
            return false;
        }
    }

    static bool TryWrite(IValue* value, const gcstring& text) {
        try {
            value->FromString(text);
            return true;
        } catch (const GenICam::GenericException&) {
            return false;
        }
    }

    // A feature that cannot be read right now has no value to keep.
    void Emit(IValue* value) {
        gcstring text;
        if (m_maxEntries >= 0 && static_cast<int64_t>(m_names.size()) >= m_maxEntries)
            return;
        if (!TryRead(value, text))
            return;
        m_names.push_back(value->GetNode()->GetName());
        m_values.push_back(text);
    }

    gcstring_vector& m_names;
    gcstring_vector& m_values;
    int m_maxEntries;
    const gcstring_vector* m_filter;
    std::set<INode*> m_stored;
    // Selectors whose values are being walked: a description whose selectors select each other
    // must not walk them forever.
    std::set<INode*> m_walking;
};

class BagReader {
public:
    BagReader(INodeMap* nodeMap, bool verify, gcstring_vector* errors)
        : m_map(nodeMap), m_verify(verify), m_errors(errors) {}

    bool Load(const gcstring_vector& names, const gcstring_vector& values) {
        std::vector<size_t> failed;
        for (size_t previous = SIZE_MAX;;) {
            failed = WritePass(names, values);
            if (failed.empty() || failed.size() >= previous)
                break;
            previous = failed.size();
        }
        if (m_verify)
            VerifyPass(names, values, failed);
        if (m_errors)
            for (const std::string& failure : m_failures)
                m_errors->push_back(failure.c_str());
        return m_failures.empty();
    }

private:
    // Returns the entries that failed; only the last pass's failures are reported.
    std::vector<size_t> WritePass(const gcstring_vector& names, const gcstring_vector& values) {
        std::vector<size_t> failed;
        m_failures.clear();
        for (size_t i = 0; i < names.size(); ++i) {
            auto* value = dynamic_cast<IValue*>(m_map->GetNode(names[i]));
            try {
                if (!value)
                    throw LOGICAL_ERROR_EXCEPTION("The node map has no such feature");
                value->FromString(values[i], m_verify);
            } catch (const GenICam::GenericException& e) {
                Fail(names[i], e.GetDescription());
                failed.push_back(i);
            }
        }
        return failed;
    }

    // Selectors are set again as the bag lists them, so that every other feature is read under
    // the selector values it was stored with. Entries that could not be written are not
    // reported twice.
    void VerifyPass(const gcstring_vector& names, const gcstring_vector& values,
                    const std::vector<size_t>& failed) {
        for (size_t i = 0; i < names.size(); ++i) {
            if (std::find(failed.begin(), failed.end(), i) != failed.end())
                continue;
            auto* value = dynamic_cast<IValue*>(m_map->GetNode(names[i]));
            try {
                auto* selector = dynamic_cast<ISelector*>(value);
                if (selector && selector->IsSelector()) {
                    value->FromString(values[i], true);
                    continue;
                }
                gcstring actual = value->ToString(true);
                if (actual != values[i])
                    Fail(names[i],
                         "reads back '" + actual.str() + "' instead of '" + values[i].str() + "'");
            } catch (const GenICam::GenericException& e) {
                Fail(names[i], e.GetDescription());
            }
        }
    }

    void Fail(const gcstring& name, const std::string& problem) {
        m_failures.push_back("Feature '" + name.str() + "': " + problem);
    }

    INodeMap* m_map;
    bool m_verify;
    gcstring_vector* m_errors;
    std::vector<std::string> m_failures;
};

void StripCarriageReturn(std::string& line) {
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
}

} // namespace

void CFeatureBag::PersistFeature(IValue& item) {
    gcstring text = item.ToString();
    m_Names.push_back(item.GetNode()->GetName());
    m_Values.push_back(text);
}

int64_t CFeatureBag::StoreToBag(INodeMap* pNodeMap, const int MaxNumPersistSkriptEntries,
                                gcstring_vector* pFeatureFilter) {
    if (!pNodeMap)
        throw INVALID_ARGUMENT_EXCEPTION("StoreToBag needs a node map");
    m_Names.clear();
    m_Values.clear();
    BagWriter(m_Names, m_Values, MaxNumPersistSkriptEntries, pFeatureFilter).StoreMap(pNodeMap);
    return static_cast<int64_t>(m_Names.size());
}

bool CFeatureBag::LoadFromBag(INodeMap* pNodeMap, bool Verify, gcstring_vector* pErrorList) {
    if (!pNodeMap)
        throw INVALID_ARGUMENT_EXCEPTION("LoadFromBag needs a node map");
    return BagReader(pNodeMap, Verify, pErrorList).Load(m_Names, m_Values);
}

bool CFeatureBag::operator==(const CFeatureBag& other) const {
    return m_BagName == other.m_BagName && m_Names == other.m_Names && m_Values == other.m_Values;
}

gcstring CFeatureBag::ToString() const {
    std::ostringstream text;
    text << *this;
    return text.str().c_str();
}

std::ostream& operator<<(std::ostream& os, const CFeatureBag& bag) {
    os << "# " << kMagicGuid << "\n";
    os << "# GenApi persistence file (version " << kVersion << ")\n";
    os << "# " << bag.m_BagName.str() << "\n";
    for (size_t i = 0; i < bag.m_Names.size(); ++i)
        os << bag.m_Names[i].str() << '\t' << bag.m_Values[i].str() << "\n";
    return os;
}

// A value may contain blanks: the name ends at the first tab (or, in hand-written files, at the
// first blank) and the value is the rest of the line.
std::istream& operator>>(std::istream& is, CFeatureBag& bag) {
    std::string line;
    if (!std::getline(is, line))
        throw RUNTIME_EXCEPTION("The stream is eof");
    if (line.find(kBaggerGuid) != std::string::npos)
        throw RUNTIME_EXCEPTION("The stream has been created using the CFeatureBagger class thus "
                                "must be restored using the CFeatureBagger class as well");
    if (line.find(kMagicGuid) == std::string::npos)
        throw RUNTIME_EXCEPTION("The stream is not a GenApi feature stream since it is missing "
                                "the magic GUID in the first line");
    bag.m_Names.clear();
    bag.m_Values.clear();
    while (std::getline(is, line)) {
        StripCarriageReturn(line);
        if (line.empty() || line[0] == '#')
            continue;
        size_t split = line.find('\t');
        if (split == std::string::npos)
            split = line.find(' ');
        std::string name = line.substr(0, split);
        std::string value = split == std::string::npos ? std::string() : line.substr(split + 1);
        bag.m_Names.push_back(name.c_str());
        bag.m_Values.push_back(value.c_str());
    }
    return is;
}

} // namespace GenApi
