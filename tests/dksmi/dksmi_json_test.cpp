// dksmi --json on simulated hosts: the document parses, follows the schema,
// and its values agree with the driver files of the host.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include <nlohmann/json.hpp>

#include "core/dk_pci_ids.h"
#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using nlohmann::json;
using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

class DksmiJson : public DksmiTest {
protected:
    static json RunJson(const std::string& arguments, int expectedExit = 0) {
        const RunResult run = RunDksmi("--json " + arguments);
        EXPECT_EQ(run.exitCode, expectedExit) << run.err;
        return json::parse(run.out);
    }
};

bool IsNumberOrNull(const json& value) { return value.is_null() || value.is_number(); }

void ExpectDeviceSchema(const json& device) {
    for (const char* key : {"index", "name", "bus_id", "uuid", "brand", "role", "virtual_function_indices",
                            "physical_function_index", "dies"})
        EXPECT_TRUE(device.contains(key)) << key << " missing in " << device.dump();
    for (const char* key : {"die_count", "hotspot_temperature_c", "fan_rpm", "fan_duty", "throttle_reasons_mask"})
        EXPECT_TRUE(device.contains(key) && IsNumberOrNull(device[key])) << key;
    for (const json& die : device["dies"]) {
        for (const char* key : {"die", "throttle_reasons_mask", "clocks_mhz", "temperatures_c",
                                "hottest_sensor_index", "sensor_table_c", "voltage_monitor_raw"})
            EXPECT_TRUE(die.contains(key)) << key;
        if (die["clocks_mhz"].is_object()) {
            EXPECT_EQ(die["clocks_mhz"].size(), 13u);
        }
        if (!die["temperatures_c"].is_object()) continue;
        for (const auto& [name, value] : die["temperatures_c"].items())
            EXPECT_TRUE(value.is_null() || value.get<int64_t>() < 65535) << name << ": 65535 is no reading";
    }
}

const json* FindDevice(const json& document, const std::string& busId) {
    for (const json& device : document["devices"])
        if (device["bus_id"] == busId) return &device;
    return nullptr;
}

std::vector<uint32_t> Numbers(const std::string& text) {
    std::vector<uint32_t> numbers;
    std::istringstream in(text);
    for (uint32_t n = 0; in >> n;) numbers.push_back(n);
    return numbers;
}

TEST_F(DksmiJson, ServerDocumentHasTheSchemaFields) {
    ScopedHost host("server"sv);
    const json document = RunJson("");
    EXPECT_EQ(document["schema_version"], 2);
    EXPECT_TRUE(document["error"].is_null());
    EXPECT_EQ(document["library_status"]["code"], 0);
    ASSERT_TRUE(document["devices"].is_array());
    ASSERT_TRUE(document["limited_devices"].is_array());
    ASSERT_FALSE(document["devices"].empty());
    for (const json& device : document["devices"]) ExpectDeviceSchema(device);
    for (const json& limited : document["limited_devices"]) {
        EXPECT_TRUE(limited["index"].is_number_unsigned());
        EXPECT_TRUE(limited["vendor_id"].is_number_unsigned());
        EXPECT_TRUE(limited["is_virtual_function"].is_boolean());
        EXPECT_TRUE(limited["unavailable_reason"]["code"].is_number_unsigned());
        EXPECT_FALSE(limited["unavailable_reason"]["text"].get<std::string>().empty());
    }
}

TEST_F(DksmiJson, ServerDevicesMatchTheHostTree) {
    ScopedHost host("server"sv);
    const json document = RunJson("");
    const std::vector<TreeFunction> tree = MakerFunctions(host);

    // Every GPU function of the host is either served or listed as limited, once.
    std::multiset<std::string> reported;
    for (const json& d : document["devices"]) reported.insert(d["bus_id"].get<std::string>());
    for (const json& d : document["limited_devices"]) reported.insert(d["bus_id"].get<std::string>());
    std::multiset<std::string> expected;
    for (const TreeFunction& f : tree) expected.insert(f.busId);
    EXPECT_EQ(reported, expected);
    EXPECT_FALSE(document["limited_devices"].empty()) << "the server host has a limited device";

    // Physical devices count from 0 and VFs from 100, both in bus id order.
    uint32_t nextPhysical = 0;
    uint32_t nextVirtual = 100;
    for (const TreeFunction& function : tree) {
        const json* device = FindDevice(document, function.busId);
        if (device == nullptr) continue;
        SCOPED_TRACE(function.busId);
        EXPECT_EQ((*device)["die_count"], function.dieCount);
        EXPECT_EQ((*device)["dies"].size(), function.dieCount);
        EXPECT_EQ((*device)["role"] == "virtual_function", function.isVirtualFunction);
        EXPECT_EQ((*device)["index"], function.isVirtualFunction ? nextVirtual++ : nextPhysical++);
        const std::string cardName = host.ReadFile(DieDirectory(function.busId, 0) + "showcardname");
        if (!cardName.empty()) {
            EXPECT_EQ((*device)["name"], cardName.substr(0, cardName.find('\n')));
        }
    }
    EXPECT_GT(nextPhysical, 1u);
}

