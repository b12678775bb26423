// The interconnect service on canned driver text: the two-line bandwidth
// records, the per-port parsers and the die asymmetry of the port count.
// (Each direction's attribute and die 1's closing pm port are pinned by the
// bandwidth lists of dksmi's golden --json transcripts.)
#include <gtest/gtest.h>

#include <cstring>

#include "features/links/dk_link_ports.h"
#include "features/links/dk_links.h"
#include "support/dk_fake_device.h"

namespace dksml {
namespace {

// A plain physical GPU: no virtual functions hosted.
class LinkDevice : public test::FakeDevice {
public:
    bool IsPf() const override { return false; }
};

class LinkTest : public ::testing::Test {
protected:
    LinkDevice device;
    DkDravLink service;
};

std::string Bandwidth(int links) {
    std::string text;
    for (int i = 0; i < links; ++i) {
        text += "link" + std::to_string(i) + " bandwidth: " + std::to_string(100 + i) + "\n";
        text += "link" + std::to_string(i) + " max bandwidth: 50000\n";
    }
    return text;
}

TEST_F(LinkTest, BandwidthOverflowIsCountedAndAnswered10) {
    device.Serve(0, DRAVIK_SMI_SHOWDVLKIBANDWIDTH, Bandwidth(4));
    DkSmlDravikLinkBandwidth links[3] = {};
    uint32_t count = 3;
    EXPECT_EQ(service.GetDieDravLinkBandwidth(&device, 0, DK_SML_DRAVIK_LINK_INBOUND, &count, links),
              DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(links[2].values[0], 102u);
    EXPECT_EQ(links[2].values[1], 50000u);
}

TEST_F(LinkTest, BandwidthEmptyOrBrokenTextAndRefusedFunctions) {
    DkSmlDravikLinkBandwidth links[4] = {};
    uint32_t count = 4;
    device.Serve(0, DRAVIK_SMI_SHOWDVLKIBANDWIDTH, "\n");
    EXPECT_EQ(service.GetDieDravLinkBandwidth(&device, 0, DK_SML_DRAVIK_LINK_INBOUND, &count, links),
              DK_SML_ERROR_NOT_SUPPORTED);
    device.Serve(0, DRAVIK_SMI_SHOWDVLKIBANDWIDTH, "link0 bandwidth: 5\n");  // second line missing
    EXPECT_EQ(service.GetDieDravLinkBandwidth(&device, 0, DK_SML_DRAVIK_LINK_INBOUND, &count, links),
              DK_SML_ERROR_SYSFS);
    test::FakeDevice hostOfVfs;  // reports IsPf()
    hostOfVfs.Serve(0, DRAVIK_SMI_SHOWDVLKIBANDWIDTH, Bandwidth(1));
    EXPECT_EQ(service.GetDieDravLinkBandwidth(&hostOfVfs, 0, DK_SML_DRAVIK_LINK_INBOUND, &count, links),
              DK_SML_ERROR_NOT_SUPPORTED);
}

TEST_F(LinkTest, PortStateDie1NeedsEightSlotsAndUnknownStatesRead5) {
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_SHOWDVLKSTATUS, "port1: 2\nport3: 2.0\nport4: 7\nport5: junk\n");
    device.Serve(1, DRAVIK_SMI_SHOWDVLKSTATUS, "port8: 1\n");
    uint32_t states[8] = {};
    uint32_t count = 7;
    ASSERT_EQ(service.GetDieDravikLinkPortState(&device, 0, states, &count), DK_SML_SUCCESS);
    EXPECT_EQ(count, 7u);
    const uint32_t expected[7] = {2, 5, 2, 5, 0, 5, 5};
    for (int i = 0; i < 7; ++i) EXPECT_EQ(states[i], expected[i]) << "port " << i + 1;
    count = 7;
    EXPECT_EQ(service.GetDieDravikLinkPortState(&device, 1, states, &count), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 8u);
    ASSERT_EQ(service.GetDieDravikLinkPortState(&device, 1, states, &count), DK_SML_SUCCESS);
    EXPECT_EQ(states[7], 1u);
    EXPECT_EQ(states[0], 5u);
}

TEST(LinkPorts, PortNumberAboveTheCountEndsWith1) {
    float values[2] = {};
    EXPECT_EQ(GetDklkPortValue<float>("port1: 1.5\nport3: 2\n", values, 2), DK_SML_ERROR_FAILURE);
    EXPECT_FLOAT_EQ(values[0], 1.5f);
    EXPECT_EQ(GetDklkPortValue<float>("no ports here\nportx: 3\nport", values, 2), DK_SML_SUCCESS);
}

TEST_F(LinkTest, StateReadsStateAndTextByTheTextRuleAndWritesDecimal) {
    device.Serve(0, DRAVIK_SMI_DRAVLINK_CTRL, "1\nenabled\n");
    uint32_t state = 0;
    char text[8] = {};
    uint32_t size = 7;  // "enabled" needs 8 with its zero
    EXPECT_EQ(service.GetDravikLinkState(&device, &state, text, &size), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(state, 1u);
    EXPECT_EQ(service.GetDravikLinkState(&device, &state, text, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "enabled");
    char wide[16] = {};
    size = sizeof(wide);
    device.Serve(0, DRAVIK_SMI_DRAVLINK_CTRL, "on\nenabled\n");
    EXPECT_EQ(service.GetDravikLinkState(&device, &state, wide, &size), DK_SML_ERROR_SYSFS);
    device.Serve(0, DRAVIK_SMI_DRAVLINK_CTRL, "");
    EXPECT_EQ(service.GetDravikLinkState(&device, &state, wide, &size), DK_SML_ERROR_NOT_SUPPORTED);

    EXPECT_EQ(service.SetDravikLinkState(&device, 0), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 1u);
    EXPECT_EQ(device.writes[0].op, DRAVIK_SMI_DRAVLINK_CTRL);
    EXPECT_EQ(device.writes[0].text, "0");
}

TEST_F(LinkTest, CountersPairsPerPortAndBrokenLines) {
    device.Serve(0, DRAVIK_SMI_DVLKI_TRAFFIC_STAT, "port1: 10 2560\nport2: 3 768\n");
    device.Serve(0, DRAVIK_SMI_SHOWDVLKAER, "port1: 4\n");
    DkSmlDravikLinkTrafficStat traffic[1] = {};
    uint32_t count = 1;
    EXPECT_EQ(service.GetDravLinkTrafficStat(&device, DK_SML_DRAVIK_LINK_INBOUND, &count, traffic),
              DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(traffic[0].packets, 10u);
    EXPECT_EQ(traffic[0].bytes, 2560u);
    DkSmlDravikLinkAer aer[4] = {};
    count = 4;
    EXPECT_EQ(service.GetDravLinkAer(&device, &count, aer), DK_SML_ERROR_SYSFS);
}

}  // namespace
}  // namespace dksml
