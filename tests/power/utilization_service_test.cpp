// The utilisation service on canned driver text: averaging, the AP table,
// the sampling switch and memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "features/utilization/dk_utilization.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

// The fake reports IsPf for every physical function; these rules read as a
// device that hosts no virtual function.
class PlainDevice : public FakeDevice {
public:
    bool hostsVfs = false;
    bool IsPf() const override { return hostsVfs; }
};

// Each test starts from a fresh single-die fake; the service keeps no state.
class UtilizationService : public ::testing::Test {
protected:
    PlainDevice device;
    DkUtilization service;
};

TEST_F(UtilizationService, AverageStopsAtTheEndMarker) {
    struct Case {
        const char* samples;
        int32_t average;
    };
    const Case cases[] = {
        {" 30 50 -1", 40}, {" -1 20", 0}, {" 30 50 -1 99", 40}, {" 7", 7}, {" 1 2", 1}, {"", -1}, {" x", -1},
    };
    for (const Case& c : cases) EXPECT_EQ(DkUtilization::GetAverageUsage(c.samples), c.average) << c.samples;
}

TEST_F(UtilizationService, EngineUsagePerDieAndDevice) {
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_SHOWUSE, "vpue dla use: 10 20\nvpud use: 30 50 -1\n");
    device.Serve(1, DRAVIK_SMI_SHOWUSE, "dla use: 61\nvpud use: 11\n");
    device.Serve(0, DRAVIK_SMI_SHOWXCUSE, "xcore usage: 2a\ndpc0: 1 2\n");
    struct Case {
        unsigned int die;
        DkSmlUsageIp ip;
        DkSmlReturn result;
        int32_t usage;
    };
    const Case cases[] = {
        {0, DK_SML_USAGE_IP_DLA, DK_SML_SUCCESS, 15},   // the key holds both fragments
        {0, DK_SML_USAGE_IP_VPUE, DK_SML_SUCCESS, 15},
        {0, DK_SML_USAGE_IP_VPUD, DK_SML_SUCCESS, 40},
        {0, DK_SML_USAGE_IP_G2D, DK_SML_ERROR_NOT_SUPPORTED, -5},
        {0, DK_SML_USAGE_IP_XCORE, DK_SML_SUCCESS, 0x2a},
        {1, DK_SML_USAGE_IP_XCORE, DK_SML_ERROR_NOT_SUPPORTED, -5},
        {0, static_cast<DkSmlUsageIp>(5), DK_SML_ERROR_INVALID_INPUT, -5},
    };
    for (const Case& c : cases) {
        int32_t usage = -5;
        EXPECT_EQ(service.GetDieUsage(&device, c.die, c.ip, &usage), c.result) << c.die << "/" << c.ip;
        EXPECT_EQ(usage, c.usage) << c.die << "/" << c.ip;
    }
    // The device's mean over its dies is pinned by the golden --json transcripts.
    int32_t usage = 0;
    device.dieCount = 0;
    EXPECT_EQ(service.GetDeviceUsage(&device, DK_SML_USAGE_IP_DLA, &usage), DK_SML_ERROR_FAILURE);
}

struct ApTable {
    uint32_t usage[16];
    uint32_t dpcs = 4;
    uint32_t aps = 4;
    ApTable() { std::fill(std::begin(usage), std::end(usage), 0xdeadu); }
};

TEST_F(UtilizationService, ApTableSkipsFusedOffUnits) {
    device.Serve(0, DRAVIK_SMI_DEVICEINFO, "dpc_count 3\nap_per_dpc 2\n");
    device.Serve(0, DRAVIK_SMI_SHOWXCUSE, "xcore usage: 10\ndpc0: 1a ff\ndpc1: ff ff\ndpc2: 0c 0d 0e\ndpc3: 01 02\ndpc4: 05 06\n");
    ApTable table;
    ASSERT_EQ(service.GetXcoreApUsageInfo(&device, table.usage, &table.dpcs, &table.aps), DK_SML_SUCCESS);
    EXPECT_EQ(table.dpcs, 3u);  // dpc1 is harvested; dpc4 is past the device's count
    EXPECT_EQ(table.aps, 5u);   // one AP of dpc0 is fused off, dpc2's third is past ap_per_dpc
    const uint32_t expected[] = {0x1a, 0x0c, 0x0d, 0x01, 0x02, 0xdead};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(table.usage[i], expected[i]) << i;
}

