// Discovery under conditions the virtual producer cannot be asked for: interface lists that
// change, interfaces that answer slowly or fail in a chosen way. This binary replaces a few
// producer entry points with wrappers that forward to the producer and bend its answers.
#include "SpineTestSupport.h"

#include <GenTL/GenTL.h>
#include <Orvan/OrvanApi.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <thread>

using SpineTest::CameraSetup;
using SpineTest::Capture;
using SpineTest::Outcome;

namespace {

struct Bends {
    std::atomic<bool> reportChanged{false};
    std::atomic<int> interfaceLimit{-1}; // negative: as many as the producer has
    std::atomic<int> opened{0};
    std::atomic<int> closed{0};
    std::atomic<int> refreshDelayMs{0};
    std::atomic<int> refreshing{0};
    std::atomic<bool> closedWhileRefreshing{false};
    std::mutex mutex;
    std::map<std::string, GenTL::GC_ERROR> refreshFailures; // by interface id
};

Bends g_bends;

template <class Function>
Function Real(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

std::string InterfaceId(GenTL::IF_HANDLE handle) {
    char id[64] = {};
    size_t size = sizeof(id);
    GenTL::INFO_DATATYPE type = 0;
    GenTL::IFGetInfo(handle, GenTL::INTERFACE_INFO_ID, &type, id, &size);
    return id;
}

// The text the producer leaves on a thread for a call with a null handle.
std::string NullHandleText() {
    static const auto refresh = Real<GenTL::PIFUpdateDeviceList>("IFUpdateDeviceList");
    std::string text;
    std::thread([&] {
        refresh(nullptr, nullptr, 0);
        char buffer[256] = {};
        size_t size = sizeof(buffer);
        GenTL::GC_ERROR code = 0;
        GenTL::GCGetLastError(&code, buffer, &size);
        text = buffer;
    }).join();
    return text;
}

} // namespace

namespace GenTL {
extern "C" {

GC_ERROR TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t timeout) {
    static const auto real = Real<PTLUpdateInterfaceList>("TLUpdateInterfaceList");
    GC_ERROR status = real(system, changed, timeout);
    if (status == GC_ERR_SUCCESS && changed && g_bends.reportChanged)
        *changed = 1;
    return status;
}

GC_ERROR TLGetNumInterfaces(TL_HANDLE system, uint32_t* count) {
    static const auto real = Real<PTLGetNumInterfaces>("TLGetNumInterfaces");
    GC_ERROR status = real(system, count);
    int limit = g_bends.interfaceLimit;
    if (status == GC_ERR_SUCCESS && limit >= 0 && *count > uint32_t(limit))
        *count = uint32_t(limit);
    return status;
}

GC_ERROR TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* handle) {
    static const auto real = Real<PTLOpenInterface>("TLOpenInterface");
    ++g_bends.opened;
    return real(system, id, handle);
}

GC_ERROR IFClose(IF_HANDLE handle) {
    static const auto real = Real<PIFClose>("IFClose");
    ++g_bends.closed;
    if (g_bends.refreshing > 0)
        g_bends.closedWhileRefreshing = true;
    return real(handle);
}

// A failing refresh leaves the producer's own text on the refreshing thread, by asking it about
// a null handle, and then reports the chosen code.
GC_ERROR IFUpdateDeviceList(IF_HANDLE handle, bool8_t* changed, uint64_t timeout) {
    static const auto real = Real<PIFUpdateDeviceList>("IFUpdateDeviceList");
    ++g_bends.refreshing;
    std::this_thread::sleep_for(std::chrono::milliseconds(g_bends.refreshDelayMs.load()));
    --g_bends.refreshing;
    GC_ERROR failure = GC_ERR_SUCCESS;
    {
        std::lock_guard<std::mutex> lock(g_bends.mutex);
        auto found = g_bends.refreshFailures.find(InterfaceId(handle));
        if (found != g_bends.refreshFailures.end())
            failure = found->second;
    }
    if (failure == GC_ERR_SUCCESS)
        return real(handle, changed, timeout);
    real(nullptr, changed, timeout);
    return failure;
}

} // extern "C"
} // namespace GenTL

namespace {

class InterposedDiscovery : public ::testing::Test {
protected:
    void SetUp() override { system = Orvan::OpenSystem(); }
    void TearDown() override {
        Orvan::CloseSystem(system);
        g_bends.reportChanged = false;
        g_bends.interfaceLimit = -1;
        g_bends.refreshDelayMs = 0;
        g_bends.refreshFailures.clear();
        g_bends.closedWhileRefreshing = false;
    }
    void FailRefresh(const std::string& id, GenTL::GC_ERROR code) {
        std::lock_guard<std::mutex> lock(g_bends.mutex);
        g_bends.refreshFailures[id] = code;
    }

