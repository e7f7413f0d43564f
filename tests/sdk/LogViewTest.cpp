#include "LogTestSupport.h"

#include <Orvan/ALogger.h>

#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <chrono>

namespace {

using namespace std::chrono_literals;
using namespace OrvanTest;
using Strings = std::vector<std::string>;

// Reads what the child printed until text appears or the deadline passes, logging a record
// meanwhile: the viewer may not listen yet when the first ones leave.
std::string ReadUntil(const Child& viewer, const std::string& text) {
    std::string output;
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (output.find(text) == std::string::npos && std::chrono::steady_clock::now() < deadline) {
        Orvan::ALogger::Info("viewer", "to the viewer");
        pollfd readable = {viewer.output, POLLIN, 0};
        if (poll(&readable, 1, 100) > 0) {
            char buffer[4096];
            const ssize_t size = read(viewer.output, buffer, sizeof(buffer));
            if (size <= 0) {
                break;
            }
            output.append(buffer, static_cast<size_t>(size));
        }
    }
    return output;
}

TEST(LogView, PrintsReceivedRecordsAsTheConsoleDoes) {
    WorkingDirectory dir;
    WriteConfiguration(Configuration());
    Orvan::ALogger logger;
    const Child viewer = Spawn({ORVAN_LOGVIEW, std::to_string(TestPort(2))}, true);
    ASSERT_GT(viewer.pid, 0);
    const std::string output = ReadUntil(viewer, "(viewer) to the viewer\n");
    kill(viewer.pid, SIGTERM);
    EXPECT_EQ(WaitExit(viewer), 0);
    const Strings lines = Lines(output);
    EXPECT_NE(
        std::find_if(lines.begin(), lines.end(),
                     [](const std::string& line) {
                         return AfterClock(line) ==
                                " :: [    INFO ] :: [     Orvan ] ||>  (viewer) to the viewer";
                     }),
        lines.end())
        << output;
}

} // namespace