TEST_F(DksmiJson, VirtualFunctionsNameTheirParentAndHaveNoTelemetry) {
    ScopedHost host("server"sv);
    const json document = RunJson("");
    size_t virtualFunctions = 0;
    for (const json& device : document["devices"]) {
        if (device["role"] != "virtual_function") continue;
        ++virtualFunctions;
        const auto parent = std::find_if(document["devices"].begin(), document["devices"].end(),
                                         [&](const json& d) { return d["index"] == device["physical_function_index"]; });
        ASSERT_NE(parent, document["devices"].end()) << device.dump();
        EXPECT_EQ((*parent)["role"], "physical_function");
        const json& siblings = (*parent)["virtual_function_indices"];
        EXPECT_NE(std::find(siblings.begin(), siblings.end(), device["index"]), siblings.end());
        EXPECT_TRUE(device["fan_rpm"].is_null());
        EXPECT_TRUE(device["throttle_reasons_mask"].is_null());
        for (const json& die : device["dies"]) EXPECT_TRUE(die["clocks_mhz"].is_null());
    }
    EXPECT_GT(virtualFunctions, 0u);
}

TEST_F(DksmiJson, ReadingsEqualTheAttributeFiles) {
    ScopedHost host("server"sv);
    const json document = RunJson("");
    size_t checkedTemperatures = 0;
    size_t checkedClocks = 0;
    for (const TreeFunction& function : MakerFunctions(host)) {
        const json* device = FindDevice(document, function.busId);
        if (device == nullptr || function.isVirtualFunction) continue;
        SCOPED_TRACE(function.busId);
        for (const json& die : (*device)["dies"]) {
            const std::string dir = DieDirectory(function.busId, die["die"].get<unsigned>());
            const auto temperatures = ReadKeyValues(host, dir + "showtemp");
            if (temperatures.count("hotspot") && die["temperatures_c"].is_object()) {
                EXPECT_EQ(die["temperatures_c"]["hotspot"], std::stoi(temperatures.at("hotspot")));
                ++checkedTemperatures;
            }
            const auto throttle = ReadKeyValues(host, dir + "pmdecsrc");
            if (!throttle.empty()) {
                EXPECT_EQ(die["throttle_reasons_mask"], std::stoull(throttle.begin()->second));
            }
            // Other vendors' boards get an offset on their clocks; compare the maker's own.
            const auto clocks = ReadKeyValues(host, dir + "showclocks");
            if (function.vendorId == dksml::c_makerVendorId && clocks.count("xcore clock")) {
                EXPECT_EQ(die["clocks_mhz"]["xcore"], json(Numbers(clocks.at("xcore clock"))));
                ++checkedClocks;
            }
        }
        const auto fan = ReadKeyValues(host, DieDirectory(function.busId, 0) + "fan_ctrl");
        if (fan.count("fan_rpm") && fan.count("fan_pwm") && fan.size() == 2) {
            EXPECT_EQ((*device)["fan_rpm"], std::stoul(fan.at("fan_rpm")));
            EXPECT_EQ((*device)["fan_duty"], std::stoul(fan.at("fan_pwm")));
        } else if (fan.empty()) {
            EXPECT_TRUE((*device)["fan_rpm"].is_null());
        }
    }
    EXPECT_GT(checkedTemperatures, 0u);
    EXPECT_GT(checkedClocks, 0u);
}

TEST_F(DksmiJson, EditedAttributesShowUpAndMissingOnesAreNull) {
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

TEST_F(DksmiJson, GuestListsOnlyVirtualFunctions) {
    ScopedHost host("guest"sv);
    const json document = RunJson("");
    ASSERT_FALSE(document["devices"].empty());
    uint32_t expectedIndex = 100;
    for (const json& device : document["devices"]) {
        EXPECT_EQ(device["role"], "virtual_function");
        EXPECT_EQ(device["index"], expectedIndex++);
        ExpectDeviceSchema(device);
    }
    size_t treeFunctions = MakerFunctions(host).size();
    EXPECT_EQ(document["devices"].size() + document["limited_devices"].size(), treeFunctions);
}

TEST_F(DksmiJson, OneDeviceDocumentHoldsOnlyThatDevice) {
    ScopedHost host("server"sv);
    const json document = RunJson("-i 100");
    ASSERT_EQ(document["devices"].size(), 1u);
    EXPECT_EQ(document["devices"][0]["index"], 100);
    EXPECT_TRUE(document["limited_devices"].empty());
}

}  // namespace
}  // namespace dksmi::test
