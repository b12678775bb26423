// The exporter on the server host: every value `dksmi --json` shows has its
// series with the same number, and the page passes `promtool check metrics`
// (which also asks for a HELP line per family).
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "exporter/exporter_process.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::exporter::test {
namespace {

using nlohmann::json;
using Labels = std::map<std::string, std::string>;
using dksml::vhost::ScopedHost;

class ExporterServer : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(ExporterBinary())) GTEST_SKIP() << "dksml-exporter is not built (tools disabled)";
        m_exporter = std::make_unique<ExporterProcess>();
        ASSERT_GT(m_exporter->Port(), 0) << "the exporter did not report its port";
        m_reply = m_exporter->Scrape();
        ASSERT_EQ(m_reply.status, 200);
        m_samples = ParseExposition(m_reply.body);
    }
    void ExpectValue(const std::string& name, const Labels& labels, const json& expected) {
        if (expected.is_null()) {
            EXPECT_TRUE(Select(m_samples, name, labels).empty()) << name << ": no value must give no series";
            return;
        }
        const std::optional<double> value = ValueOf(m_samples, name, labels);
        ASSERT_TRUE(value.has_value()) << name << " " << json(labels).dump();
        EXPECT_EQ(*value, expected.get<double>()) << name << " " << json(labels).dump();
    }

    // One series per leaf of `value`: each level of arrays or objects below it
    // adds one label, named by the next of `levels`, holding the index or key.
    void ExpectNested(const std::string& name, const Labels& labels, const json& value,
                      std::vector<std::string> levels) {
        if (levels.empty()) return ExpectValue(name, labels, value);
        if (!value.is_structured()) return;
        const std::string label = levels.front();
        levels.erase(levels.begin());
        for (const auto& [key, item] : value.items()) {
            Labels l = labels;
            l[label] = key;
            ExpectNested(name, l, item, levels);
        }
    }
    static std::string TextOrEmpty(const json& value) { return value.is_null() ? "" : value.get<std::string>(); }

    void ExpectPcieAndLinks(const Labels& gpu, const json& pcie, const json& links) {
        for (const auto& [state, key] : {std::pair{"current", "current"}, std::pair{"max", "maximum"}}) {
            Labels l = gpu;
            l["state"] = state;
            const json& info = pcie[key];
            ExpectValue("dksml_pcie_link_speed_gigatransfers_per_second", l, info.is_null() ? json() : info["speed_gts"]);
            ExpectValue("dksml_pcie_link_width_lanes", l, info.is_null() ? json() : info["width"]);
        }
        ExpectValue("dksml_pcie_slot", gpu, pcie["slot"]);
        for (const char* direction : {"rx", "tx"}) {
            Labels l = gpu;
            l["direction"] = direction;
            ExpectValue("dksml_pcie_throughput", l,
                        pcie["throughput"].is_null() ? json() : pcie["throughput"][std::string(direction) + "_bytes"]);
        }
        if (!links["state"].is_null()) {
            Labels l = gpu;
            l["state_text"] = links["state_text"];
            ExpectValue("dksml_interconnect_state", l, links["state"]);
        }
        ExpectNested("dksml_interconnect_port_state", gpu, links["port_states"], {"port"});
        for (const char* direction : {"inbound", "outbound"}) {
            Labels l = gpu;
            l["direction"] = direction;
            ExpectNested("dksml_interconnect_bandwidth", l, links[std::string("bandwidth_") + direction],
                         {"link", "value"});
        }
    }
    void ExpectVersions(const Labels& gpu, const json& versions) {
        if (!versions["driver"].is_null() || !versions["vbios"].is_null() || !versions["compute_stack"].is_null()) {
            Labels l = gpu;
            l.insert({{"driver", TextOrEmpty(versions["driver"])},
                      {"vbios", TextOrEmpty(versions["vbios"])},
                      {"compute_stack", TextOrEmpty(versions["compute_stack"])}});
            ExpectValue("dksml_gpu_version_info", l, 1);
        }
        for (const auto& [unit, version] : versions["firmware"].items()) {
            if (version.is_null()) continue;
            Labels l = gpu;
            l.insert({{"unit", unit}, {"version", version}});
            ExpectValue("dksml_firmware_version_info", l, 1);
        }
    }
    void ExpectDie(const Labels& gpu, const json& die) {
        Labels d = gpu;
        d["die"] = std::to_string(die["die"].get<int>());
        ExpectValue("dksml_clock_throttle_reasons_mask", d, die["throttle_reasons_mask"]);
        ExpectValue("dksml_temperature_hottest_sensor_index", d, die["hottest_sensor_index"]);
        // One series per reason bit in force.
        const uint64_t mask =
            die["throttle_reasons_mask"].is_number() ? die["throttle_reasons_mask"].get<uint64_t>() : 0;
        for (unsigned bit = 0; bit < 32; ++bit) {
            Labels l = d;
            l["reason"] = "bit" + std::to_string(bit);
            EXPECT_EQ(ValueOf(m_samples, "dksml_clock_throttle_reason_active", l).has_value(), ((mask >> bit) & 1) != 0)
                << json(l).dump();
        }
        ExpectNested("dksml_perf_level", d, die["performance_levels"], {"ip", "kind"});
        ExpectNested("dksml_clock_megahertz", d, die["clocks_mhz"], {"ip", "domain"});
        for (const auto& [sensor, value] : die["temperatures_c"].items()) {
            Labels l = d;
            if (sensor != "hot_limit") l["sensor"] = sensor;
            ExpectValue(sensor == "hot_limit" ? "dksml_temperature_limit_celsius" : "dksml_temperature_celsius", l,
                        value);
        }
        ExpectNested("dksml_temperature_sensor_celsius", d, die["sensor_table_c"], {"row", "slot"});
        ExpectNested("dksml_voltage_monitor_raw", d, die["voltage_monitor_raw"], {"row", "slot"});
    }

    ScopedHost m_host{"server"};
    std::unique_ptr<ExporterProcess> m_exporter;
    HttpReply m_reply;
    std::vector<Sample> m_samples;
};

