// Finds the .cti files of the configured folders and loads each as a foreign producer. A file
// that cannot serve is skipped with the reason; nothing about a bad file can stop the others.
#ifndef ORVAN_GENTL_GENTL_PRODUCERLOADER_H
#define ORVAN_GENTL_GENTL_PRODUCERLOADER_H

#include "ForeignProducer.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

struct ProducerSkip {
    std::string path;
    std::string reason;
};

class ProducerLoader {
public:
    // ownFile: a path of this producer's own library, never loaded again through any name.
    explicit ProducerLoader(std::string ownFile) : m_ownFile(std::move(ownFile)) {}

    void LoadFolders(const std::vector<std::string>& folders);

    std::vector<std::shared_ptr<ForeignProducer>> TakeProducers() { return std::move(m_loaded); }
    const std::vector<ProducerSkip>& Skipped() const { return m_skipped; }

private:
    void LoadFile(const std::string& path);
    std::string UniqueName(const std::string& path);

    const std::string m_ownFile;
    std::vector<std::shared_ptr<ForeignProducer>> m_loaded;
    std::vector<ProducerSkip> m_skipped;
    std::set<std::string> m_names;
};

} // namespace Producer
} // namespace Orvan

#endif
