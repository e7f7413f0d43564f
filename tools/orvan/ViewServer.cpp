#include "ViewServer.h"

#include "ToolError.h"
#include "WebAssets.h"

#include <Base/GCException.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>

#include <sys/socket.h>

namespace Orvan {
namespace Cli {

namespace {

using Request = httplib::Request;
using Response = httplib::Response;

// How long a request for the next image waits before the page asks again.
constexpr std::chrono::milliseconds kFrameWait{2000};
// Feature files are a few kilobytes; nothing the page sends comes near this.
constexpr size_t kMaxBodyBytes = 4 * 1024 * 1024;
// Each browser holds a few connections open, one of them waiting for the next image.
constexpr size_t kServerThreads = 24;

// A request that the server understood but cannot take.
class RequestError : public std::runtime_error {
public:
    RequestError(int status, const std::string& message)
        : std::runtime_error(message), m_status(status) {}
    int Status() const { return m_status; }

private:
    int m_status;
};

void SendJson(Response& response, const nlohmann::json& body, int status = 200) {
    response.status = status;
    // Camera strings are not always UTF-8; a stray byte must not cost the whole answer.
    response.set_content(body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace),
                         "application/json");
}

void SendError(Response& response, int status, const std::string& message) {
    SendJson(response, {{"error", message}}, status);
}

void SendFile(Response& response, const std::string& content, const char* type,
              const std::string& fileName) {
    response.set_header("Content-Disposition", "attachment; filename=\"" + fileName + "\"");
    response.set_content(content, type);
}

nlohmann::json Body(const Request& request) {
    nlohmann::json body = nlohmann::json::parse(request.body, nullptr, false);
    if (body.is_discarded() || !body.is_object())
        throw RequestError(400, "the request body must be a JSON object");
    return body;
}

std::string TextField(const nlohmann::json& body, const char* key) {
    const auto found = body.find(key);
    if (found == body.end() || !found->is_string())
        throw RequestError(400, std::string("the request needs the text field '") + key + "'");
    return found->get<std::string>();
}

uint64_t AfterParam(const Request& request) {
    const std::string text = request.get_param_value("after");
    if (text.empty())
        return 0;
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 10);
    if (*end != '\0' || text.front() == '-')
        throw RequestError(400, "'after' must be an image sequence number");
    return value;
}

const char* ContentType(const std::string& path) {
    const std::string extension = path.substr(path.rfind('.') + 1);
    if (extension == "html")
        return "text/html; charset=utf-8";
    if (extension == "css")
        return "text/css; charset=utf-8";
    return "text/javascript; charset=utf-8";
}

const char* StatusText(int status) {
    switch (status) {
    case 400:
        return "malformed request";
    case 404:
        return "no such page or request";
    case 413:
        return "request too large";
    default:
        return "request refused";
    }
}

// Runs a request's handler; the ways it can refuse become 4xx answers with their message.
template <class Handler>
httplib::Server::Handler Guarded(Handler handler) {
    return [handler](const Request& request, Response& response) {
        try {
            handler(request, response);
        } catch (const RequestError& e) {
            SendError(response, e.Status(), e.what());
        } catch (const ToolError& e) {
            SendError(response, 422, e.what());
        } catch (const GenICam::GenericException& e) {
            SendError(response, 422, e.GetDescription());
        }
    };
}

nlohmann::json CameraList(CameraScope& scope, LiveCamera* open) {
    nlohmann::json cameras = nlohmann::json::array();
    for (const DeviceInfo& info : scope.Devices())
        cameras.push_back({{"model", info.ModelName().c_str()},
                           {"serial", info.SerialNumber().c_str()},
                           {"vendor", info.VendorName().c_str()},
                           {"ip", info.IpAddressStr().c_str()},
                           {"name", info.UserDefinedName().c_str()}});
    return {{"cameras", cameras},
            {"open", open ? nlohmann::json(scope.OpenedInfo().SerialNumber().c_str()) : nullptr}};
}

} // namespace

ViewServer::ViewServer(CameraScope& scope, const AccessGuard& guard)
    : m_scope(scope), m_guard(guard) {
    m_server.new_task_queue = [] { return new httplib::ThreadPool(kServerThreads); };
    m_server.set_payload_max_length(kMaxBodyBytes);
    // The library's default lets several servers share a port, which would split the page's
    // requests between two viewers: the port is this one's alone.
    m_server.set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    m_server.set_default_headers({{"Cache-Control", "no-store"},
                                  {"X-Content-Type-Options", "nosniff"},
                                  {"Referrer-Policy", "no-referrer"}});
    m_server.set_pre_routing_handler([this](const Request& request, Response& response) {
        const Refusal refusal = m_guard.Check(request);
        if (refusal.status == 0)
            return httplib::Server::HandlerResponse::Unhandled;
        SendError(response, refusal.status, refusal.message);
        return httplib::Server::HandlerResponse::Handled;
    });
    m_server.set_error_handler(
        httplib::Server::HandlerWithResponse([](const Request&, Response& response) {
            if (!response.body.empty())
                return httplib::Server::HandlerResponse::Unhandled;
            SendError(response, response.status, StatusText(response.status));
            return httplib::Server::HandlerResponse::Handled;
        }));
    m_server.set_exception_handler([](const Request&, Response& response, std::exception_ptr) {
        SendError(response, 500, "internal error");
    });
    AddPageRoutes();
    AddCameraRoutes();
    AddImageRoutes();
    AddFeatureRoutes();
}

