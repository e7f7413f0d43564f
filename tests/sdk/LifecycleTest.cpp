#include "SpineTestSupport.h"
#include "core/Orvan.h"

#include <Orvan/OrvanApi.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

using SpineTest::Capture;
using SpineTest::Outcome;

namespace {

class NotASystem : public Orvan::ISystem {
public:
    std::vector<Orvan::InterfaceInfo> GetInterfaces() override { return {}; }
    void UpdateDevices(uint64_t) override {}
    void UpdateDevices(Orvan::InterfaceInfo, uint64_t) override {}
    std::vector<Orvan::DeviceInfo> GetDevices() override { return {}; }
    Orvan::IDevice* CreateDevice(Orvan::DeviceInfo) override { return nullptr; }
    void DestroyDevice(Orvan::IDevice*) override {}
    GenApi::INodeMap* GetTLSystemNodeMap() override { return nullptr; }
    GenApi::INodeMap* GetTLInterfaceNodeMap(Orvan::DeviceInfo) override { return nullptr; }
    void ForceIp(uint64_t, uint64_t, uint64_t, uint64_t) override {}
    void ForceIp(const char*, const char*, const char*, const char*) override {}
    void RegisterDeviceDisconnectCallback(Orvan::IDevice*, Orvan::IDisconnectCallback*) override {}
    void DeregisterDeviceDisconnectCallback(Orvan::IDisconnectCallback*) override {}
    void DeregisterAllDeviceDisconnectCallbacks() override {}
    void AddUnicastDiscoveryDevice(const char*) override {}
    void RemoveUnicastDiscoveryDevice(const char*) override {}
    std::vector<GenICam::gcstring> GetUnicastDiscoveryDevices() override { return {}; }
};

const char kAlreadyInitialized[] =
    "RuntimeException (GenTL::GC_ERR_RESOURCE_IN_USE): Library already initialized (must "
    "initialize only once) (Orvan, OpenSystem; GenTL::GCInitLib); ";

bool StartsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

// Runs a check that leaves the producer initialised for good in a child process; the child's
// exit code is the number of failed expectations.
#define EXPECT_IN_CHILD(body) EXPECT_EXIT(std::exit(body()), ::testing::ExitedWithCode(0), "")

} // namespace

TEST(Lifecycle, ImageFactoryIsOnExactlyWhileASystemIsOpen) {
    EXPECT_FALSE(Orvan::HasImageFactoryInit());
    for (int round = 0; round < 2; ++round) {
        Orvan::ISystem* system = Orvan::OpenSystem();
        EXPECT_TRUE(Orvan::HasImageFactoryInit());
        {
            std::lock_guard<std::mutex> lock(Orvan::g_factoryMutex);
            for (const Orvan::FactoryScratchPool& pool : Orvan::g_factoryPools) {
                EXPECT_EQ(pool.data, nullptr) << "a new system starts with empty pools";
                EXPECT_EQ(pool.size, 0u);
            }
            // Closing frees what the factory left in its pools (the sanitizer sees a leak).
            Orvan::g_factoryPools[1] = {new uint8_t[64], 64};
        }
        Orvan::CloseSystem(system);
        EXPECT_FALSE(Orvan::HasImageFactoryInit());
        EXPECT_EQ(Orvan::g_factoryPools[1].data, nullptr);
    }
}

TEST(Lifecycle, SecondOpenWhileOpenIsRefused) {
    Orvan::ISystem* system = Orvan::OpenSystem();
    Outcome second = Capture([] { Orvan::OpenSystem(); });
    EXPECT_EQ(second.className, "RuntimeException");
    EXPECT_TRUE(StartsWith(second.message, kAlreadyInitialized)) << second.message;
    Orvan::CloseSystem(system);
}

