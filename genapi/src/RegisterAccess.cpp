#include "RegisterAccess.h"

#include "Node.h"
#include "PortNode.h"
#include "TextParsing.h"
#include "ValueAccess.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>
#include <GenApi/IRegister.h>

#include <cinttypes>
#include <cstring>

namespace GenApi {
namespace detail {

namespace {

// Registers longer than this are refused rather than allocated: a length read from a device
// that does not hold a sensible value must not exhaust memory.
constexpr int64_t kMaxRegisterLength = 64 * 1024 * 1024;

} // namespace

void RegisterAccess::Link(Node& owner, const NodeDescription& description) {
    m_owner = &owner;
    for (const auto& property : description.properties) {
        const std::string& name = property.name;
        if (name == "Address")
            m_constantAddress += ParseInt64(property);
        else if (name == "pAddress") {
            Node* node = owner.Resolve(property);
            m_addressNodes.push_back(node);
            owner.AddReadingChild(node);
        } else if (name == "pIndex") {
            IndexTerm term{owner.Resolve(property), nullptr, 1};
            owner.AddReadingChild(term.index);
            if (const std::string* offset = property.Attribute("Offset")) {
                if (!TryParseInt64(*offset, term.offset))
                    throw RUNTIME_EXCEPTION("Invalid Offset '%s' at line %u", offset->c_str(),
                                            property.line);
            } else if (const std::string* offsetNode = property.Attribute("pOffset")) {
                Property reference{"pOffset", *offsetNode, {}, property.line};
                term.offsetNode = owner.Resolve(reference);
                owner.AddReadingChild(term.offsetNode);
            }
            m_indexTerms.push_back(term);
        } else if (name == "Length")
            m_constantLength = ParseInt64(property);
        else if (name == "pLength") {
            m_lengthNode = owner.Resolve(property);
            owner.AddReadingChild(m_lengthNode);
        } else if (name == "pPort") {
            Node* port = owner.Resolve(property);
            m_port = dynamic_cast<PortNode*>(port);
            if (!m_port)
                throw RUNTIME_EXCEPTION("Node '%s' at line %u names '%s' as its port, which is "
                                        "not a port",
                                        owner.Name().c_str(), property.line, property.text.c_str());
            owner.AddReadingChild(port);
            m_port->AddRegister(this);
        } else if (name == "AccessMode")
            m_accessMode = ParseAccessMode(property);
        else if (name == "Endianess")
            m_endianess = ParseEndianess(property);
    }
}

// A register named by pAddress lends its own address, so that fields can be placed relative to a
// block such as the image chunk; any other node lends its value.
int64_t RegisterAccess::AddressOf(Node* node) {
    if (auto* block = dynamic_cast<IRegister*>(node))
        return block->GetAddress();
    return ReadInt(node, false, false);
}

int64_t RegisterAccess::Address() const {
    uint64_t address = static_cast<uint64_t>(m_constantAddress);
    for (Node* node : m_addressNodes)
        address += static_cast<uint64_t>(AddressOf(node));
    for (const IndexTerm& term : m_indexTerms) {
        int64_t offset = term.offsetNode ? ReadInt(term.offsetNode, false, false) : term.offset;
        address += static_cast<uint64_t>(ReadInt(term.index, false, false)) *
                   static_cast<uint64_t>(offset);
    }
    return static_cast<int64_t>(address);
}

int64_t RegisterAccess::Length() const {
    return m_lengthNode ? ReadInt(m_lengthNode, false, false) : m_constantLength;
}

// The register can be reached only while its port and every node its address and length come
// from can be.
EAccessMode RegisterAccess::AccessMode() const {
    if (!m_port)
        return NI;
    EAccessMode mode = Combine(m_accessMode, m_port->GetAccessMode());
    auto restrict = [&mode](Node* node) {
        EAccessMode nodeMode = node->GetAccessMode();
        if (nodeMode == NI)
            mode = NI;
        else if (!IsReadable(nodeMode) && mode != NI)
            mode = NA;
    };
    for (Node* node : m_addressNodes)
        restrict(node);
    for (const IndexTerm& term : m_indexTerms) {
        restrict(term.index);
        if (term.offsetNode)
            restrict(term.offsetNode);
    }
    if (m_lengthNode)
        restrict(m_lengthNode);
    return mode;
}

const std::vector<uint8_t>& RegisterAccess::Read(bool ignoreCache) {
    if (m_cacheValid && !ignoreCache && m_owner->CachingMode() != NoCache)
        return m_cache;
    int64_t address = Address();
    int64_t length = Length();
    if (length < 0 || length > kMaxRegisterLength)
        throw OUT_OF_RANGE_EXCEPTION("Node '%s' has an unusable length of %" PRId64 " bytes",
                                     m_owner->Name().c_str(), length);
    if (!m_port)
        throw ACCESS_EXCEPTION("Node '%s' has no port", m_owner->Name().c_str());
    // Read in place: the buffer keeps its capacity from one read to the next.
    m_cacheValid = false;
    m_cache.resize(static_cast<size_t>(length));
    m_port->ReadLocked(m_cache.data(), address, length);
    m_cacheAddress = address;
    m_cacheValid = m_owner->CachingMode() != NoCache;
    return m_cache;
}

void RegisterAccess::Write(const uint8_t* data, int64_t length) {
    if (!m_port)
        throw ACCESS_EXCEPTION("Node '%s' has no port", m_owner->Name().c_str());
    int64_t address = Address();
    m_port->Write(data, address, length);
    if (m_owner->CachingMode() == WriteThrough) {
        m_cache.assign(data, data + length);
        m_cacheAddress = address;
        m_cacheValid = true;
    } else {
        m_cacheValid = false;
    }
    m_port->Written(address, length, this);
}

void RegisterAccess::Overwritten(int64_t address, int64_t length) {
    if (!m_cacheValid || m_cache.empty() || length <= 0)
        return;
    // Compared as unsigned offsets, so that ranges near the ends of the address space wrap
    // instead of overflowing.
    uint64_t cacheStart = static_cast<uint64_t>(m_cacheAddress);
    uint64_t writeStart = static_cast<uint64_t>(address);
    bool overlaps = writeStart - cacheStart < m_cache.size() ||
                    cacheStart - writeStart < static_cast<uint64_t>(length);
    if (!overlaps)
        return;
    m_owner->Forget();
    m_owner->Changed();
}

} // namespace detail
} // namespace GenApi
