// Images and short text commands between processes on this machine, over UDP on the loopback
// address. One object may hold a sender with its destination ports and a listener on one port.
#ifndef ORVAN_SOCKET_H
#define ORVAN_SOCKET_H

#include <Orvan/IImage.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Orvan {

class Socket {
public:
    Socket();
    virtual ~Socket();
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    void OpenSender();
    // Appends 127.0.0.1:port; every send goes to each destination in the order they were added.
    void AddDestination(uint16_t port);
    void SendCommand(const char* message);
    void SendImage(IImage* image);

    void OpenListener(uint16_t port);
    // A new factory image, which the caller destroys through the image factory, or null when
    // nothing usable arrived or the listener was closed.
    IImage* ReceiveImage();
    // Images in arrival order until a receive gives nothing.
    std::vector<IImage*> ReceiveImages();
    // One command datagram; empty when the listener was closed.
    std::string ReceiveMessage();

    void CloseSender();
    // May be called from another thread while a receive waits: that receive then ends quietly.
    void CloseListener();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
    std::atomic<bool> m_listenerClosed{false};
};

} // namespace Orvan

#endif
