// The interfaces of the foreign producers as the system module lists them, after its own: each
// under its producer's name ("<name>::<its id>"), so ids stay unique across producers. Also what
// the system's node map shows about the producers that were skipped.
#ifndef ORVAN_GENTL_GENTL_FOREIGNINTERFACES_H
#define ORVAN_GENTL_GENTL_FOREIGNINTERFACES_H

#include "ForeignProducer.h"
#include "ProducerLoader.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class ForeignInterfaces {
public:
    // A producer whose interface list cannot be read joins the skipped ones.
    ForeignInterfaces(std::vector<std::shared_ptr<ForeignProducer>> producers,
                      std::vector<ProducerSkip> skipped);
    ~ForeignInterfaces();

    // Every producer's TLUpdateInterfaceList; true when the combined list changed.
    bool Update();
    uint32_t Count() const;
    std::string Id(uint32_t index) const;
    std::string ProducerPath(uint32_t index) const;
    bool Knows(const std::string& id) const;
    // TLGetInterfaceInfo of the producer; INTERFACE_INFO_ID is the id listed here.
    void Info(const std::string& id, GenTL::INTERFACE_INFO_CMD cmd, GenTL::INFO_DATATYPE* type,
              void* buffer, size_t* size) const;
    // TLOpenInterface of the producer; our handle of it, whose parent is systemHandle.
    void* Open(const std::string& id, void* systemHandle) const;
    // Closes every producer's system module and forgets all their handles.
    void Close();

    const std::vector<ProducerSkip>& Skipped() const { return m_skipped; }

private:
    struct Entry {
        std::shared_ptr<ForeignProducer> producer;
        std::string foreignId;
        std::string id;
    };

    static std::vector<Entry> ReadList(const std::shared_ptr<ForeignProducer>& producer);
    Entry Find(const std::string& id) const;
    std::vector<Entry> Listed(const ForeignProducer* producer) const;

    std::vector<std::shared_ptr<ForeignProducer>> m_producers;
    std::vector<ProducerSkip> m_skipped;
    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries;
};

} // namespace Producer
} // namespace Orvan

#endif
