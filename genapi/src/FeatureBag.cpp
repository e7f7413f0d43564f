#include <GenApi/Persistence.h>

#include "TextParsing.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/ICategory.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/INode.h>
#include <GenApi/ISelector.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <map>
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

// The value in string form, as the bag keeps it. A float's display form (its notation and
// precision) may round the value; the bag then keeps as many digits as it takes to read the
// same value back, so that loading restores it exactly.
gcstring PersistentText(IValue& value) {
    gcstring text = value.ToString();
    auto* real = dynamic_cast<IFloat*>(&value);
    if (!real)
        return text;
    double exact = real->GetValue();
    if (std::isnan(exact) || std::strtod(text.c_str(), nullptr) == exact)
        return text;
    char digits[64];
    for (int precision = 7; precision <= 17; ++precision) {
        std::snprintf(digits, sizeof digits, "%.*g", precision, exact);
        if (std::strtod(digits, nullptr) == exact)
            break;
    }
    return digits;
}

// Whether a value read back from a feature is the bag's value, also where the two are written
// differently ("0x10" and "16", "true" and "1", "1e3" and "1000").
bool SameValue(IValue* value, const gcstring& actual, const gcstring& expected) {
    if (actual == expected)
        return true;
    switch (value->GetNode()->GetPrincipalInterfaceType()) {
    case intfIFloat: {
        char* actualEnd = nullptr;
        char* expectedEnd = nullptr;
        double a = std::strtod(actual.c_str(), &actualEnd);
        double b = std::strtod(expected.c_str(), &expectedEnd);
        return actualEnd != actual.c_str() && expectedEnd != expected.c_str() &&
               (a == b || (std::isnan(a) && std::isnan(b)));
    }
    case intfIInteger: {
        int64_t a = 0, b = 0;
        return detail::TryParseInt64(actual.str(), a) && detail::TryParseInt64(expected.str(), b) &&
               a == b;
    }
    case intfIBoolean: {
        auto truth = [](const std::string& text) {
            if (text == "1" || text == "true" || text == "True" || text == "TRUE")
                return 1;
            if (text == "0" || text == "false" || text == "False" || text == "FALSE")
                return 0;
            return -1;
        };
        int a = truth(actual.str());
        return a >= 0 && a == truth(expected.str());
    }
    default:
        return false;
    }
}

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
            text = PersistentText(*value);
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

// Loads a bag into a node map. The entries are written in bag order, in passes: a write may fail
// because its feature is locked, unavailable or limited by features that come later in the bag,
// and a value computed from other features (a converter's formula, a limit) may read differently
// once those are written. So after each pass the entries are replayed (selectors set again,
// every other entry read back), and whatever failed or reads back differently is written again
// in the next pass, until everything holds, nothing changes any more, or the passes run out.
class BagReader {
public:
    BagReader(INodeMap* nodeMap, bool verify, gcstring_vector* errors)
        : m_map(nodeMap), m_verify(verify), m_errors(errors) {}

    bool Load(const gcstring_vector& names, const gcstring_vector& values) {
        Prepare(names, values);
        std::vector<std::vector<Outcome>> seen;
        for (int pass = 0; pass < kMaxPasses; ++pass) {
            WritePass(pass == 0);
            CheckPass();
            std::vector<Outcome> outcomes;
            for (const Entry& entry : m_entries)
                outcomes.push_back(entry.outcome);
            bool done = std::all_of(m_entries.begin(), m_entries.end(), [](const Entry& entry) {
                return !entry.node || entry.outcome == Outcome::Holds;
            });
            // A pass that ends where an earlier one ended will not get any further.
            if (done || std::find(seen.begin(), seen.end(), outcomes) != seen.end())
                break;
            seen.push_back(std::move(outcomes));
        }
        return Report();
    }

private:
    // Enough for features that depend on each other in chains of a few links, written in the
    // reverse order; descriptions whose writes undo each other stop earlier, as soon as a pass
    // ends where an earlier one did.
    static constexpr int kMaxPasses = 8;

    enum class Outcome {
        Holds,   // written (or already held), and reads back the bag's value
        Failed,  // the write was refused
        Skipped, // not written: a selector of the feature could not be set
        Differs, // written, but reads back another value
    };

    struct Entry {
        gcstring name;
        gcstring value;
        IValue* node = nullptr;
        bool selector = false;
        // Selectors of this feature that the bag sets itself.
        std::vector<INode*> selectors;
        Outcome outcome = Outcome::Failed;
        std::string problem;
    };

