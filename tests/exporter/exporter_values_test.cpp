// The exporter on the server host: every value `dksmi --json` shows has its
// series with the same number, the page passes `promtool check metrics`, and
// values agree with the attribute files.
#include <gtest/gtest.h>

#include <array>
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

std::string RunCommand(const std::string& command) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return out;
    std::array<char, 4096> buffer{};
    for (size_t n; (n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) out.append(buffer.data(), n);
    pclose(pipe);
    return out;
}

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
        if (links["port_states"].is_array())
            for (size_t port = 0; port < links["port_states"].size(); ++port) {
                Labels l = gpu;
                l["port"] = std::to_string(port);
                ExpectValue("dksml_interconnect_port_state", l, links["port_states"][port]);
            }
        for (const char* direction : {"inbound", "outbound"}) {
            const json& bandwidth = links[std::string("bandwidth_") + direction];
            if (!bandwidth.is_array()) continue;
            for (size_t link = 0; link < bandwidth.size(); ++link)
                for (size_t v = 0; v < 2; ++v) {
                    Labels l = gpu;
                    l.insert({{"link", std::to_string(link)}, {"direction", direction}, {"value", std::to_string(v)}});
                    ExpectValue("dksml_interconnect_bandwidth", l, bandwidth[link][v]);
                }
        }
    }
    void ExpectVersions(const Labels& gpu, const json& versions) {
        if (!versions["driver"].is_null() || !versions["vbios"].is_null() || !versions["compute_stack"].is_null()) {
            Labels l = gpu;
            l.insert({{"driver", versions["driver"].is_null() ? "" : versions["driver"].get<std::string>()},
                      {"vbios", versions["vbios"].is_null() ? "" : versions["vbios"].get<std::string>()},
                      {"compute_stack",
                       versions["compute_stack"].is_null() ? "" : versions["compute_stack"].get<std::string>()}});
            ExpectValue("dksml_gpu_version_info", l, 1);
        }
        for (const auto& [unit, version] : versions["firmware"].items()) {
            if (version.is_null()) continue;
            Labels l = gpu;
            l.insert({{"unit", unit}, {"version", version}});
            ExpectValue("dksml_firmware_version_info", l, 1);
        }
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
    for (const json& device : document["devices"]) {
        const Labels gpu{{"gpu", std::to_string(device["index"].get<int>())}, {"bus_id", device["bus_id"]}};
        Labels info = gpu;
        info.insert({{"model", device["name"]}, {"name", device["name"]}, {"brand", device["brand"]},
                     {"role", device["role"]}});
        if (device["uuid"].is_string()) info["uuid"] = device["uuid"];
        ExpectValue("dksml_gpu_info", info, 1);
        ExpectValue("dksml_gpu_dies", gpu, device["die_count"]);
        ExpectValue("dksml_gpu_hotspot_temperature_celsius", gpu, device["hotspot_temperature_c"]);
        ExpectValue("dksml_fan_speed_rpm", gpu, device["fan_rpm"]);
        ExpectValue("dksml_fan_pwm_duty", gpu, device["fan_duty"]);
        ExpectValue("dksml_gpu_clock_throttle_reasons_mask", gpu, device["throttle_reasons_mask"]);
        ExpectValue("dksml_processes", gpu, device["process_count"]);
        ExpectValue("dksml_slice_mode", gpu,
                    device["slice_mode"].is_boolean() ? json(device["slice_mode"].get<bool>() ? 1 : 0) : json());
        ExpectPcieAndLinks(gpu, device["pcie"], device["interconnect"]);
        ExpectVersions(gpu, device["versions"]);
        for (const json& die : device["dies"]) {
            Labels d = gpu;
            d["die"] = std::to_string(die["die"].get<int>());
            ExpectValue("dksml_clock_throttle_reasons_mask", d, die["throttle_reasons_mask"]);
            ExpectValue("dksml_temperature_hottest_sensor_index", d, die["hottest_sensor_index"]);
            if (die["performance_levels"].is_object())
                for (const auto& [ip, level] : die["performance_levels"].items())
                    for (const char* kind : {"current", "max"}) {
                        Labels l = d;
                        l.insert({{"ip", ip}, {"kind", kind}});
                        ExpectValue("dksml_perf_level", l, level[kind]);
                    }
            if (die["clocks_mhz"].is_object())
                for (const auto& [ip, values] : die["clocks_mhz"].items()) {
                    if (values.is_null()) continue;
                    for (size_t i = 0; i < values.size(); ++i) {
                        Labels c = d;
                        c.insert({{"ip", ip}, {"domain", std::to_string(i)}});
                        ExpectValue("dksml_clock_megahertz", c, values[i]);
                    }
                }
            if (die["temperatures_c"].is_object())
                for (const auto& [sensor, value] : die["temperatures_c"].items()) {
                    if (sensor == "hot_limit") {
                        ExpectValue("dksml_temperature_limit_celsius", d, value);
                        continue;
                    }
                    Labels t = d;
                    t["sensor"] = sensor;
                    ExpectValue("dksml_temperature_celsius", t, value);
                }
            for (const auto& [key, name] : {std::pair{"sensor_table_c", "dksml_temperature_sensor_celsius"},
                                            std::pair{"voltage_monitor_raw", "dksml_voltage_monitor_raw"}}) {
                if (!die[key].is_array()) continue;
                for (size_t r = 0; r < die[key].size(); ++r)
                    for (size_t s = 0; s < die[key][r].size(); ++s) {
                        Labels cell = d;
                        cell.insert({{"row", std::to_string(r)}, {"slot", std::to_string(s)}});
                        ExpectValue(name, cell, die[key][r][s]);
                    }
            }
        }
    }
    ASSERT_FALSE(document["limited_devices"].empty());
    for (const json& limited : document["limited_devices"])
        ExpectValue("dksml_limited_device_reason",
                    {{"bus_id", limited["bus_id"]}, {"reason", limited["unavailable_reason"]["text"]}},
                    limited["unavailable_reason"]["code"]);
}

