// dksmi's verdicts and exit codes on hosts without a usable GPU, and its
// handling of bad command lines.
#include <gtest/gtest.h>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

constexpr int kUsage = 2;
constexpr int kNoGpu = 4;
constexpr int kNoSuchDevice = 5;

using DksmiExit = DksmiTest;

// The golden transcripts show the summary and --json verdicts of each host.
TEST_F(DksmiExit, EmptyHostHasNoGpuRatherThanNoSuchIndex) {
    ScopedHost host("empty"sv);
    EXPECT_EQ(RunDksmi("-i 0").exitCode, kNoGpu);
}

TEST_F(DksmiExit, UnknownIndexAndBadCommandLinesAreRefused) {
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

}  // namespace
}  // namespace dksmi::test