    void Prepare(const gcstring_vector& names, const gcstring_vector& values) {
        std::set<INode*> setByBag;
        m_finalValue.clear();
        m_entries.resize(names.size());
        for (size_t i = 0; i < names.size(); ++i) {
            Entry& entry = m_entries[i];
            entry.name = names[i];
            entry.value = i < values.size() ? values[i] : gcstring();
            entry.node = dynamic_cast<IValue*>(m_map->GetNode(names[i]));
            if (!entry.node) {
                entry.problem = "The node map has no such feature";
                continue;
            }
            auto* selector = dynamic_cast<ISelector*>(entry.node);
            entry.selector = selector && selector->IsSelector();
            setByBag.insert(entry.node->GetNode());
            if (entry.selector)
                m_finalValue[entry.node->GetNode()] = entry.value;
        }
        for (Entry& entry : m_entries) {
            auto* selected = dynamic_cast<ISelector*>(entry.node);
            if (!selected)
                continue;
            FeatureList_t selecting;
            selected->GetSelectingFeatures(selecting);
            for (IValue* selector : selecting)
                if (setByBag.count(selector->GetNode()))
                    entry.selectors.push_back(selector->GetNode());
        }
    }

    // The first pass writes every entry; later ones set the selectors again and write only the
    // entries that do not hold yet.
    void WritePass(bool first) {
        m_selectorState.clear();
        for (Entry& entry : m_entries) {
            if (!entry.node)
                continue;
            if (!first && !entry.selector && entry.outcome == Outcome::Holds)
                continue;
            if (Blocked(entry))
                continue;
            Write(entry);
            Record(entry);
        }
    }

    void Write(Entry& entry) {
        try {
            entry.node->FromString(entry.value, m_verify);
            entry.outcome = Outcome::Holds;
        } catch (const GenICam::GenericException& e) {
            // A refused write changes nothing where the feature holds the value already.
            entry.outcome = Holds(entry) ? Outcome::Holds : Outcome::Failed;
            entry.problem = e.GetDescription();
        }
    }

    // Replays the bag: selectors are set again, so that every other entry is read under the
    // selector values it was stored with.
    void CheckPass() {
        m_selectorState.clear();
        for (Entry& entry : m_entries) {
            if (!entry.node)
                continue;
            if (entry.selector) {
                if (!Blocked(entry))
                    Write(entry);
                Record(entry);
                continue;
            }
            if (entry.outcome != Outcome::Holds && entry.outcome != Outcome::Differs)
                continue;
            if (Blocked(entry))
                continue;
            gcstring actual;
            if (!Read(entry.node, actual))
                continue; // write-only: nothing to compare
            if (SameValue(entry.node, actual, entry.value)) {
                entry.outcome = Outcome::Holds;
            } else {
                entry.outcome = Outcome::Differs;
                entry.problem =
                    "reads back '" + actual.str() + "' instead of '" + entry.value.str() + "'";
            }
        }
    }

    // A feature whose selector could not be set would be written to (or read from) the
    // instance of another selector value: it is left alone and reported. A selector that is not
    // available at all offers no choice; its features have the one instance, which takes the
    // values stored under the selector value the bag ends with.
    bool Blocked(Entry& entry) {
        for (INode* selector : entry.selectors) {
            auto state = m_selectorState.find(selector);
            if (state == m_selectorState.end() || state->second.first)
                continue;
            if (state->second.second == m_finalValue[selector] && !IsAvailable(selector))
                continue;
            entry.outcome = Outcome::Skipped;
            entry.problem = "not written, since its selector '" + selector->GetName().str() +
                            "' could not be set to '" + state->second.second.str() + "'";
            return true;
        }
        return false;
    }

    void Record(const Entry& entry) {
        if (entry.selector)
            m_selectorState[entry.node->GetNode()] = {entry.outcome == Outcome::Holds, entry.value};
    }

    bool Holds(const Entry& entry) {
        gcstring actual;
        return Read(entry.node, actual) && SameValue(entry.node, actual, entry.value);
    }

    static bool Read(IValue* value, gcstring& text) {
        try {
            if (!IsReadable(value->GetNode()))
                return false;
            text = PersistentText(*value);
            return true;
        } catch (const GenICam::GenericException&) {
            return false;
        }
    }

    bool Report() {
        std::vector<std::string> failures;
        for (const Entry& entry : m_entries) {
            if (entry.node && entry.outcome == Outcome::Holds)
                continue;
            // Without verification nothing is read back to compare, so nothing is reported.
            if (entry.outcome == Outcome::Differs && !m_verify)
                continue;
            failures.push_back("Feature '" + entry.name.str() + "': " + entry.problem);
        }
        if (m_errors)
            for (const std::string& failure : failures)
                m_errors->push_back(failure.c_str());
        return failures.empty();
    }

    INodeMap* m_map;
    bool m_verify;
    gcstring_vector* m_errors;
    std::vector<Entry> m_entries;
    // Per selector the bag sets: whether its latest entry in this pass was set, and to what.
    std::map<INode*, std::pair<bool, gcstring>> m_selectorState;
    // Per selector the bag sets: the value of its last entry, which it is left at.
    std::map<INode*, gcstring> m_finalValue;
};

void StripCarriageReturn(std::string& line) {
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
}

} // namespace

void CFeatureBag::PersistFeature(IValue& item) {
    gcstring text = PersistentText(item);
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
