#include "log/ALogger.h"

#include "LogTestSupport.h"
#include <MorluLog/MorluLog.h>
#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <thread>

namespace {

using namespace std::chrono_literals;
using namespace OrvanTest;
using nlohmann::json;
using Orvan::ALogger;
using Strings = std::vector<std::string>;

std::string LocalStamp(std::time_t when = std::time(nullptr)) {
    std::tm local{};
    localtime_r(&when, &local);
    char stamp[16];
    std::strftime(stamp, sizeof(stamp), "%Y%m%d%H%M%S", &local);
    return stamp;
}

// The level names of a text file's lines, in order.
Strings LevelNames(const std::string& text) {
    Strings names;
    for (const std::string& line : Lines(text)) {
        std::string level =
            (AfterClock(line) + std::string(13, ' ')).substr(6, 7); // after " :: [ "
        names.push_back(level.erase(0, level.find_first_not_of(' ')));
    }
    return names;
}

void LogEveryLevel() {
    ALogger::Fatal("fatal");
    ALogger::Error("error");
    ALogger::Warn("warn");
    ALogger::Info("info");
    ALogger::Debug("debug");
    ALogger::Verbose("verbose");
    ALogger::Log({{"userid", ""}, {"message", "between warn and info"}, {"level", 350}});
}

std::string Changed(const char* group, const char* key, const json* value) {
    json config = Configuration();
    value ? void(config[group][key] = *value) : void(config[group].erase(key));
    return config.dump();
}

// A configuration the logger cannot use leaves it silent: nothing printed, sent or written.
TEST(ALoggerSilence, UnusableConfigurationsWriteAndSendNothing) {
    const json text = "61001", tooLarge = 70000, negative = -1, fraction = 400.5, yes = "yes";
    const std::pair<const char*, std::string> cases[] = {
        {"empty", ""},
        {"malformed", "{\"ports\": {"},
        {"not an object", "[1, 2]"},
        {"no orvan_in", Changed("ports", "orvan_in", nullptr)},
        {"no ez_in", Changed("ports", "ez_in", nullptr)},
        {"no level", Changed("levels", "orvan", nullptr)},
        {"no console switch", Changed("logging", "console", nullptr)},
        {"port as text", Changed("ports", "orvan_in", &text)},
        {"port too large", Changed("ports", "orvan_out", &tooLarge)},
        {"negative port", Changed("ports", "ez_in", &negative)},
        {"fractional level", Changed("levels", "orvan", &fraction)},
        {"switch as text", Changed("logging", "console", &yes)}};
    const auto expectSilent = [](const char* name) {
        testing::internal::CaptureStdout();
        {
            ALogger logger;
            LogEveryLevel();
            EXPECT_FALSE(ALogger::SendLog({{"level", 100}})) << name;
        }
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << name;
        EXPECT_EQ(FileNames().size(), 1u) << name << ": no log file";
    };
    {
        WorkingDirectory dir;
        WriteFile("unrelated", "");
        expectSilent("no configuration");
    }
    for (const auto& [name, configuration] : cases) {
        WorkingDirectory dir;
        WriteFile("morlu_log.conf", configuration);
        expectSilent(name);
    }
}

struct LevelCase {
    int configured;
    Strings written;
};

void PrintTo(const LevelCase& levelCase, std::ostream* out) {
    *out << "level " << levelCase.configured;
}

class ALoggerLevels : public ::testing::TestWithParam<LevelCase> {};

TEST_P(ALoggerLevels, ConfiguredLevelAdmitsEveryRecordAtOrBelowIt) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration(GetParam().configured));
    {
        ALogger logger;
        LogEveryLevel();
    }
    EXPECT_EQ(LevelNames(ReadFile(LogFile(".log"))), GetParam().written);
    EXPECT_EQ(json::parse(ReadFile(LogFile(".log.json"))).size(), GetParam().written.size());
}

INSTANTIATE_TEST_SUITE_P(
    Levels, ALoggerLevels,
    ::testing::Values(LevelCase{100, {"FATAL"}},
                      LevelCase{400, {"FATAL", "ERROR", "WARNING", "INFO", "NOLOG"}},
                      LevelCase{
                          600, {"FATAL", "ERROR", "WARNING", "INFO", "DEBUG", "VERBOSE", "NOLOG"}}),
    [](const auto& info) { return "Level" + std::to_string(info.param.configured); });

// The level 500 is split over two lines and read whole.
TEST(ALoggerConfiguration, LinesAreJoinedWithoutSeparators) {
    WorkingDirectory dir;
    std::string text = Configuration(400).dump(4);
    text.replace(text.find("\"orvan\": 400"), 12, "\"orvan\": 5\n00");
    WriteFile("morlu_log.conf", text);
    {
        ALogger logger;
        ALogger::Debug("admitted at 500");
        ALogger::Verbose("refused at 500");
    }
    EXPECT_EQ(LevelNames(ReadFile(LogFile(".log"))), Strings{"DEBUG"});
}

