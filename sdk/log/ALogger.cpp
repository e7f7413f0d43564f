#include "ALogger.h"

#include <Orvan/GenApiCustom.h>
#include <Orvan/IDevice.h>

#include <MorluLog/MorluLog.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <condition_variable>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <limits>
#include <mutex>
#include <queue>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace Orvan {

using nlohmann::json;

namespace {

// The transport handle; null while the logger is silent.
MorluLog::IMorluLog* g_pLogger = nullptr;
std::mutex g_loggerMutex;

// Each sink has its own queue, mutex, condition variable, stop flag and thread, so a slow disk
// holds up only its own sink and never the caller. A stop flag starts set: a sink that was never
// started has nothing to stop.
std::queue<std::string> _cQueue;
std::mutex _cMutex;
std::condition_variable _cCv;
bool _cKill = true;
std::thread _cTh;

std::queue<std::string> _jQueue;
std::mutex _jMutex;
std::condition_variable _jCv;
bool _jKill = true;
std::thread _jTh;

std::queue<std::string> _ffQueue;
std::mutex _ffMutex;
std::condition_variable _ffCv;
bool _ffKill = true;
std::thread _ffTh;

struct Sink {
    std::queue<std::string>& queue;
    std::mutex& mutex;
    std::condition_variable& cv;
    bool& kill;
    std::thread& thread;
};

Sink consoleSink() {
    return {_cQueue, _cMutex, _cCv, _cKill, _cTh};
}
Sink jsonSink() {
    return {_jQueue, _jMutex, _jCv, _jKill, _jTh};
}
Sink fileSink() {
    return {_ffQueue, _ffMutex, _ffCv, _ffKill, _ffTh};
}

void push(Sink sink, const char* record) {
    {
        std::lock_guard<std::mutex> lock(sink.mutex);
        sink.queue.emplace(record);
    }
    sink.cv.notify_all();
}

// Writes with the mutex released; ends only when the stop flag is seen with an empty queue, so
// every record queued before the stop is written.
template <typename Write>
void drain(Sink sink, Write write) {
    std::unique_lock<std::mutex> lock(sink.mutex);
    for (;;) {
        sink.cv.wait(lock, [&] { return !sink.queue.empty() || sink.kill; });
        while (!sink.queue.empty()) {
            std::string record = std::move(sink.queue.front());
            sink.queue.pop();
            lock.unlock();
            if (!record.empty()) {
                write(record);
            }
            lock.lock();
        }
        if (sink.kill) {
            return;
        }
    }
}

// A record from another process may not be one this logger can read; it is skipped rather than
// let end the sink's thread.
template <typename Output>
void writeFormatted(const std::string& record, Output& output) {
    std::string line;
    try {
        line = simpleFormat(record);
    } catch (const std::exception&) {
        return;
    }
    output << line << std::flush;
}

std::string localStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[16];
    std::strftime(stamp, sizeof(stamp), "%Y%m%d%H%M%S", &local);
    return stamp;
}

void consoleLoop() {
    drain(consoleSink(), [](const std::string& record) { writeFormatted(record, std::cout); });
}

void fileLoop() {
    std::ofstream file("orvan_" + localStamp() + ".log", std::ios::trunc);
    drain(fileSink(), [&](const std::string& record) { writeFormatted(record, file); });
}

// A text that is not JSON, which only another process can send, is left out so that the file
// stays one JSON array.
void jsonLoop() {
    std::ofstream file("orvan_" + localStamp() + ".log.json", std::ios::trunc);
    file << "[\n" << std::flush;
    const char* separator = "\t";
    drain(jsonSink(), [&](const std::string& record) {
        if (!json::accept(record)) {
            return;
        }
        file << separator << record << std::flush;
        separator = ",\n\t";
    });
    file << "\n]";
}

void start(Sink sink, void (*loop)()) {
    {
        std::lock_guard<std::mutex> lock(sink.mutex);
        sink.kill = false;
    }
    sink.thread = std::thread(loop);
}

