// Power, usage and memory through the C API on the "server" virtual host,
// checked against the attribute files the host wrote, and the die check of
// their die forms.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/dk_server_suite.h"

namespace dksml::test {
namespace {

// Integers after the colon of the first line whose label contains `fragment`.
std::vector<long long> Values(const std::string& text, const std::string& fragment) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos || line.substr(0, colon).find(fragment) == std::string::npos) continue;
        std::istringstream numbers(line.substr(colon + 1));
        std::vector<long long> values;
        for (long long v; numbers >> v;) values.push_back(v);
        return values;
    }
    return {};
}

class PowerServer : public ServerSuite {
protected:
    static std::string Attr(const std::string& bdf, const std::string& name, int die = 0) {
        return host->ReadFile("/sys/bus/pci/devices/" + bdf + (die == 0 ? "/smi/" : "/smi1/") + name);
    }
};

// The server's devices by bus id, with the index the golden transcripts pin.
struct ServerDevice {
    const char* bdf;
    uint32_t index;
};
constexpr ServerDevice c_twoDie{"0000:1b:00.0", 0};       // DKK6-A, two dies, reports its two-device board
constexpr ServerDevice c_vf{"0000:1e:00.1", 100};         // of the DKK2 at 0000:1e:00.0
constexpr ServerDevice c_boardSecond{"0000:1c:00.0", 1};  // DKK6-AL on the same board

// The values are in the golden transcripts; the refusals are not (the memory
// of a device hosting VFs is refused in the Python tests).
TEST_F(PowerServer, PmbusRefusesAnAbsentRailAndVfs) {
    DkSmlPmbusInfo info{};
    EXPECT_EQ(dkSmlGetPmbusInfo(c_twoDie.index, DK_SML_PMBUS_UNIT_PCIE2, &info), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetPmbusInfo(c_vf.index, DK_SML_PMBUS_UNIT_SOC, &info), DK_SML_ERROR_NOT_SUPPORTED);
}

// The second device of a two-device board has no board monitor: its readings
// are the first device's, found through the board both serials name (the
// golden transcripts pin the values), under the same count rule.
TEST_F(PowerServer, SecondDeviceOfABoardReportsThroughItsMaster) {
    ASSERT_NE(Attr(c_boardSecond.bdf, "showboardpowerinfo").find("not support"), std::string::npos);
    uint32_t board = 0, otherBoard = 0;
    ASSERT_EQ(dkSmlGetDeviceBoardId(c_boardSecond.index, &board), DK_SML_SUCCESS);
    ASSERT_EQ(dkSmlGetDeviceBoardId(c_twoDie.index, &otherBoard), DK_SML_SUCCESS);
    EXPECT_EQ(board, otherBoard);
    DkSmlBoardWayElectricInfo ways[2]{};
    uint32_t count = 1;
    ASSERT_EQ(dkSmlGetBoardPowerInfo(c_boardSecond.index, &count, ways), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(dkSmlGetBoardPowerInfo(c_boardSecond.index, &count, ways), DK_SML_SUCCESS);
}

// The usable devices' states are in the golden --json transcripts.
TEST_F(PowerServer, PciPowerStateAlsoForTheLimitedDevice) {
    DkSmlPciPowerState state = DK_SML_PCI_POWER_STATE_D3COLD;
    DkSmlLimitedDeviceInfo limited{};
    ASSERT_EQ(dkSmlGetLimitedDeviceInfo(6, &limited), DK_SML_SUCCESS);  // after the six usable GPUs
    // The limited device is the one without the file: it is asked, not skipped.
    EXPECT_EQ(dkSmlGetPciPowerState(6, &state), DK_SML_ERROR_NOT_SUPPORTED);
}

// Die forms check the die against the device before any service runs.
TEST_F(PowerServer, DieBeyondTheDeviceIsInvalid) {
    ASSERT_GT(dkSmlGetDeviceCount(), 0u) << "discovery found no device on the server host";
    for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
        uint32_t dies = 0;
        ASSERT_EQ(dkSmlGetDeviceDieCount(index, &dies), DK_SML_SUCCESS) << index;
        DkSmlMemoryInfo memory{};
        int32_t value = 0;
        DkSmlPmbusInfo pmbus{};
        EXPECT_EQ(dkSmlGetDieMemoryInfo(index, dies, &memory), DK_SML_ERROR_INVALID_DIE_ID) << index;
        EXPECT_EQ(dkSmlGetDieIpUsage(index, dies, DK_SML_USAGE_IP_DLA, &value), DK_SML_ERROR_INVALID_DIE_ID);
        EXPECT_EQ(dkSmlGetDiePmbusInfo(index, 0xFFFFFFFFu, DK_SML_PMBUS_UNIT_SOC, &pmbus), DK_SML_ERROR_INVALID_DIE_ID);
    }
}

TEST_F(PowerServer, IpStatesAreBitsOfTheDiesMask) {
    int32_t states[16]{};
    uint32_t count = 16;
    ASSERT_EQ(dkSmlGetDiePowerStateInfo(c_twoDie.index, 1, DK_SML_DPM_IP_XCORE, states, &count), DK_SML_SUCCESS);
    ASSERT_EQ(count, 12u);
    const long long mask = Values(Attr(c_twoDie.bdf, "ippowerstate", 1), "xcore").at(0);
    for (uint32_t i = 0; i < count; ++i) EXPECT_EQ(states[i], (mask >> i) & 1) << i;
}

TEST_F(PowerServer, CompatibilityFamilyConvertsUnits) {
    DkSmlExDevice handle = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId(c_twoDie.bdf, &handle), DK_SML_EX_SUCCESS);
    uint32_t power = 0;
    ASSERT_EQ(dkSmlExGetPowerUsage(handle, &power), DK_SML_EX_SUCCESS);
    long long rails = 0;
    for (const char* rail : {"soc", "core", "hbm1", "hbm2", "pcie"}) {
        rails += Values(Attr(c_twoDie.bdf, "showpmbuspower"), rail).at(0);
    }
    EXPECT_EQ(power, rails);
    uint32_t limit = 0;
    ASSERT_EQ(dkSmlExGetPowerManagementLimit(handle, &limit), DK_SML_EX_SUCCESS);
    EXPECT_EQ(limit, std::stoul(Attr(c_twoDie.bdf, "config_tbp")) * 1000);
    // The memory total of every device, and the refusal of a board without
    // memory figures, are compared with the native family in the Python tests.
    DkSmlExMemory memory{};
    ASSERT_EQ(dkSmlExDeviceGetMemoryInfo(handle, &memory), DK_SML_EX_SUCCESS);
    EXPECT_EQ(memory.free, memory.total - memory.used);
    DkSmlExUtilization utilization{};
    ASSERT_EQ(dkSmlExDeviceGetUtilization(handle, &utilization), DK_SML_EX_SUCCESS);
    EXPECT_LE(utilization.memory, 100u);
}

}  // namespace
}  // namespace dksml::test
