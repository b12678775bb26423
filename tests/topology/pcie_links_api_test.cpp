// PCIe and interconnect exports end to end on virtual hosts.
#include <gtest/gtest.h>

#include <cstring>

#include "api/api_host.h"

namespace dksml {
namespace {

using test::MakeHost;

// The links, slots, byte counters and interconnect readings of every device
// of each profile are in dksmi's --json transcripts (tests/dksmi/golden); the
// tests here take the refusals, the text rules and what dksmi does not print
// (null outputs and unknown indices are in tests/api, the port-count rule in
// links_service_test.cpp).

// Refusals and the link text rules of the server's first GPU, one file at a
// time: each garbled or missing file is a sysfs error.
TEST(PcieApi, RefusalsAndGarbledOrMissingFiles) {
    auto host = MakeHost("server");
    const std::string dir = "/sys/bus/pci/devices/0000:1b:00.0/";
    DkSmlPcieInfo info{};
    EXPECT_EQ(dkSmlGetPcieInfo(100, &info), DK_SML_ERROR_NOT_SUPPORTED);  // a VF
    EXPECT_EQ(dkSmlGetPcieMaxLinkInfo(100, &info), DK_SML_ERROR_NOT_SUPPORTED);
    // "Unknown" is the driver's word for a link it cannot measure.
    host->WriteFile(dir + "smi/pcicurrentlinkspeed", "Unknown\n");
    ASSERT_EQ(dkSmlGetPcieInfo(0, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.speed, 0.0f);
    host->WriteFile(dir + "smi/pcicurrentlinkspeed", "16\n");
    EXPECT_EQ(dkSmlGetPcieInfo(0, &info), DK_SML_ERROR_SYSFS);
    host->WriteFile(dir + "smi/pcicurrentlinkspeed", "");
    EXPECT_EQ(dkSmlGetPcieInfo(0, &info), DK_SML_ERROR_SYSFS);
    host->Remove(dir + "max_link_width");
    EXPECT_EQ(dkSmlGetPcieMaxLinkInfo(0, &info), DK_SML_ERROR_SYSFS);
    DkSmlPcieThroughput throughput{};
    host->WriteFile(dir + "smi/showupstreambandwidth", "rx bytes: 1\ntx bytes: 2\n");
    EXPECT_EQ(dkSmlGetPcieThroughput(0, &throughput), DK_SML_ERROR_SYSFS);
    uint32_t slot = 0;
    host->WriteFile("/sys/firmware/dmi/tables/DMI", std::string("\x09\x11\x00", 3));  // a slot record cut short
    EXPECT_EQ(dkSmlGetDeviceSlot(0, &slot), DK_SML_ERROR_SYSFS);
    host->Remove("/sys/firmware/dmi/tables/DMI");
    EXPECT_EQ(dkSmlGetDeviceSlot(0, &slot), DK_SML_ERROR_SYSFS);
}

TEST(PcieApi, GuestReportsNoMaximumLink) {
    nlohmann::json profile = vhost::LoadProfile("guest");
    profile["devices"].push_back({{"bus_id", "0000:00:07.0"}, {"model", "DKK6-A"}, {"bridges", nlohmann::json::array()}});
    auto host = std::make_unique<vhost::ScopedHost>(profile);
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    DkSmlPcieInfo info{1.0f, 1};
    ASSERT_EQ(dkSmlGetPcieMaxLinkInfo(0, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.speed, 0.0f);
    EXPECT_EQ(info.width, 0u);
}

TEST(PcieApi, PciDelayAndGenerationOnlyOnTheInferenceLine) {
    auto host = MakeHost("workstation");
    uint32_t delay = 0;
    ASSERT_EQ(dkSmlGetPciDelay(0, &delay), DK_SML_SUCCESS);  // DKQ8
    EXPECT_EQ(delay, 100u);
    EXPECT_EQ(dkSmlGetPciDelay(1, &delay), DK_SML_ERROR_NOT_SUPPORTED);  // DKK2
    EXPECT_EQ(dkSmlSetPciDelay(0, 0), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlSetPciDelay(0, 10001), DK_SML_ERROR_INVALID_INPUT);
    const std::string smi = "/sys/bus/pci/devices/0000:01:00.0/smi/";
    EXPECT_EQ(dkSmlSetPciDelay(0, 1), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile(smi + "setpcidelay"), "1\n");
    EXPECT_EQ(dkSmlSetPciDelay(0, 10000), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile(smi + "setpcidelay"), "10000\n");
    // The DKQ8 link tops out at 16 GT/s: generation 4 at most.
    EXPECT_EQ(dkSmlSetPciSpeed(0, DK_SML_PCI_GEN5), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlSetPciSpeed(0, static_cast<DkSmlPciGen>(0)), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlSetPciSpeed(0, DK_SML_PCI_GEN4), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile(smi + "setpcispeed"), "4\n");
    host->WriteFile("/sys/bus/pci/devices/0000:01:00.0/max_link_speed", "8.0 GT/s PCIe\n");
    EXPECT_EQ(dkSmlSetPciSpeed(0, DK_SML_PCI_GEN4), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlSetPciSpeed(1, DK_SML_PCI_GEN1), DK_SML_ERROR_NOT_SUPPORTED);
}

// The compatibility family reads the link state before the native write
// below turns the links off.
TEST(LinksApi, CompatibilityStateThenStateWriteCountersAndPortInfo) {
    auto host = MakeHost("server");
    DkSmlExDevice device = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:b0:00.0", &device), DK_SML_EX_SUCCESS);
    DkSmlExEnableState active{};
    ASSERT_EQ(dkSmlExDeviceGetDravikLinkState(device, 0, &active), DK_SML_EX_SUCCESS);
    EXPECT_EQ(active, DK_SML_EX_FEATURE_ENABLED);
    EXPECT_EQ(dkSmlExDeviceGetDravikLinkState(device, 7, &active), DK_SML_EX_ERROR_NOT_SUPPORTED);
    uint32_t width = 0;
    ASSERT_EQ(dkSmlExGetMaxPcieLinkWidth(device, &width), DK_SML_EX_SUCCESS);
    EXPECT_EQ(width, 16u);
    ASSERT_EQ(dkSmlExDeviceGetCurrPcieLinkWidth(device, &width), DK_SML_EX_SUCCESS);
    EXPECT_EQ(width, 16u);
    uint32_t bytes = 0;
    EXPECT_EQ(dkSmlExGetPcieThroughput(device, DK_SML_EX_PCIE_UTIL_RX_BYTES, &bytes), DK_SML_EX_SUCCESS);
    EXPECT_GT(bytes, 0u);

    uint32_t count = 16;
    uint32_t state = 0;
    char text[32] = {};
    uint32_t size = sizeof(text);
    ASSERT_EQ(dkSmlSetDravikLinkState(4, 0), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile("/sys/bus/pci/devices/0000:b0:00.0/smi/dravlink_ctrl"), "0\n");
    EXPECT_EQ(dkSmlGetDravikLinkState(2, &state, text, &size), DK_SML_ERROR_NOT_SUPPORTED);  // hosts VFs

    DkSmlDravikLinkTrafficStat traffic[16] = {};
    ASSERT_EQ(dkSmlGetDravikLinkTrafficStat(4, DK_SML_DRAVIK_LINK_OUTBOUND, &count, traffic), DK_SML_SUCCESS);
    EXPECT_EQ(count, 7u);
    EXPECT_EQ(traffic[0].packets, traffic[0].bytes / 256);
    DkSmlDravikLinkAer aer[16] = {};
    count = 16;
    ASSERT_EQ(dkSmlGetDravikLinkAer(4, &count, aer), DK_SML_SUCCESS);
    EXPECT_EQ(aer[1].correctable, 3u);
    DkSmlDravikLinkInfo_v2 info{};
    ASSERT_EQ(dkSmlGetDravikLinkInfo_v2(4, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.portCount, 7u);
    EXPECT_FLOAT_EQ(info.speed[0], 32.0f);
    EXPECT_EQ(info.width[6], 16u);
    EXPECT_EQ(info.state[0], 2u);
    EXPECT_EQ(info.state[7], 5u);
}

}  // namespace
}  // namespace dksml
