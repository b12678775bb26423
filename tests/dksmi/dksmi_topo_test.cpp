// `dksmi topo` and the PCIe/interconnect part of the detail view.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using nlohmann::json;
using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

using DksmiTopo = DksmiTest;

TEST_F(DksmiTopo, ServerMatrixShowsTheLevelsOfItsLinksAndBridges) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("topo");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("Legend:"), std::string::npos);
    EXPECT_NE(run.out.find("0-31,64-95"), std::string::npos) << run.out;

    const RunResult jsonRun = RunDksmi("topo --json");
    ASSERT_EQ(jsonRun.exitCode, 0) << jsonRun.err;
    const json document = json::parse(jsonRun.out);
    ASSERT_EQ(document["gpus"].size(), 6u);
    const json& first = document["gpus"][0];
    EXPECT_EQ(first["bus_id"], "0000:1b:00.0");
    EXPECT_EQ(first["links"], json::array({"X", "DL", "PXB", "DL", "SYS", "SYS"}));
    EXPECT_EQ(first["cpu_affinity"], "0-31,64-95");
    EXPECT_EQ(first["numa_affinity"], json::array({0}));
    EXPECT_EQ(document["gpus"][4]["numa_affinity"], json::array({1}));
    EXPECT_EQ(document["gpus"][5]["links"], json::array({"SYS", "SYS", "SYS", "NODE", "NODE", "X"}));
}

TEST_F(DksmiTopo, WorkstationNicRowUsesTheVirtualSwitch) {
    setenv("DK_SMI_NIC_VENDOR", "0x15b3", 1);
    ScopedHost host("workstation"sv);
    const RunResult run = RunDksmi("topo --json");
    unsetenv("DK_SMI_NIC_VENDOR");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const json document = json::parse(run.out);
    ASSERT_EQ(document["nics"].size(), 1u);
    EXPECT_EQ(document["nics"][0]["links"], json::array({"PHB", "PIX", "X"}));
    EXPECT_EQ(document["gpus"][0]["links"], json::array({"X", "NODE", "PHB"}));
}

TEST_F(DksmiTopo, DetailShowsPcieAndLinks) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("-i 3");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    for (const char* label : {"PCIe link", "PCIe max link", "PCIe slot", "Port states", "Link bandwidth in"})
        EXPECT_NE(run.out.find(label), std::string::npos) << label;
    EXPECT_NE(run.out.find("32.0 GT/s x16"), std::string::npos) << run.out;
    const json device = json::parse(RunDksmi("--json -i 3").out)["devices"][0];
    EXPECT_EQ(device["pcie"]["slot"], 4);
    EXPECT_EQ(device["interconnect"]["state"], 1);
    EXPECT_EQ(device["interconnect"]["port_states"][0], 2);
    EXPECT_EQ(device["pcie"]["maximum"]["width"], 16);
}

}  // namespace
}  // namespace dksmi::test
