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
    // Appends the feature with its current value in string form.
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
    // Writes the values in bag order, in repeated passes while a pass fails less than the one
    // before (a feature may become writable only once a later one is set). With Verify, values
    // are written verified and then compared with what the features read back, selectors being
    // set again on the way. Failures are collected, never thrown; true when there were none.
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