TEST_F(UtilizationService, ApTableNeedsBothCountsAndRoom) {
    struct Case {
        const char* name;
        const char* deviceInfo;
        const char* usage;
        uint32_t dpcCapacity;
        DkSmlReturn result;
        uint32_t dpcsAfter;
        uint32_t apsAfter;
    };
    const Case cases[] = {
        {"no ap line", "dpc_count 3\n", "h: 1\ndpc0: 1\n", 4, DK_SML_ERROR_SYSFS, 4, 4},
        {"no dpc line", "ap_per_dpc 2\n", "h: 1\ndpc0: 1\n", 4, DK_SML_ERROR_SYSFS, 4, 4},
        {"garbage count", "dpc_count x\nap_per_dpc 2\n", "h: 1\ndpc0: 1\n", 4, DK_SML_ERROR_SYSFS, 4, 4},
        {"negative count", "dpc_count -3\nap_per_dpc 2\n", "h: 1\ndpc0: 1\n", 4, DK_SML_ERROR_SYSFS, 4, 4},
        {"too small", "dpc_count 6\nap_per_dpc 2\n", "h: 1\ndpc0: 1\n", 4, DK_SML_ERROR_INSUFFICIENT_SIZE, 6, 2},
        {"header only", "dpc_count 3\nap_per_dpc 2\n", "xcore usage: 10\n", 4, DK_SML_ERROR_SYSFS, 4, 4},
        {"all harvested", "dpc_count 3\nap_per_dpc 2\n", "h: 1\ndpc0: ff ff\ndpc1:\n", 4, DK_SML_ERROR_SYSFS, 4, 4},
        {"bad token", "dpc_count 3\nap_per_dpc 2\n", "h: 1\ndpc0: 1 zz\n", 4, DK_SML_ERROR_SYSFS, 4, 4},
    };
    for (const Case& c : cases) {
        device.Serve(0, DRAVIK_SMI_DEVICEINFO, c.deviceInfo);
        device.Serve(0, DRAVIK_SMI_SHOWXCUSE, c.usage);
        ApTable table;
        table.dpcs = c.dpcCapacity;
        EXPECT_EQ(service.GetXcoreApUsageInfo(&device, table.usage, &table.dpcs, &table.aps), c.result) << c.name;
        EXPECT_EQ(table.dpcs, c.dpcsAfter) << c.name;
        EXPECT_EQ(table.aps, c.apsAfter) << c.name;
    }
}

TEST_F(UtilizationService, SamplingSwitch) {
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_APUSEAGESWITCH, "xcore_ap_use: 1\n");
    uint32_t state = 0;
    EXPECT_EQ(service.GetApUsageToggle(&device, &state), DK_SML_SUCCESS);
    EXPECT_EQ(state, 1u);
    device.Serve(0, DRAVIK_SMI_APUSEAGESWITCH, "");
    EXPECT_EQ(service.GetApUsageToggle(&device, &state), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(service.SetApUsageToggle(&device, true), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 2u);
    EXPECT_EQ(device.writes[0].text, "xcore_ap_use 1");
    EXPECT_EQ(device.writes[1].die, 1u);
    EXPECT_EQ(service.SetDieApUsageToggle(&device, 0, false), DK_SML_SUCCESS);
    EXPECT_EQ(device.writes.back().text, "xcore_ap_use 0");
    device.hostsVfs = true;
    EXPECT_EQ(service.GetApUsageToggle(&device, &state), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(service.SetApUsageToggle(&device, true), DK_SML_ERROR_NOT_SUPPORTED);
}

// The sums over dies (vram and visible vram; gtt is die 0's alone) are pinned
// by the server's golden --json transcript, whose two-die devices tell a sum
// from one die's value in every pool; a missing line is here.
TEST_F(UtilizationService, MemoryFailsOnAMissingLineAfterFillingTheOthers) {
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_SHOWMEMINFO, "vram total: 100\nvis total: 10\ngtt total: 1000\n");
    device.Serve(0, DRAVIK_SMI_SHOWMEMUSE, "vram used: 40\nvis used: 4\ngtt used: 400\n");
    device.Serve(1, DRAVIK_SMI_SHOWMEMINFO, "vram total: 200\nvis total: 20\ngtt total: 2000\n");
    device.Serve(1, DRAVIK_SMI_SHOWMEMUSE, "vram used: 50\nvis used: 5\n");
    DkSmlMemoryInfo info{};
    EXPECT_EQ(service.GetDieMemoryInfo(&device, 1, &info), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(info.pool[0].used, 50u);  // filled before the missing line
    EXPECT_EQ(info.pool[1].used, 5u);
    EXPECT_EQ(service.GetMemoryInfo(&device, &info), DK_SML_ERROR_SYSFS);
    device.hostsVfs = true;
    EXPECT_EQ(service.GetMemoryInfo(&device, &info), DK_SML_ERROR_NOT_SUPPORTED);
}

}  // namespace
}  // namespace dksml::test
