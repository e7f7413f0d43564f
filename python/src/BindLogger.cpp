// The SDK's logger: its configuration file, a logger object that applies it, and records.
#include "Bindings.h"
#include "Errors.h"
#include "PyCamera.h"

#include <Orvan/ALogger.h>
#include <nlohmann/json.hpp>
#include <pybind11/stl.h>

#include <fstream>
#include <map>
#include <memory>

namespace py = pybind11;

namespace OrvanPy {
namespace {

using Record = void (*)(const char*, const char*);

int32_t LevelNumber(const std::string& level) {
    static const std::map<std::string, int32_t> levels = {
        {"fatal", Orvan::ALogger::kFatal}, {"error", Orvan::ALogger::kError},
        {"warn", Orvan::ALogger::kWarn},   {"info", Orvan::ALogger::kInfo},
        {"debug", Orvan::ALogger::kDebug}, {"verbose", Orvan::ALogger::kVerbose}};
    auto it = levels.find(level);
    if (it == levels.end())
        ThrowInvalidArgument("log level is one of fatal, error, warn, info, debug, verbose; not '" +
                             level + "'");
    return it->second;
}

void WriteConfiguration(const std::string& path, const std::string& level, bool console, bool file,
                        bool json, std::vector<int> ports) {
    if (ports.size() != 3)
        ThrowInvalidArgument("ports are three: (out, in, peer-in)");
    const nlohmann::json config = {
        {"ports", {{"orvan_out", ports[0]}, {"orvan_in", ports[1]}, {"ez_in", ports[2]}}},
        {"levels", {{"orvan", LevelNumber(level)}}},
        {"logging", {{"console", console}, {"file", file}, {"json", json}}}};
    std::ofstream out(path, std::ios::trunc);
    if (!(out << config.dump(2) << '\n'))
        ThrowInvalidArgument("cannot write '" + path + "'");
}

void Log(const std::string& level, const std::string& message, const std::string& user) {
    static const std::map<std::string, Record> records = {
        {"fatal", &Orvan::ALogger::Fatal}, {"error", &Orvan::ALogger::Error},
        {"warn", &Orvan::ALogger::Warn},   {"info", &Orvan::ALogger::Info},
        {"debug", &Orvan::ALogger::Debug}, {"verbose", &Orvan::ALogger::Verbose}};
    LevelNumber(level);
    records.at(level)(user.c_str(), message.c_str());
}

class PyLogger {
public:
    PyLogger() {
        py::gil_scoped_release release;
        m_logger = std::make_unique<Orvan::ALogger>();
    }
    void Close() {
        py::gil_scoped_release release;
        m_logger.reset();
    }

private:
    std::unique_ptr<Orvan::ALogger> m_logger;
};

} // namespace

void BindLogger(py::module_& m) {
    m.def("write_logging_configuration", &WriteConfiguration, py::arg("path") = "morlu_log.conf",
          py::arg("level") = "info", py::arg("console") = true, py::arg("file") = false,
          py::arg("json") = false, py::arg("ports") = std::vector<int>{50610, 50611, 50612},
          "Writes the logger's configuration file. The SDK reads 'morlu_log.conf' from the "
          "working directory when a Logger is made.");
    m.def("log", &Log, py::arg("level"), py::arg("message"), py::arg("user") = "",
          "Writes a record through the SDK's logger at level fatal, error, warn, info, debug or "
          "verbose; dropped while no Logger is alive or above its level.");
    py::class_<PyLogger>(m, "Logger",
                         "The SDK's logger, configured from morlu_log.conf in the working "
                         "directory; silent without a valid one. Records are written while it "
                         "lives: use it in a with block or call close().")
        .def(py::init<>())
        .def("close", &PyLogger::Close)
        .def("__enter__", [](py::object self) { return self; })
        .def("__exit__", [](PyLogger& self, py::args) { self.Close(); });
}

} // namespace OrvanPy