void stop(Sink sink) {
    {
        std::lock_guard<std::mutex> lock(sink.mutex);
        sink.kill = true;
    }
    sink.cv.notify_all();
    if (sink.thread.joinable()) {
        sink.thread.join();
    }
}

// The configuration is one JSON text that may span lines; the lines are joined without
// separators. No file gives null, in which every key is missing.
json readConfiguration() {
    std::ifstream in("morlu_log.conf");
    if (!in) {
        return nullptr;
    }
    std::string joined;
    for (std::string line; std::getline(in, line);) {
        joined += line;
    }
    return json::parse(joined);
}

// The JSON library would truncate a fraction or wrap an out-of-range number without a word; such
// a value is as wrong as a missing key.
int64_t readInteger(const json& config, const char* group, const char* key, int64_t lowest,
                    int64_t highest) {
    const json& value = config.at(group).at(key);
    if (!value.is_number_integer()) {
        throw std::invalid_argument(std::string(group) + "/" + key + " is not an integer");
    }
    const int64_t number = value.get<int64_t>();
    if (number < lowest || number > highest) {
        throw std::out_of_range(std::string(group) + "/" + key + " is out of range");
    }
    return number;
}

uint16_t readPort(const json& config, const char* key) {
    return static_cast<uint16_t>(readInteger(config, "ports", key, 0, 65535));
}

bool readSwitch(const json& config, const char* key) {
    return config.at("logging").at(key).get<bool>();
}

const char* levelName(int level) {
    switch (level) {
    case ALogger::kFatal:
        return "FATAL";
    case ALogger::kError:
        return "ERROR";
    case ALogger::kWarn:
        return "WARNING";
    case ALogger::kInfo:
        return "INFO";
    case ALogger::kDebug:
        return "DEBUG";
    case ALogger::kVerbose:
        return "VERBOSE";
    default:
        return "NOLOG";
    }
}

void logAt(int32_t level, const char* userid, const char* message) {
    ALogger::Log({{"userid", userid}, {"message", message}, {"level", level}});
}

// A record about a device carries its serial number; reading it may throw, and that reaches the
// caller.
void logAt(int32_t level, IDevice* device, const char* message) {
    if (!device) {
        logAt(level, "", message);
        return;
    }
    GenICam::gcstring serial =
        GetNodeValue<GenICam::gcstring>(device->GetTLDeviceNodeMap(), "DeviceSerialNumber");
    logAt(level, serial.c_str(), message);
}

} // namespace

ALogger::ALogger() {
    std::lock_guard<std::mutex> lock(g_loggerMutex);
    try {
        configure();
    } catch (...) {
        MorluLog::Deinit(g_pLogger);
        g_pLogger = nullptr;
    }
}

void ALogger::configure() {
    const json config = readConfiguration();
    g_pLogger = MorluLog::Init();
    m_inPort = readPort(config, "orvan_in");
    m_outPort = readPort(config, "orvan_out");
    m_level = static_cast<int32_t>(readInteger(config, "levels", "orvan",
                                               std::numeric_limits<int32_t>::min(),
                                               std::numeric_limits<int32_t>::max()));
    g_pLogger->SetupPort(m_outPort);
    g_pLogger->RegisterPort(m_inPort);
    g_pLogger->RegisterPort(readPort(config, "ez_in"));
    g_pLogger->Listen(m_inPort);
    g_pLogger->RegisterLogFn(this);
    g_pLogger->RegisterFilterFn(this);
    g_pLogger->RegisterFilterOutFn(this);
    if (readSwitch(config, "console")) {
        start(consoleSink(), consoleLoop);
    }
    if (readSwitch(config, "json")) {
        start(jsonSink(), jsonLoop);
    }
    if (readSwitch(config, "file")) {
        start(fileSink(), fileLoop);
    }
}

ALogger::~ALogger() {
    {
        std::lock_guard<std::mutex> lock(g_loggerMutex);
        if (g_pLogger != nullptr) {
            g_pLogger->StopListening(m_inPort);
            g_pLogger->ReleasePort(m_outPort);
            MorluLog::Deinit(g_pLogger);
            g_pLogger = nullptr;
        }
    }
    stop(jsonSink());
    stop(consoleSink());
    stop(fileSink());
}

