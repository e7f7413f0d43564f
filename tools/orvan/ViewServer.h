// The viewer's web server: the page, and the JSON and image requests through which the page
// drives the camera. Every request passes the access guard first; a request the server cannot
// take gets a 4xx status with {"error": "..."}.
#ifndef ORVAN_TOOLS_ORVAN_VIEWSERVER_H
#define ORVAN_TOOLS_ORVAN_VIEWSERVER_H

#include "AccessGuard.h"
#include "CameraScope.h"
#include "LiveCamera.h"

#include <httplib.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

namespace Orvan {
namespace Cli {

class ViewServer {
public:
    // Without a camera opened yet, the page offers the scope's cameras to choose from.
    ViewServer(CameraScope& scope, const AccessGuard& guard);
    ~ViewServer();
    ViewServer(const ViewServer&) = delete;
    ViewServer& operator=(const ViewServer&) = delete;

    // Opens the camera the user named and starts streaming it.
    void OpenCamera(const std::string& name);
    // Port 0 takes a free one. Returns the port; throws ToolError when it cannot be bound.
    int Bind(const std::string& address, int port);
    // Serves until Stop(); returns false when serving failed.
    bool Serve();
    void Stop();

private:
    void AddPageRoutes();
    void AddCameraRoutes();
    void AddImageRoutes();
    void AddFeatureRoutes();
    LiveCamera& Camera();
    std::string Serial() const;

    CameraScope& m_scope;
    const AccessGuard& m_guard;
    httplib::Server m_server;
    std::mutex m_openMutex;
    std::unique_ptr<LiveCamera> m_owned;
    std::atomic<LiveCamera*> m_camera{nullptr}; // set once, when a camera is opened
};

} // namespace Cli
} // namespace Orvan

#endif
