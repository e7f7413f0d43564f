// Feature bags: the values of a node map's streamable features as name/value pairs, and the
// text files ("GenApi persistence files") they are saved in.
#ifndef GENAPI_PERSISTENCE_H
#define GENAPI_PERSISTENCE_H

#include <GenApi/INodeMap.h>
#include <GenApi/IValue.h>

#include <cstdint>
#include <iosfwd>

namespace GenApi {

struct IPersistScript {
    virtual void SetInfo(const gcstring& info) = 0;
    virtual void PersistFeature(IValue& item) = 0;
    virtual ~IPersistScript() = default;
};

class CFeatureBag : public IPersistScript {
public:
    void SetInfo(const gcstring& info) override { m_Info = info; }
    const gcstring& GetInfo() const { return m_Info; }
    // Appends the feature with its current value in string form. A float whose display form
    // rounds its value is kept with as many digits as it takes to read the same value back.
    void PersistFeature(IValue& item) override;
    void SetBagName(const gcstring& bagName) { m_BagName = bagName; }
    const gcstring& GetBagName() const { return m_BagName; }

    // Replaces the content with every streamable feature that can be read and written, in
    // category order (from "Root"), then the ones no category reaches. A feature selected by an
    // enumeration or a small integer range is stored once per selector value, after the
    // selector's own entry; the selector is then set back and stored with its original value.
    // pFeatureFilter, when given, names the only features to store. Returns the entry count.
    int64_t StoreToBag(INodeMap* pNodeMap, const int MaxNumPersistSkriptEntries = -1,
                       gcstring_vector* pFeatureFilter = nullptr);
    // Writes the values in bag order (with Verify, verified against the features' limits), in
    // passes: after each pass the bag is replayed, selectors set again and every other entry
    // read back, and the entries that failed or read back another value are written again,
    // until all hold, a pass ends where an earlier one did, or eight passes are done. So a
    // feature that is locked, unavailable or limited until a later entry is set, or whose value
    // is computed from a later entry, takes its value too. An entry stored under a selector
    // value that the map refuses is not written (it would land in another selector value's
    // instance); where the selector is not available at all, its features take the entries
    // stored under the value the bag leaves the selector at. Failures are collected as
    // "Feature '<name>': <problem>", never thrown; a refused write of a value the feature holds
    // already is none, and with Verify, values that read back otherwise are failures too. True
    // when there were none.
    bool LoadFromBag(INodeMap* pNodeMap, bool Verify = true, gcstring_vector* pErrorList = nullptr);

    bool operator==(const CFeatureBag& other) const;
    // The bag in file form.
    gcstring ToString() const;

    // The persistence file: the magic line, the version line, "# " + bag name, then one
    // "name<TAB>value" line per entry.
    friend std::ostream& operator<<(std::ostream& os, const CFeatureBag& bag);
    // Replaces the entries with those of the stream. Throws RuntimeException for an empty
    // stream, a first line without the magic GUID, or a file of the feature bagger.
    friend std::istream& operator>>(std::istream& is, CFeatureBag& bag);

private:
    gcstring m_BagName;
    gcstring m_Info;
    gcstring_vector m_Names;
    gcstring_vector m_Values;
};

} // namespace GenApi

#endif
