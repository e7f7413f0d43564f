// One of the producer's interfaces as the system holds it: its module wrapper, port, node map
// and the devices opened through it.
#ifndef ORVAN_CORE_INTERFACE_H
#define ORVAN_CORE_INTERFACE_H

#include "Port.h"
#include "TLInterface.h"

#include <Base/GCString.h>
#include <GenApi/INodeMap.h>

#include <mutex>
#include <vector>

namespace Orvan {

class IDevice;

class Interface {
public:
    // Builds the interface's port and node map. The system keeps ownership of tlInterface: it
    // closes and deletes it before deleting this object.
    Interface(TLInterface* tlInterface, const GenICam::gcstring& id);
    Interface(const Interface&) = delete;
    Interface& operator=(const Interface&) = delete;
    virtual ~Interface();

    virtual TLInterface* GetTLInterface();
    // Null when the interface serves no readable description.
    virtual GenApi::INodeMap* GetNodeMap();
    virtual GenICam::gcstring GetId();

    // The devices opened through this interface; not owned.
    void AddDevice(IDevice* device);
    void RemoveDevice(IDevice* device);

private:
    TLInterface* m_tlInterface;
    Port m_port;
    GenICam::gcstring m_id;
    GenApi::INodeMap* m_nodeMap;
    std::mutex m_devicesMutex;
    std::vector<IDevice*> m_devices;
};

} // namespace Orvan

#endif
