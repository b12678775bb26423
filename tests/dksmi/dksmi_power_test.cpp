// dksmi's power, load and memory fields on the "server" host: values agree
// with the attribute files, and null (N/A) stands exactly where the library
// refuses.
#include <gtest/gtest.h>

#include <sstream>

#include <nlohmann/json.hpp>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using nlohmann::json;
using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

class DksmiPower : public DksmiTest {};

const json& DeviceByBus(const json& document, const std::string& busId) {
    for (const json& device : document["devices"])
        if (device["bus_id"] == busId) return device;
    static const json none;
    ADD_FAILURE() << busId << " not listed";
    return none;
}

std::vector<long long> Numbers(const std::string& text) {
    std::istringstream in(text);
    std::vector<long long> values;
    for (long long v; in >> v;) values.push_back(v);
    return values;
}

TEST_F(DksmiPower, JsonMatchesTheFilesAndIsNullWhereRefused) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("--json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const json document = json::parse(run.out);

    const json& twoDie = DeviceByBus(document, "0000:1b:00.0");
    const auto board = ReadKeyValues(host, DieDirectory("0000:1b:00.0", 0) + "showboardpowerinfo");
    const double milliwatts = Numbers(board.at("way0")).at(2) + Numbers(board.at("way1")).at(2);
    EXPECT_DOUBLE_EQ(twoDie["board_power_w"].get<double>(), milliwatts / 1000.0);
    EXPECT_EQ(twoDie["board_power_ways"].size(), 2u);
    EXPECT_EQ(twoDie["pci_power_state"], "D0");
    EXPECT_EQ(twoDie["power_mode"], 1);
    const auto info0 = ReadKeyValues(host, DieDirectory("0000:1b:00.0", 0) + "showmeminfo");
    const auto info1 = ReadKeyValues(host, DieDirectory("0000:1b:00.0", 1) + "showmeminfo");
    EXPECT_EQ(twoDie["memory_kib"]["vram"]["total"],
              Numbers(info0.at("vram total")).at(0) + Numbers(info1.at("vram total")).at(0));
    const json& die1 = twoDie["dies"][1];
    EXPECT_EQ(die1["ap_usage_pct"]["reported_dpc_count"].get<int>() + 1, die1["ap_usage_pct"]["dpc_count"].get<int>());
    EXPECT_TRUE(die1["pmbus"]["pcie2"].is_null());
    EXPECT_EQ(die1["pmbus"]["core"]["voltage_mv"],
              Numbers(ReadKeyValues(host, DieDirectory("0000:1b:00.0", 1) + "showpmbusvol").at("core voltage")).at(0));

    // A PF hosting VFs has no memory of its own to show; a VF has no rails.
    EXPECT_TRUE(DeviceByBus(document, "0000:1e:00.0")["memory_kib"].is_null());
    const json& vf = DeviceByBus(document, "0000:1e:00.1");
    EXPECT_TRUE(vf["board_power_w"].is_null());
    EXPECT_TRUE(vf["dies"][0]["pmbus"]["soc"].is_null());
    EXPECT_FALSE(vf["memory_kib"].is_null());
    EXPECT_EQ(vf["power_mode"], 1);  // its parent's
}

TEST_F(DksmiPower, TextShowsSummaryColumnsAndTheApGrid) {
    ScopedHost host("server"sv);
    const RunResult summary = RunDksmi("");
    ASSERT_EQ(summary.exitCode, 0) << summary.err;
    for (const char* header : {"POWER", "LOAD", "MEMORY"}) EXPECT_NE(summary.out.find(header), std::string::npos);
    EXPECT_NE(summary.out.find(" MiB"), std::string::npos);

    const RunResult detail = RunDksmi("-i 0");
    ASSERT_EQ(detail.exitCode, 0) << detail.err;
    for (const char* text : {"Board power", "Power limit", "PCI power state", "PMBus (mV, mA, W)", "AP usage (%)",
                             "dpc 0", "--", "Memory (KiB)"})
        EXPECT_NE(detail.out.find(text), std::string::npos) << text;
}

}  // namespace
}  // namespace dksmi::test
