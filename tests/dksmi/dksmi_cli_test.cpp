// dksmi's command line beyond the golden transcripts (which show the summary,
// --json, detail and process views and their verdicts on each host): exit
// codes, bad command lines, edited and missing attribute files, the document
// of one device, watch mode and the process-list alias.
#include <gtest/gtest.h>

#include <sstream>

#include <nlohmann/json.hpp>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using nlohmann::json;

constexpr int kUsage = 2;
constexpr int kNoGpu = 4;
constexpr int kNoSuchDevice = 5;

class DksmiCli : public DksmiTest {
protected:
    static json RunJson(const std::string& arguments, int expectedExit = 0) {
        const RunResult run = RunDksmi("--json " + arguments);
        EXPECT_EQ(run.exitCode, expectedExit) << run.err;
        return json::parse(run.out);
    }
};

TEST_F(DksmiCli, EmptyHostHasNoGpuRatherThanNoSuchIndex) {
    ScopedHost host("empty"sv);
    EXPECT_EQ(RunDksmi("-i 0").exitCode, kNoGpu);
}

TEST_F(DksmiCli, UnknownIndexAndBadCommandLinesAreRefused) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("-i 99");
    EXPECT_EQ(run.exitCode, kNoSuchDevice);
    EXPECT_NE(run.err.find("99"), std::string::npos) << run.err;
    EXPECT_EQ(RunDksmi("--no-such-option").exitCode, kUsage);
    EXPECT_EQ(RunDksmi("-i not-a-number").exitCode, kUsage);
    EXPECT_EQ(RunDksmi("--watch 0").exitCode, kUsage);
    EXPECT_EQ(RunDksmi("--count 2").exitCode, kUsage) << "--count needs --watch";
    EXPECT_NE(RunDksmi("processes --sort size").exitCode, 0);
    EXPECT_EQ(RunDksmi("--help").exitCode, 0);
}

TEST_F(DksmiCli, EditedAttributesShowUpAndMissingOnesAreNull) {
    ScopedHost host("server"sv);
    const std::string busId = RunJson("-i 0")["devices"].at(0)["bus_id"];
    const std::string dir = DieDirectory(busId, 0);
    host.WriteFile(dir + "showtemp", "hotspot: 71\nhotlimit: 65535\nsoc: 48\nmc0: 50\n");
    host.Remove(dir + "fan_ctrl");

    const json device = RunJson("-i 0")["devices"].at(0);
    ASSERT_FALSE(device["dies"].empty());
    const json& temperatures = device["dies"][0]["temperatures_c"];
    EXPECT_EQ(temperatures["hotspot"], 71);
    EXPECT_EQ(temperatures["soc"], 48);
    EXPECT_TRUE(temperatures["hot_limit"].is_null()) << "65535 means no reading";
    EXPECT_TRUE(temperatures["mc1"].is_null());
    EXPECT_TRUE(temperatures["mem_ctrl_max"].is_null()) << "needs both mc0 and mc1";
    EXPECT_TRUE(device["fan_rpm"].is_null());
    EXPECT_TRUE(device["fan_duty"].is_null());
}

TEST_F(DksmiCli, OneDeviceDocumentHoldsOnlyThatDevice) {
    ScopedHost host("server"sv);
    const json document = RunJson("-i 100");
    ASSERT_EQ(document["devices"].size(), 1u);
    EXPECT_EQ(document["devices"][0]["index"], 100);
    EXPECT_TRUE(document["limited_devices"].empty());
}

TEST_F(DksmiCli, WatchWithCountEmitsOneJsonDocumentPerRedraw) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("--json --watch 0.01 --count 3");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::istringstream lines(run.out);
    size_t documents = 0;
    for (std::string line; std::getline(lines, line); ++documents) {
        EXPECT_EQ(json::parse(line)["schema_version"], 2);
    }
    EXPECT_EQ(documents, 3u);
}

// An interrupt during the wait ends the watch with exit code 0 after the
// first redraw (timeout sends SIGINT and passes dksmi's own exit code on).
TEST_F(DksmiCli, InterruptEndsWatchCleanly) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("--watch 60", "timeout --preserve-status -s INT 2");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("IDX"), std::string::npos);
}

// The process list itself is in the golden transcripts; "-p" is its alias.
TEST_F(DksmiCli, DashPListsTheProcesses) {
    ScopedHost host("slices"sv);
    EXPECT_EQ(RunDksmi("-p").out, RunDksmi("processes").out);
}

}  // namespace
}  // namespace dksmi::test