TEST_F(ExporterServer, EveryValueOfDksmiJsonHasItsSeries) {
    ASSERT_TRUE(std::filesystem::exists(DksmiBinary()));
    const json document = json::parse(RunCommand("'" + DksmiBinary().string() + "' --json"));
    ASSERT_FALSE(document["devices"].empty());
    const std::pair<const char*, const char*> scalars[] = {
        {"die_count", "dksml_gpu_dies"},
        {"hotspot_temperature_c", "dksml_gpu_hotspot_temperature_celsius"},
        {"fan_rpm", "dksml_fan_speed_rpm"},
        {"fan_duty", "dksml_fan_pwm_duty"},
        {"throttle_reasons_mask", "dksml_gpu_clock_throttle_reasons_mask"},
        {"process_count", "dksml_processes"},
    };
    for (const json& device : document["devices"]) {
        const Labels gpu{{"gpu", std::to_string(device["index"].get<int>())}, {"bus_id", device["bus_id"]}};
        Labels info = gpu;
        info.insert({{"model", device["name"]}, {"name", device["name"]}, {"brand", device["brand"]},
                     {"role", device["role"]}});
        if (device["uuid"].is_string()) info["uuid"] = device["uuid"];
        ExpectValue("dksml_gpu_info", info, 1);
        for (const auto& [key, name] : scalars) ExpectValue(name, gpu, device[key]);
        ExpectValue("dksml_slice_mode", gpu,
                    device["slice_mode"].is_boolean() ? json(device["slice_mode"].get<bool>() ? 1 : 0) : json());
        ExpectPcieAndLinks(gpu, device["pcie"], device["interconnect"]);
        ExpectVersions(gpu, device["versions"]);
        for (const json& die : device["dies"]) ExpectDie(gpu, die);
    }
    ASSERT_FALSE(document["limited_devices"].empty());
    for (const json& limited : document["limited_devices"])
        ExpectValue("dksml_limited_device_reason",
                    {{"bus_id", limited["bus_id"]}, {"reason", limited["unavailable_reason"]["text"]}},
                    limited["unavailable_reason"]["code"]);
}

// dksml_up and the last collection's success on a healthy host are checked by
// the fault and concurrency tests.
TEST_F(ExporterServer, HealthSeriesAndFrontPage) {
    EXPECT_GT(ValueOf(m_samples, "dksml_exporter_collect_duration_seconds").value_or(0), 0);
    EXPECT_EQ(ValueOf(m_samples, "dksml_exporter_collect_errors_total", {{"family", "clocks"}}), 0);
    const HttpReply page = HttpGet(m_exporter->Port(), "/");
    EXPECT_EQ(page.status, 200);
    EXPECT_NE(page.body.find("href=\"metrics\""), std::string::npos);
}

TEST_F(ExporterServer, PromtoolFindsNoProblem) {
    const std::string promtool = FindOnPath("promtool");
    if (promtool.empty()) GTEST_SKIP() << "promtool is not installed (scripts/install-deps.sh installs prometheus)";
    const std::filesystem::path page = m_host.Root().parent_path() / ("exporter-page-" + std::to_string(getpid()));
    { std::ofstream(page) << m_reply.body; }
    const std::string problems = RunCommand("'" + promtool + "' check metrics < '" + page.string() + "' 2>&1");
    std::filesystem::remove(page);
    EXPECT_EQ(problems, "");
}

TEST(ExporterCli, HelpVersionAndBadListenAddress) {
    if (!std::filesystem::exists(ExporterBinary())) GTEST_SKIP() << "dksml-exporter is not built";
    const std::string binary = "'" + ExporterBinary().string() + "'";
    EXPECT_NE(RunCommand(binary + " --help").find("--collect-timeout"), std::string::npos);
    EXPECT_NE(RunCommand(binary + " --version").find("dksml-exporter 2."), std::string::npos);
    EXPECT_NE(RunCommand(binary + " --listen 127.0.0.1:99999 2>&1; echo exit=$?").find("exit=1"), std::string::npos);
}

}  // namespace
}  // namespace dksml::exporter::test
