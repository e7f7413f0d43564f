#include "Interface.h"

#include "feature/NodeMapUtility.h"

#include <Orvan/IDevice.h>

#include <algorithm>

namespace Orvan {

Interface::Interface(TLInterface* tlInterface, const GenICam::gcstring& id)
    : m_tlInterface(tlInterface), m_port(tlInterface), m_id(id),
      m_nodeMap(InitNodeMap(tlInterface, m_port)) {}

// Devices opened here stay open when their interface goes; they only forget it.
Interface::~Interface() {
    std::lock_guard<std::mutex> lock(m_devicesMutex);
    for (IDevice* device : m_devices)
        device->ResetInterface();
    DestroyNodeMap(m_nodeMap);
}

TLInterface* Interface::GetTLInterface() {
    return m_tlInterface;
}

GenApi::INodeMap* Interface::GetNodeMap() {
    return m_nodeMap;
}

GenICam::gcstring Interface::GetId() {
    return m_id;
}

void Interface::AddDevice(IDevice* device) {
    std::lock_guard<std::mutex> lock(m_devicesMutex);
    m_devices.push_back(device);
}

void Interface::RemoveDevice(IDevice* device) {
    std::lock_guard<std::mutex> lock(m_devicesMutex);
    m_devices.erase(std::remove(m_devices.begin(), m_devices.end(), device), m_devices.end());
}

} // namespace Orvan