TEST(ALoggerFormat, SimpleFormatComposesTheLine) {
    const std::time_t seconds = 1700000000;
    std::tm local{};
    localtime_r(&seconds, &local);
    char clock[32];
    std::strftime(clock, sizeof(clock), "[ %H:%M:%S.042 ] :: [ ", &local);
    json record = {{"userid", "cam7"},
                   {"message", "frame lost"},
                   {"level", 300},
                   {"module", "Orvan"},
                   {"timestamp", "1700000000042"}};
    EXPECT_EQ(Orvan::simpleFormat(record.dump()),
              clock + std::string("WARNING ] :: [     Orvan ] ||>  (cam7) frame lost\n"));
    record["userid"] = "";
    record["level"] = 350;
    EXPECT_EQ(Orvan::simpleFormat(record.dump()),
              clock + std::string("  NOLOG ] :: [     Orvan ] ||>  frame lost\n"));
    record["timestamp"] = "soon";
    EXPECT_THROW(Orvan::simpleFormat(record.dump()), std::invalid_argument);
    record["timestamp"] = "99999999999999999999";
    EXPECT_THROW(Orvan::simpleFormat(record.dump()), std::out_of_range);
}

// The console and the text file print the same lines, made from the JSON file's records.
TEST(ALoggerFormat, ConsoleAndTextFileCarryTheJsonFileRecords) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    testing::internal::CaptureStdout();
    {
        ALogger logger;
        ALogger::Info("cam7", "hello");
        ALogger::Error("no user");
    }
    const std::string console = testing::internal::GetCapturedStdout();
    const json records = json::parse(ReadFile(LogFile(".log.json")));
    ASSERT_EQ(records.size(), 2u);
    const std::string lines =
        Orvan::simpleFormat(records[0].dump()) + Orvan::simpleFormat(records[1].dump());
    EXPECT_EQ(ReadFile(LogFile(".log")), lines);
    EXPECT_NE(console.find(lines), std::string::npos) << console;
    EXPECT_EQ(AfterClock(Lines(lines)[0]), " :: [    INFO ] :: [     Orvan ] ||>  (cam7) hello");
}

TEST(ALoggerJsonFile, NothingOrOneRecordKeepsTheLayout) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    { ALogger logger; }
    EXPECT_EQ(ReadFile(LogFile(".log.json")), "[\n\n]");
    EXPECT_EQ(ReadFile(LogFile(".log")), "");

    const auto before = std::chrono::system_clock::now();
    {
        ALogger logger;
        ALogger::Warn("sn-1", "one");
    }
    const auto after = std::chrono::system_clock::now();
    const std::string text = ReadFile(LogFile(".log.json"));
    ASSERT_EQ(text.substr(0, 3) + text.substr(text.size() - 2), "[\n\t\n]");
    const json record = json::parse(text.substr(3, text.size() - 5));
    EXPECT_EQ(json::parse(text), json::array({record}));
    EXPECT_EQ(record.size(), 5u);
    EXPECT_EQ(record["userid"], "sn-1");
    EXPECT_EQ(record["message"], "one");
    EXPECT_EQ(record["level"], 300);
    EXPECT_EQ(record["module"], "Orvan");
    using std::chrono::milliseconds;
    const milliseconds stamp(std::stoll(record["timestamp"].get<std::string>()));
    EXPECT_GE(stamp, std::chrono::duration_cast<milliseconds>(before.time_since_epoch()));
    EXPECT_LE(stamp, std::chrono::duration_cast<milliseconds>(after.time_since_epoch()));
}