TEST(Lifecycle, ClosingNullOrAForeignObjectClosesNothing) {
    const std::string expected = "InvalidArgumentException: System is null (Orvan, CloseSystem)";
    NotASystem foreign;
    for (Orvan::ISystem* wrong :
         {static_cast<Orvan::ISystem*>(nullptr), static_cast<Orvan::ISystem*>(&foreign)}) {
        Outcome outcome = Capture([&] { Orvan::CloseSystem(wrong); });
        EXPECT_EQ(outcome.className, "InvalidArgumentException");
        EXPECT_EQ(outcome.message, expected);
    }
    // Nothing was de-initialised: a system opens and closes normally afterwards.
    Orvan::ISystem* system = Orvan::OpenSystem();
    EXPECT_NO_THROW(Orvan::CloseSystem(system));
}

TEST(Lifecycle, ProducerFailuresOfOpenAndCloseAreTranslated) {
    OrvanTC_FailCall("GCInitLib", 1, GenTL::GC_ERR_IO, "driver missing");
    Outcome init = Capture([] { Orvan::OpenSystem(); });
    EXPECT_EQ(init.className, "RuntimeException");
    EXPECT_EQ(init.message, "RuntimeException (GC_ERR_IO): Unable to initialize library (Orvan, "
                            "OpenSystem; GenTL::GCInitLib); driver missing");

    Orvan::ISystem* system = Orvan::OpenSystem();
    OrvanTC_FailCall("GCCloseLib", 1, GenTL::GC_ERR_BUSY, "still busy");
    Outcome close = Capture([&] { Orvan::CloseSystem(system); });
    EXPECT_EQ(close.message, "RuntimeException (GC_ERR_BUSY): Unable to close library (Orvan, "
                             "CloseSystem; GenTL::GCCloseLib); still busy");
    // The system went before the failing call; only the producer is left to close.
    EXPECT_FALSE(Orvan::HasImageFactoryInit());
    EXPECT_EQ(GenTL::GCCloseLib(), GenTL::GC_ERR_SUCCESS);
}

TEST(LifecycleDeathTest, FailedSystemOpenLeavesTheProducerInitialisedForGood) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_IN_CHILD([] {
        int failures = 0;
        OrvanTC_FailCall("TLOpen", 1, GenTL::GC_ERR_ACCESS_DENIED, "no rights");
        Outcome open = Capture([] { Orvan::OpenSystem(); });
        failures += open.className != "AccessException";
        failures += open.message != "AccessException (GC_ERR_ACCESS_DENIED): Unable to open "
                                    "system (Orvan, OpenSystem; GenTL::TLOpen); no rights";
        for (int i = 0; i < 2; ++i) {
            Outcome again = Capture([] { Orvan::OpenSystem(); });
            failures += !StartsWith(again.message, kAlreadyInitialized);
        }
        failures += Orvan::HasImageFactoryInit();
        return failures;
    });
}

TEST(LifecycleDeathTest, FailuresWhileBuildingTheSystemAreTranslated) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    struct Row {
        const char* call;
        int32_t code;
        const char* expected;
    };
    const Row rows[] = {
        {"TLGetNumInterfaces", GenTL::GC_ERR_INVALID_HANDLE,
         "InvalidArgumentException (GC_ERR_INVALID_HANDLE): Unable to get number of interfaces "
         "(System, EnumerateInterfaces; GenTL::TLGetNumInterfaces); injected"},
        {"TLGetInterfaceID", GenTL::GC_ERR_INVALID_INDEX,
         "OutOfRangeException (GC_ERR_INVALID_INDEX): Unable to get interface ID (System, "
         "EnumerateInterfaces; GenTL::TLGetInterfaceID); injected"},
        {"TLOpenInterface", GenTL::GC_ERR_RESOURCE_IN_USE,
         "LogicalErrorException (GC_ERR_RESOURCE_IN_USE): Unable to open interface (System, "
         "EnumerateInterfaces; GenTL::TLOpenInterface); injected"},
        {"GCGetPortURL", -10042,
         "GenericException (GC_ERR_ERROR): Unable to get port URL (NodeMapUtility, GetUrl)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call);
        EXPECT_IN_CHILD([&] {
            OrvanTC_FailCall(row.call, 1, row.code, "injected");
            Outcome open = Capture([] { Orvan::OpenSystem(); });
            if (open.message != row.expected)
                std::fprintf(stderr, "got: %s\n", open.message.c_str());
            return int(open.message != row.expected) + int(Orvan::HasImageFactoryInit());
        });
    }
}
