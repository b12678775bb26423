// dksmi's verdicts and exit codes on hosts without a usable GPU, and its
// handling of bad command lines.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using nlohmann::json;
using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

constexpr int kUsage = 2;
constexpr int kDriverNotLoaded = 3;
constexpr int kNoGpu = 4;
constexpr int kNoSuchDevice = 5;

using DksmiExit = DksmiTest;

TEST_F(DksmiExit, NoDriverSaysSoAndListsTheGpus) {
    ScopedHost host("no-driver"sv);
    const RunResult run = RunDksmi("");
    EXPECT_EQ(run.exitCode, kDriverNotLoaded);
    EXPECT_NE(run.err.find("driver is not loaded"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("Dravik Kernel Driver Not Found"), std::string::npos) << run.out;
    for (const TreeFunction& function : MakerFunctions(host))
        EXPECT_NE(run.out.find(function.busId), std::string::npos) << function.busId;
}

TEST_F(DksmiExit, NoDriverJsonCarriesTheReasonOfEveryGpu) {
    ScopedHost host("no-driver"sv);
    const RunResult run = RunDksmi("--json");
    EXPECT_EQ(run.exitCode, kDriverNotLoaded);
    const json document = json::parse(run.out);
    EXPECT_TRUE(document["devices"].empty());
    EXPECT_EQ(document["error"]["exit_code"], kDriverNotLoaded);
    ASSERT_EQ(document["limited_devices"].size(), MakerFunctions(host).size());
    ASSERT_FALSE(document["limited_devices"].empty());
    for (const json& limited : document["limited_devices"]) {
        EXPECT_EQ(limited["unavailable_reason"]["code"], 100);
        EXPECT_EQ(limited["unavailable_reason"]["text"], "Dravik Kernel Driver Not Found");
    }
}

TEST_F(DksmiExit, EmptyHostHasNoGpu) {
    ScopedHost host("empty"sv);
    const RunResult run = RunDksmi("");
    EXPECT_EQ(run.exitCode, kNoGpu);
    EXPECT_NE(run.err.find("No GPU found"), std::string::npos) << run.err;

    const RunResult asJson = RunDksmi("--json");
    EXPECT_EQ(asJson.exitCode, kNoGpu);
    const json document = json::parse(asJson.out);
    EXPECT_TRUE(document["devices"].empty());
    EXPECT_TRUE(document["limited_devices"].empty());
    EXPECT_EQ(document["error"]["exit_code"], kNoGpu);
    EXPECT_EQ(RunDksmi("-i 0").exitCode, kNoGpu) << "no GPU, rather than no such index";
}

TEST_F(DksmiExit, UnknownIndexIsRefused) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("-i 99");
    EXPECT_EQ(run.exitCode, kNoSuchDevice);
    EXPECT_NE(run.err.find("99"), std::string::npos) << run.err;
}

TEST_F(DksmiExit, BadCommandLinesAreUsageErrors) {
    ScopedHost host("server"sv);
    EXPECT_EQ(RunDksmi("--no-such-option").exitCode, kUsage);
    EXPECT_EQ(RunDksmi("-i not-a-number").exitCode, kUsage);
    EXPECT_EQ(RunDksmi("--watch 0").exitCode, kUsage);
    EXPECT_EQ(RunDksmi("--count 2").exitCode, kUsage) << "--count needs --watch";
    EXPECT_EQ(RunDksmi("--help").exitCode, 0);
}

}  // namespace
}  // namespace dksmi::test
