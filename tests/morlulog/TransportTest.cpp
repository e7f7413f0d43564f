#include "TestPorts.h"

#include <MorluLog/MorluLog.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using OrvanTest::TestPort;
using Records = std::vector<std::string>;

// Records that must not arrive are given this long to arrive anyway.
constexpr auto kSilence = 300ms;

class Recorder : public MorluLog::ILogFn,
                 public MorluLog::IFilterFn,
                 public MorluLog::IFilterOutFn {
public:
    std::atomic<bool> admitOut{true};
    std::atomic<int> filterOutCalls{0}, filterCalls{0};

    void OnLog(const char* record) override {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_logged.emplace_back(record);
        m_cv.notify_all();
    }
    // Received records starting with "refused" are refused.
    bool OnFilter(const char* record) override {
        ++filterCalls;
        return std::string(record).rfind("refused", 0) != 0;
    }
    bool OnFilterOut(const char*) override {
        ++filterOutCalls;
        return admitOut;
    }
    Records WaitFor(size_t count, std::chrono::milliseconds timeout = 5s) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_cv.wait_for(lock, timeout, [&] { return m_logged.size() >= count; });
        return m_logged;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_cv;
    Records m_logged;
};

// Records from different processes arrive in no fixed order.
Records Sorted(Records records) {
    std::sort(records.begin(), records.end());
    return records;
}

struct Deinit {
    void operator()(MorluLog::IMorluLog* handle) const { MorluLog::Deinit(handle); }
};
using HandlePtr = std::unique_ptr<MorluLog::IMorluLog, Deinit>;

HandlePtr MakeHandle(Recorder& recorder) {
    HandlePtr handle(MorluLog::Init());
    handle->RegisterLogFn(&recorder);
    handle->RegisterFilterFn(&recorder);
    handle->RegisterFilterOutFn(&recorder);
    return handle;
}

// Set up as the logger sets up its handle; each such handle plays one process.
HandlePtr MakePeer(Recorder& recorder) {
    HandlePtr handle = MakeHandle(recorder);
    EXPECT_TRUE(handle->SetupPort(TestPort(0)));
    handle->RegisterPort(TestPort(1));
    handle->RegisterPort(TestPort(2));
    EXPECT_TRUE(handle->Listen(TestPort(1)));
    return handle;
}

TEST(MorluLogLocal, SenderFiltersAndWritesItsOwnRecordOnce) {
    Recorder recorder;
    HandlePtr handle = MakeHandle(recorder);
    EXPECT_FALSE(handle->Send("kept")) << "no port set up to send from";
    recorder.admitOut = false;
    EXPECT_FALSE(handle->Send("refused out"));
    EXPECT_FALSE(handle->Send(nullptr));
    EXPECT_EQ(recorder.filterOutCalls, 2);
    EXPECT_EQ(recorder.filterCalls, 0) << "the filter is for received records";
    EXPECT_EQ(recorder.WaitFor(1, 0ms), Records{"kept"});
}

// Three processes sharing one configuration: each record its sender admits reaches the two others
// once, through their filter and not their filter-out, and is written once by its sender, though
// the sender listens on the port it sends to.
TEST(MorluLogShared, EveryProcessOnThePortWritesEachRecordOnce) {
    Recorder a, b, c;
    HandlePtr ha = MakePeer(a), hb = MakePeer(b), hc = MakePeer(c);
    a.admitOut = false;
    EXPECT_FALSE(ha->Send("refused out"));
    a.admitOut = true;
    ASSERT_TRUE(ha->Send("from a"));
    ASSERT_TRUE(hb->Send("refused by the others"));
    ASSERT_TRUE(hb->Send("from b"));
    EXPECT_EQ(Sorted(c.WaitFor(2)), (Records{"from a", "from b"}));
    std::this_thread::sleep_for(kSilence);
    EXPECT_EQ(a.WaitFor(0, 0ms), (Records{"from a", "from b"}));
    EXPECT_EQ(Sorted(b.WaitFor(0, 0ms)), (Records{"from a", "from b", "refused by the others"}));
    EXPECT_EQ(c.filterCalls, 3) << "the refused-out record never arrived";
    EXPECT_EQ(c.filterOutCalls, 0);
}

TEST(MorluLogShared, ViewerPortAndReleaseGetEverythingQueued) {
    Recorder sender, viewer;
    HandlePtr hs = MakePeer(sender), hv = MakeHandle(viewer);
    ASSERT_TRUE(hv->Listen(TestPort(2)));
    constexpr int kRecords = 100;
    for (int i = 0; i < kRecords; ++i) {
        ASSERT_TRUE(hs->Send(std::to_string(i).c_str()));
    }
    hs->ReleasePort(TestPort(0));
    const Records received = viewer.WaitFor(kRecords);
    ASSERT_EQ(received.size(), size_t{kRecords});
    EXPECT_EQ(received.back(), std::to_string(kRecords - 1));
    EXPECT_EQ(hs->DroppedCount(), 0u);
}

TEST(MorluLogShared, ForeignAndTruncatedDatagramsAreIgnored) {
    Recorder a;
    HandlePtr ha = MakePeer(a);
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    const int on = 1;
    setsockopt(fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof(on));
    sockaddr_in to{AF_INET, htons(TestPort(1)), {}, {}};
    inet_pton(AF_INET, "127.255.255.255", &to.sin_addr);
    const std::string valid = std::string("MLG1\0\0\0\0\0\0\0\0", 12) + "valid";
    for (const std::string& bytes :
         {std::string(), std::string("not a record"), std::string("MLG1"), valid}) {
        sendto(fd, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof(to));
    }
    close(fd);
    EXPECT_EQ(a.WaitFor(1), Records{"valid"});
    std::this_thread::sleep_for(kSilence);
    EXPECT_EQ(a.WaitFor(0, 0ms), Records{"valid"});
}

// A receiver that never reads and a port nobody listens on do not hold the sender up.
TEST(MorluLogShared, SendingNeverWaitsForReceivers) {
    const int deaf = socket(AF_INET, SOCK_DGRAM, 0);
    const int on = 1;
    setsockopt(deaf, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in local{AF_INET, htons(TestPort(1)), {}, {}};
    inet_pton(AF_INET, "127.255.255.255", &local.sin_addr);
    ASSERT_EQ(bind(deaf, reinterpret_cast<sockaddr*>(&local), sizeof(local)), 0);
    HandlePtr handle(MorluLog::Init());
    ASSERT_TRUE(handle->SetupPort(TestPort(0)));
    handle->RegisterPort(TestPort(1));
    handle->RegisterPort(TestPort(2));
    const std::string record(1000, 'x');
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 20000; ++i) {
        handle->Send(record.c_str());
    }
    handle->ReleasePort(TestPort(0));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    close(deaf);
}

} // namespace