void ALogger::Fatal(const char* message) {
    logAt(kFatal, "", message);
}
void ALogger::Fatal(const char* userid, const char* message) {
    logAt(kFatal, userid, message);
}
void ALogger::Error(const char* message) {
    logAt(kError, "", message);
}
void ALogger::Error(const char* userid, const char* message) {
    logAt(kError, userid, message);
}
void ALogger::Warn(const char* message) {
    logAt(kWarn, "", message);
}
void ALogger::Warn(const char* userid, const char* message) {
    logAt(kWarn, userid, message);
}
void ALogger::Info(const char* message) {
    logAt(kInfo, "", message);
}
void ALogger::Info(const char* userid, const char* message) {
    logAt(kInfo, userid, message);
}
void ALogger::Debug(const char* message) {
    logAt(kDebug, "", message);
}
void ALogger::Debug(const char* userid, const char* message) {
    logAt(kDebug, userid, message);
}
void ALogger::Verbose(const char* message) {
    logAt(kVerbose, "", message);
}
void ALogger::Verbose(const char* userid, const char* message) {
    logAt(kVerbose, userid, message);
}

void ALogger::Log(json record) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    record["module"] = "Orvan";
    record["timestamp"] =
        std::to_string(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() / 1000000);
    SendLog(record);
}

// Invalid UTF-8 in a message is replaced rather than thrown on: logging must not fail the caller
// over the bytes of a text.
bool ALogger::SendLog(json record) {
    const std::string text = record.dump(-1, ' ', false, json::error_handler_t::replace);
    std::lock_guard<std::mutex> lock(g_loggerMutex);
    if (g_pLogger == nullptr) {
        return false;
    }
    g_pLogger->Send(text.c_str());
    return true;
}

// Every queue takes the record whether or not its sink runs: a queue without a thread keeps it,
// and a logger that starts that sink later in the process writes the backlog first.
void ALogger::OnLog(const char* record) {
    push(jsonSink(), record);
    push(consoleSink(), record);
    push(fileSink(), record);
}

bool ALogger::OnFilter(const char*) {
    return true;
}

bool ALogger::OnFilterOut(const char* record) {
    return m_level >= json::parse(record).at("level").get<int>();
}

std::string simpleFormat(const std::string& record) {
    const json parsed = json::parse(record);
    const long long milliseconds = std::stoll(parsed.at("timestamp").get<std::string>());
    const std::time_t seconds = static_cast<std::time_t>(milliseconds / 1000);
    std::tm local{};
    localtime_r(&seconds, &local);
    const std::string userid = parsed.at("userid").get<std::string>();

    std::ostringstream line;
    line << std::setfill('0') << "[ " << std::setw(2) << local.tm_hour << ':' << std::setw(2)
         << local.tm_min << ':' << std::setw(2) << local.tm_sec << '.' << std::setw(3)
         << milliseconds % 1000 << std::setfill(' ') << std::right << " ] :: [ " << std::setw(7)
         << levelName(parsed.at("level").get<int>()) << " ] :: [ " << std::setw(9)
         << parsed.at("module").get<std::string>() << " ] ||>  ";
    if (!userid.empty()) {
        line << '(' << userid << ") ";
    }
    line << parsed.at("message").get<std::string>() << '\n';
    return line.str();
}

void ALogger::Fatal(IDevice* device, const char* message) {
    logAt(kFatal, device, message);
}
void ALogger::Error(IDevice* device, const char* message) {
    logAt(kError, device, message);
}
void ALogger::Warn(IDevice* device, const char* message) {
    logAt(kWarn, device, message);
}
void ALogger::Info(IDevice* device, const char* message) {
    logAt(kInfo, device, message);
}
void ALogger::Debug(IDevice* device, const char* message) {
    logAt(kDebug, device, message);
}
void ALogger::Verbose(IDevice* device, const char* message) {
    logAt(kVerbose, device, message);
}

} // namespace Orvan