ViewServer::~ViewServer() {
    Stop();
}

void ViewServer::AddPageRoutes() {
    for (size_t i = 0; i < kWebAssetCount; ++i) {
        const WebAsset& asset = kWebAssets[i];
        const std::string path = asset.path;
        auto serve = [asset, path](const Request&, Response& response) {
            response.set_header("Content-Security-Policy",
                                "default-src 'self'; img-src 'self' blob: data:");
            response.set_content(reinterpret_cast<const char*>(asset.data), asset.size,
                                 ContentType(path));
        };
        m_server.Get(path, serve);
        if (path == "/index.html")
            m_server.Get("/", serve);
    }
}

void ViewServer::AddCameraRoutes() {
    m_server.Get("/api/cameras", Guarded([this](const Request&, Response& response) {
                     SendJson(response, CameraList(m_scope, m_camera));
                 }));
    m_server.Post("/api/open", Guarded([this](const Request& request, Response& response) {
                      OpenCamera(TextField(Body(request), "serial"));
                      SendJson(response, CameraList(m_scope, m_camera));
                  }));
    m_server.Get("/api/status", Guarded([this](const Request&, Response& response) {
                     SendJson(response, Camera().Status());
                 }));
    m_server.Post("/api/acquisition", Guarded([this](const Request& request, Response& response) {
                      const std::string action = TextField(Body(request), "action");
                      if (action == "start")
                          Camera().Start();
                      else if (action == "stop")
                          Camera().Stop();
                      else if (action == "single")
                          Camera().SingleFrame();
                      else
                          throw RequestError(400, "unknown action '" + action +
                                                      "' (use start, stop or single)");
                      SendJson(response, Camera().Status());
                  }));
}

void ViewServer::AddImageRoutes() {
    m_server.Get("/api/frame", Guarded([this](const Request& request, Response& response) {
                     const auto shown = Camera().Frames().After(AfterParam(request), kFrameWait);
                     if (!shown) {
                         response.status = 204; // nothing new: the page simply asks again
                         return;
                     }
                     response.set_header("X-Frame-Sequence", std::to_string(shown->sequence));
                     response.set_content(reinterpret_cast<const char*>(shown->jpeg.data()),
                                          shown->jpeg.size(), "image/jpeg");
                 }));
    m_server.Get("/api/image.png", Guarded([this](const Request&, Response& response) {
                     uint64_t frameId = 0;
                     const std::string png = Camera().ShownImagePng(frameId);
                     SendFile(response, png, "image/png",
                              Serial() + "-" + std::to_string(frameId) + ".png");
                 }));
}

void ViewServer::AddFeatureRoutes() {
    m_server.Get("/api/features", Guarded([this](const Request&, Response& response) {
                     SendJson(response, Camera().Features());
                 }));
    m_server.Post("/api/feature", Guarded([this](const Request& request, Response& response) {
                      const nlohmann::json body = Body(request);
                      SendJson(response,
                               Camera().Write(TextField(body, "name"), TextField(body, "value")));
                  }));
    m_server.Post("/api/command", Guarded([this](const Request& request, Response& response) {
                      Camera().Execute(TextField(Body(request), "name"));
                      SendJson(response, {{"done", true}});
                  }));
    m_server.Get("/api/settings", Guarded([this](const Request&, Response& response) {
                     SendFile(response, Camera().SaveSettings(), "text/plain; charset=utf-8",
                              Serial() + ".txt");
                 }));
    m_server.Post("/api/settings", Guarded([this](const Request& request, Response& response) {
                      Camera().LoadSettings(TextField(Body(request), "content"));
                      SendJson(response, {{"loaded", true}});
                  }));
}

std::string ViewServer::Serial() const {
    return m_scope.OpenedInfo().SerialNumber().c_str();
}

LiveCamera& ViewServer::Camera() {
    LiveCamera* camera = m_camera;
    if (!camera)
        throw RequestError(409, "no camera is open yet; choose one first");
    return *camera;
}

void ViewServer::OpenCamera(const std::string& name) {
    std::lock_guard<std::mutex> lock(m_openMutex);
    if (m_owned)
        throw RequestError(409, "a camera is open already");
    IDevice& device = m_scope.Open(name);
    m_owned = std::make_unique<LiveCamera>(device, m_scope.OpenedInfo());
    m_owned->Start();
    m_camera = m_owned.get();
}

int ViewServer::Bind(const std::string& address, int port) {
    const bool bound = port == 0 ? (port = m_server.bind_to_any_port(address)) > 0
                                 : m_server.bind_to_port(address, port);
    if (!bound)
        throw ToolError("cannot listen on " + address + " port " + std::to_string(port) +
                        " (in use, or not an address of this machine)");
    return port;
}

bool ViewServer::Serve() {
    return m_server.listen_after_bind();
}

void ViewServer::Stop() {
    m_server.stop();
}

} // namespace Cli
} // namespace Orvan