TEST_F(ExporterServer, ValuesAgreeWithTheAttributeFiles) {
    // The fan and throttle mask of the first GPU, read straight from its files.
    const std::vector<Sample> info = Select(m_samples, "dksml_gpu_info", {{"gpu", "0"}});
    ASSERT_EQ(info.size(), 1u);
    const std::string dir = "/sys/bus/pci/devices/" + info[0].labels.at("bus_id") + "/smi/";
    unsigned rpm = 0, pmdecsrc = 0;
    ASSERT_EQ(std::sscanf(m_host.ReadFile(dir + "fan_ctrl").c_str(), "fan_rpm: %u", &rpm), 1);
    ASSERT_EQ(std::sscanf(m_host.ReadFile(dir + "pmdecsrc").c_str(), "pmdecsrc: %u", &pmdecsrc), 1);
    EXPECT_EQ(ValueOf(m_samples, "dksml_fan_speed_rpm", {{"gpu", "0"}}), rpm);
    EXPECT_EQ(ValueOf(m_samples, "dksml_clock_throttle_reasons_mask", {{"gpu", "0"}, {"die", "0"}}), pmdecsrc);
    // One series per reason bit in force.
    for (unsigned bit = 0; bit < 32; ++bit)
        EXPECT_EQ(ValueOf(m_samples, "dksml_clock_throttle_reason_active",
                          {{"gpu", "0"}, {"die", "0"}, {"reason", "bit" + std::to_string(bit)}})
                      .has_value(),
                  ((pmdecsrc >> bit) & 1) != 0)
            << bit;
}

TEST_F(ExporterServer, HealthSeriesAndHelpLines) {
    EXPECT_EQ(ValueOf(m_samples, "dksml_up"), 1);
    EXPECT_EQ(ValueOf(m_samples, "dksml_exporter_last_collect_success"), 1);
    EXPECT_GT(ValueOf(m_samples, "dksml_exporter_collect_duration_seconds").value_or(0), 0);
    EXPECT_EQ(ValueOf(m_samples, "dksml_exporter_collect_errors_total", {{"family", "clocks"}}), 0);
    // Every series' name has its HELP line.
    for (const Sample& sample : m_samples) {
        std::string family = sample.name;
        for (const char* suffix : {"_count", "_sum"})
            if (family.ends_with(suffix) && m_reply.body.find("# HELP " + family + " ") == std::string::npos)
                family.resize(family.size() - std::string_view(suffix).size());
        EXPECT_NE(m_reply.body.find("# HELP " + family + " "), std::string::npos) << sample.name;
    }
    // The front page links to the metrics.
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