// Many threads, and texts that need escaping or are not UTF-8 at all.
TEST(ALoggerJsonFile, ManyRecordsFromManyThreadsStayOneArray) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    const Strings texts = {"plain", "\"quoted\"", "back\\slash", "two\nlines", "\xff not utf-8"};
    constexpr size_t kThreads = 4, kPerThread = 100;
    {
        ALogger logger;
        std::vector<std::thread> threads;
        for (size_t t = 0; t < kThreads; ++t) {
            threads.emplace_back([&, t] {
                for (size_t i = 0; i < kPerThread; ++i) {
                    ALogger::Info(texts[i % texts.size()].c_str(), texts[t].c_str());
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    const std::string text = ReadFile(LogFile(".log.json"));
    const json records = json::parse(text);
    ASSERT_EQ(records.size(), kThreads * kPerThread);
    EXPECT_EQ(Lines(text).size(), kThreads * kPerThread + 2) << "one record per line";
    for (size_t t = 0; t < kThreads; ++t) {
        const auto count = std::count_if(records.begin(), records.end(),
                                         [&](const json& r) { return r["message"] == texts[t]; });
        EXPECT_EQ(count, kPerThread) << texts[t];
    }
    EXPECT_EQ(std::count_if(records.begin(), records.end(),
                            [](const json& r) { return r["userid"] == "\xef\xbf\xbd not utf-8"; }),
              kThreads * kPerThread / texts.size())
        << "invalid UTF-8 is replaced, not thrown on";
}

TEST(ALoggerFiles, NamedAfterTheLocalTimeOfOpening) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    const std::string before = LocalStamp();
    {
        ALogger logger;
        ALogger::Info("named");
    }
    const std::string after = LocalStamp();
    const std::string text = LogFile(".log"), json = LogFile(".log.json");
    EXPECT_EQ(FileNames(), (std::set<std::string>{"morlu_log.conf", text, json}));
    for (const std::string& name : {text, json}) {
        const std::string stamp = name.substr(6, 14);
        EXPECT_TRUE(std::all_of(stamp.begin(), stamp.end(), ::isdigit)) << name;
        EXPECT_LE(before, stamp);
        EXPECT_GE(after, stamp);
    }
}

// Whatever second the logger starts in, the files of an earlier run in that second are replaced.
TEST(ALoggerFiles, EarlierRunInTheSameSecondIsTruncated) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    const std::time_t now = std::time(nullptr);
    for (std::time_t second = now; second < now + 5; ++second) {
        WriteFile("orvan_" + LocalStamp(second) + ".log", "earlier run\n");
        WriteFile("orvan_" + LocalStamp(second) + ".log.json", "[\n\t\"earlier run\"\n]");
    }
    const std::string stamp = LocalStamp();
    {
        ALogger logger;
        ALogger::Info("later run");
    }
    EXPECT_EQ(Lines(ReadFile("orvan_" + stamp + ".log")).size(), 1u);
    const json records = json::parse(ReadFile("orvan_" + stamp + ".log.json"));
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0]["message"], "later run");
}

// Another process with the same ports: its records are written here once; this process's own
// are not written twice although it listens on the port it sends to.
TEST(ALoggerProcesses, RecordsOfAnotherProcessArrive) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    fs::create_directory("peer");
    WriteConfiguration(Configuration(400, false), "peer");
    {
        ALogger logger;
        ALogger::Info("local", "before the peer");
        ASSERT_EQ(WaitExit(Spawn({ORVAN_LOG_PEER, "peer", "from the peer"}, false)), 0);
        const auto deadline = std::chrono::steady_clock::now() + 5s;
        while (ReadFile(LogFile(".log")).find("from the peer") == std::string::npos &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(20ms);
        }
        std::this_thread::sleep_for(300ms);
    }
    const Strings lines = Lines(ReadFile(LogFile(".log")));
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find("[    INFO ] :: [     Orvan ] ||>  (local) before the peer"),
              std::string::npos);
    EXPECT_NE(lines[1].find("[ WARNING ] :: [     Orvan ] ||>  (peer) from the peer"),
              std::string::npos);
}

// Whatever another process sends, the sinks go on and the JSON file stays an array.
TEST(ALoggerProcesses, UnreadableRecordsAreSkipped) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    {
        ALogger logger;
        MorluLog::IMorluLog* other = MorluLog::Init();
        ASSERT_TRUE(other->SetupPort(TestPort(3)));
        other->RegisterPort(TestPort(1));
        for (
            const char* record :
            {"not json", "[1]", "{\"level\": 400}",
             R"({"userid": "", "message": "m", "level": 400, "module": "M", "timestamp": "later"})"}) {
            other->Send(record);
        }
        other->ReleasePort(TestPort(3));
        MorluLog::Deinit(other);
        std::this_thread::sleep_for(300ms);
        ALogger::Info("after them");
    }
    const json records = json::parse(ReadFile(LogFile(".log.json")));
    ASSERT_EQ(records.size(), 4u) << "all but the text that is not JSON";
    EXPECT_EQ(records[3]["message"], "after them");
    EXPECT_EQ(Lines(ReadFile(LogFile(".log"))).size(), 1u);
}

} // namespace

// A record about a device names the device by its serial number; a null device logs the message
// alone. The system's own logger reads the configuration when the system opens.
TEST(ALoggerDevice, RecordsAboutADeviceCarryItsSerialNumber) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    testing::internal::CaptureStdout();
    Orvan::ISystem* system = Orvan::OpenSystem();
    system->UpdateDevices(1000);
    std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
    ASSERT_FALSE(devices.empty());
    Orvan::IDevice* device = system->CreateDevice(devices[0]);
    ALogger::Warn(device, "about the camera");
    ALogger::Info(static_cast<Orvan::IDevice*>(nullptr), "about nobody");
    system->DestroyDevice(device);
    Orvan::CloseSystem(system);
    testing::internal::GetCapturedStdout();

    const json records = json::parse(ReadFile(LogFile(".log.json")));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0]["userid"], devices[0].SerialNumber().c_str());
    EXPECT_FALSE(records[0]["userid"].get<std::string>().empty());
    EXPECT_EQ(records[1]["userid"], "");
    EXPECT_EQ(records[1]["message"], "about nobody");
}
