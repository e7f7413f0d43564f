#ifndef GENAPI_INODEMAP_H
#define GENAPI_INODEMAP_H

#include <GenApi/Container.h>
#include <GenApi/INode.h>
#include <GenApi/IPort.h>
#include <GenApi/Synch.h>

namespace GenApi {

struct INodeMap {
    virtual void GetNodes(NodeList_t& nodes) const = 0;
    virtual INode* GetNode(const gcstring& name) const = 0;
    virtual void InvalidateNodes() const = 0;
    // Connects the port to the port node of that name; false if there is none.
    virtual bool Connect(IPort* port, const gcstring& portName) const = 0;
    // Connects the port to the map's first port node ("Device" if it exists).
    virtual bool Connect(IPort* port) const = 0;
    virtual gcstring GetDeviceName() = 0;
    virtual void Poll(int64_t elapsedTime) = 0;
    virtual CLock& GetLock() const = 0;
    virtual uint64_t GetNumNodes() const = 0;
    virtual ~INodeMap() = default;
};

} // namespace GenApi

#endif
