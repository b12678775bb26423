// dksmi --json beyond the golden transcripts: edited and missing attribute
// files, and the document of one device.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

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

TEST_F(DksmiJson, OneDeviceDocumentHoldsOnlyThatDevice) {
    ScopedHost host("server"sv);
    const json document = RunJson("-i 100");
    ASSERT_EQ(document["devices"].size(), 1u);
    EXPECT_EQ(document["devices"][0]["index"], 100);
    EXPECT_TRUE(document["limited_devices"].empty());
}

}  // namespace
}  // namespace dksmi::test
