// The library's logger. Records are JSON objects handed to the logging transport, which carries
// them to the other processes sharing the configured ports and hands back those to be written
// here: to the console, a text file and a JSON file, each served by a thread of its own. What is
// logged, where, and at which level is set by "morlu_log.conf" in the working directory, read
// once when the logger is built; without a valid one the logger stays silent.
#ifndef ORVAN_ALOGGER_H
#define ORVAN_ALOGGER_H

#include <MorluLog/Callbacks.h>
#include <nlohmann/json_fwd.hpp>

#include <cstdint>

namespace Orvan {

class IDevice;

class ALogger : public MorluLog::ILogFn, public MorluLog::IFilterFn, public MorluLog::IFilterOutFn {
public:
    // Level numbers: a lower one is more severe; the configured level admits every record at or
    // below it.
    static constexpr int32_t kFatal = 100;
    static constexpr int32_t kError = 200;
    static constexpr int32_t kWarn = 300;
    static constexpr int32_t kInfo = 400;
    static constexpr int32_t kDebug = 500;
    static constexpr int32_t kVerbose = 600;

    ALogger();
    ~ALogger();
    ALogger(const ALogger&) = delete;
    ALogger& operator=(const ALogger&) = delete;

    // The level entry points need no logger object; without one every record is dropped.
    static void Fatal(const char* message);
    static void Fatal(const char* userid, const char* message);
    static void Error(const char* message);
    static void Error(const char* userid, const char* message);
    static void Warn(const char* message);
    static void Warn(const char* userid, const char* message);
    static void Info(const char* message);
    static void Info(const char* userid, const char* message);
    static void Debug(const char* message);
    static void Debug(const char* userid, const char* message);
    static void Verbose(const char* message);
    static void Verbose(const char* userid, const char* message);
    // The device forms tag the record with the device's serial number; a null device logs the
    // message alone.
    static void Fatal(IDevice* device, const char* message);
    static void Error(IDevice* device, const char* message);
    static void Warn(IDevice* device, const char* message);
    static void Info(IDevice* device, const char* message);
    static void Debug(IDevice* device, const char* message);
    static void Verbose(IDevice* device, const char* message);

    // Stamps the record with the module "Orvan" and the current time, then sends it.
    static void Log(nlohmann::json record);
    // Hands the record to the transport; false when the logger is silent.
    static bool SendLog(nlohmann::json record);

    void OnLog(const char* record) override;
    bool OnFilter(const char* record) override;
    bool OnFilterOut(const char* record) override;

private:
    void configure();

    uint16_t m_inPort = 0;
    uint16_t m_outPort = 0;
    int32_t m_level = kInfo;
};

} // namespace Orvan

#endif
