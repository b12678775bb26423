// dksmi's process list, per-device process counts and slices, on the server
// profile (namespace pids) and the slices profile (slices, domains).
#include <gtest/gtest.h>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using dksml::vhost::ScopedHost;

class DksmiProcesses : public DksmiTest {};

TEST_F(DksmiProcesses, ServerProcessesShowNamespacePidsAndMemoryPerGpu) {
    ScopedHost host("server");
    const RunResult run = RunDksmi("processes");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("PID   NSPID  NAME"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("4242  4242   train_resnet  0    0000:1b:00.0  -      0       8192 MiB"), std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("5120  12     infer_server"), std::string::npos) << run.out;
    EXPECT_EQ(RunDksmi("-p").out, run.out);
}

TEST_F(DksmiProcesses, SortByMemoryPutsTheLargestUserFirst) {
    ScopedHost host("slices");
    const RunResult run = RunDksmi("processes --sort memory");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out.find("7007"), run.out.find('\n') + 1) << run.out;  // 40 domains of 1 GiB and 512 MiB
    EXPECT_NE(RunDksmi("processes --sort size").exitCode, 0);
}

// The summary and --json counts are in the golden transcripts.
TEST_F(DksmiProcesses, DetailListsTheSlices) {
    ScopedHost host("slices");
    const RunResult detail = RunDksmi("-i 1");
    ASSERT_EQ(detail.exitCode, 0) << detail.err;
    EXPECT_NE(detail.out.find("Slice mode           on"), std::string::npos) << detail.out;
    EXPECT_NE(detail.out.find("slice 3"), std::string::npos) << detail.out;
    EXPECT_EQ(detail.out.find("slice 2"), std::string::npos) << detail.out;
}

}  // namespace
}  // namespace dksmi::test