    CameraSetup cameras{{"Mono", "Color"}, 2};
    Orvan::ISystem* system = nullptr;
};

} // namespace

TEST_F(InterposedDiscovery, InterfacesAreRefreshedInParallel) {
    g_bends.refreshDelayMs = 200;
    auto start = std::chrono::steady_clock::now();
    system->UpdateDevices(1000);
    auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, std::chrono::milliseconds(200));
    EXPECT_LT(elapsed, std::chrono::milliseconds(390)) << "the refreshes ran one after another";
    EXPECT_EQ(system->GetDevices().size(), 2u);
}

TEST_F(InterposedDiscovery, OnlyATotalFailureIsReportedWithTheLastInterfacesCode) {
    FailRefresh("VirtualIF0", GenTL::GC_ERR_TIMEOUT);
    EXPECT_NO_THROW(system->UpdateDevices(10));
    g_bends.refreshFailures.clear();
    FailRefresh("VirtualIF1", GenTL::GC_ERR_TIMEOUT);
    EXPECT_NO_THROW(system->UpdateDevices(10));

    FailRefresh("VirtualIF0", GenTL::GC_ERR_TIMEOUT);
    FailRefresh("VirtualIF1", GenTL::GC_ERR_ACCESS_DENIED);
    Outcome outcome = Capture([&] { system->UpdateDevices(10); });
    // The producer's text is the one of the thread that refreshed the failing interface.
    EXPECT_EQ(outcome.className, "AccessException");
    EXPECT_EQ(outcome.message, "AccessException (GC_ERR_ACCESS_DENIED): Unable to update list of "
                               "devices (System, UpdateDevices; GenTL::IFUpdateDeviceList); " +
                                   NullHandleText());
    EXPECT_FALSE(NullHandleText().empty());
}

TEST_F(InterposedDiscovery, ReenumerationKeepsInterfacesThatStayAndClosesThoseThatGo) {
    int opened = g_bends.opened;
    int closed = g_bends.closed;
    g_bends.reportChanged = true;
    system->UpdateDevices(10);
    // Reopening a kept interface would also have failed in the producer as already open.
    EXPECT_EQ(g_bends.opened, opened);
    EXPECT_EQ(g_bends.closed, closed);

    g_bends.interfaceLimit = 1;
    system->UpdateDevices(10);
    EXPECT_EQ(g_bends.closed, closed + 1);
    ASSERT_EQ(system->GetInterfaces().size(), 1u);
    EXPECT_EQ(system->GetInterfaces()[0].Id(), "VirtualIF0");
    EXPECT_EQ(system->GetDevices().size(), 1u);

    g_bends.interfaceLimit = -1;
    system->UpdateDevices(10);
    EXPECT_EQ(g_bends.opened, opened + 1);
    EXPECT_EQ(system->GetDevices().size(), 2u);
}

TEST_F(InterposedDiscovery, ASystemWithoutInterfacesEnumeratesAgainOnRefresh) {
    Orvan::CloseSystem(system);
    g_bends.interfaceLimit = 0;
    system = Orvan::OpenSystem();
    EXPECT_TRUE(system->GetInterfaces().empty());
    EXPECT_NO_THROW(system->UpdateDevices(10));
    EXPECT_TRUE(system->GetDevices().empty());

    g_bends.interfaceLimit = -1;
    system->UpdateDevices(10);
    EXPECT_EQ(system->GetInterfaces().size(), 2u);
    EXPECT_EQ(system->GetDevices().size(), 2u);
}

// Forcing an address enumerates the interfaces again; one that went must not be closed while
// a device-list refresh still uses it.
TEST_F(InterposedDiscovery, ForcingAnAddressWaitsForARunningRefresh) {
    g_bends.refreshDelayMs = 300;
    std::thread refresh([&] { system->UpdateDevices(10); });
    while (g_bends.refreshing == 0)
        std::this_thread::yield();
    g_bends.interfaceLimit = 1;
    g_bends.reportChanged = true;
    Capture([&] { system->ForceIp("02:00:00:00:00:09", "127.0.0.9", "255.0.0.0", "0.0.0.0"); });
    refresh.join();
    EXPECT_FALSE(g_bends.closedWhileRefreshing);
    EXPECT_EQ(system->GetInterfaces().size(), 1u);
}
