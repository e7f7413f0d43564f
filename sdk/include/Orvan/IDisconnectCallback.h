// Told, on the system's polling thread, whenever a device's connection state changes.
#ifndef ORVAN_IDISCONNECTCALLBACK_H
#define ORVAN_IDISCONNECTCALLBACK_H

namespace Orvan {

class IDevice;

class IDisconnectCallback {
public:
    virtual ~IDisconnectCallback() = default;
    // Called on a loss and on a return alike; IDevice::IsConnected tells them apart. Must not
    // register or deregister disconnect callbacks.
    virtual void OnDeviceDisconnected(IDevice* device) = 0;
};

} // namespace Orvan

#endif
