// dksmi's detail view of each device and its watch mode (the summary table
// is in the golden transcripts).
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

#include <nlohmann/json.hpp>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using nlohmann::json;
using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

using DksmiText = DksmiTest;

TEST_F(DksmiText, DetailMentionsEveryDie) {
    ScopedHost host("server"sv);
    const json document = json::parse(RunDksmi("--json").out);
    for (const json& device : document["devices"]) {
        const uint32_t index = device["index"];
        const RunResult run = RunDksmi("-i " + std::to_string(index));
        ASSERT_EQ(run.exitCode, 0) << run.err;
        SCOPED_TRACE(run.out);
        EXPECT_NE(run.out.find(device["bus_id"].get<std::string>()), std::string::npos);
        const uint32_t dies = device["die_count"];
        for (uint32_t die = 0; die < dies; ++die)
            EXPECT_NE(run.out.find("Die " + std::to_string(die)), std::string::npos);
        EXPECT_EQ(run.out.find("Die " + std::to_string(dies)), std::string::npos);
        EXPECT_EQ(run.out.find("65535"), std::string::npos) << "no reading reads N/A";
    }
}

TEST_F(DksmiText, DetailOfALimitedDeviceGivesItsReason) {
    ScopedHost host("server"sv);
    const json document = json::parse(RunDksmi("--json").out);
    ASSERT_FALSE(document["limited_devices"].empty());
    const json& limited = document["limited_devices"][0];
    const RunResult run = RunDksmi("-i " + std::to_string(limited["index"].get<uint32_t>()));
    EXPECT_NE(run.exitCode, 0);
    EXPECT_NE(run.out.find(limited["unavailable_reason"]["text"].get<std::string>()), std::string::npos);
}

TEST_F(DksmiText, DetailShowsThePowerSectionsAndTheApGrid) {
    ScopedHost host("server"sv);
    const RunResult detail = RunDksmi("-i 0");
    ASSERT_EQ(detail.exitCode, 0) << detail.err;
    for (const char* text : {"Board power", "Power limit", "PCI power state", "PMBus (mV, mA, W)", "AP usage (%)",
                             "dpc 0", "--", "Memory (KiB)"})
        EXPECT_NE(detail.out.find(text), std::string::npos) << text;
}

TEST_F(DksmiText, WatchWithCountEmitsOneJsonDocumentPerRedraw) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("--json --watch 0.01 --count 3");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::istringstream lines(run.out);
    size_t documents = 0;
    for (std::string line; std::getline(lines, line); ++documents)
        EXPECT_EQ(json::parse(line)["schema_version"], 2);
    EXPECT_EQ(documents, 3u);
}

TEST_F(DksmiText, InterruptEndsWatchCleanly) {
    ScopedHost host("server"sv);
    int pipeFds[2];
    ASSERT_EQ(pipe(pipeFds), 0);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        dup2(pipeFds[1], STDOUT_FILENO);
        close(pipeFds[0]);
        close(pipeFds[1]);
        const std::string binary = DksmiBinary().string();
        execl(binary.c_str(), binary.c_str(), "--watch", "60", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipeFds[1]);
    // Wait for the first redraw to be complete, then interrupt the wait.
    std::string out;
    char buffer[4096];
    while (out.find("Limited devices") == std::string::npos) {
        const ssize_t n = read(pipeFds[0], buffer, sizeof buffer);
        if (n <= 0) break;
        out.append(buffer, static_cast<size_t>(n));
    }
    kill(pid, SIGINT);
    int status = 0;
    waitpid(pid, &status, 0);
    close(pipeFds[0]);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by a signal";
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_NE(out.find("IDX"), std::string::npos);
}

TEST_F(DksmiText, DetailShowsPcieAndLinks) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("-i 3");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    for (const char* label : {"PCIe link", "PCIe max link", "PCIe slot", "Port states", "Link bandwidth in"})
        EXPECT_NE(run.out.find(label), std::string::npos) << label;
    EXPECT_NE(run.out.find("32.0 GT/s x16"), std::string::npos) << run.out;
}

// The process list itself is in the golden transcripts; "-p" is its alias.
TEST_F(DksmiText, DetailListsTheSlicesAndDashPListsTheProcesses) {
    ScopedHost host("slices"sv);
    const RunResult detail = RunDksmi("-i 1");
    ASSERT_EQ(detail.exitCode, 0) << detail.err;
    EXPECT_NE(detail.out.find("Slice mode           on"), std::string::npos) << detail.out;
    EXPECT_NE(detail.out.find("slice 3"), std::string::npos) << detail.out;
    EXPECT_EQ(detail.out.find("slice 2"), std::string::npos) << detail.out;
    EXPECT_EQ(RunDksmi("-p").out, RunDksmi("processes").out);
}

}  // namespace
}  // namespace dksmi::test
