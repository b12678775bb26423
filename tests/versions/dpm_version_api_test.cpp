// Performance levels and versions end to end through the exported functions
// on the "server" virtual host.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/dk_server_suite.h"

namespace dksml::test {
namespace {

// The server's pinned device indices.
constexpr uint32_t c_xSeriesBoard = 0;  // 0000:1b:00.0
constexpr uint32_t c_dkk6al = 1;        // 0000:1c:00.0
constexpr uint32_t c_dkk2 = 2;          // 0000:1e:00.0
constexpr uint32_t c_dkk6u = 4;         // 0000:b0:00.0

class DpmApiTest : public ServerSuite {
protected:
    static std::string Smi(const char* bdf, const char* file) {
        return host->ReadFile(std::string("/sys/bus/pci/devices/") + bdf + "/smi/" + file);
    }
};

TEST_F(DpmApiTest, LevelsOfTheXSeriesBoard) {
    const uint32_t index = c_xSeriesBoard;
    uint32_t level = 0;
    ASSERT_EQ(dkSmlGetDpmIpMaxPerfLevel(index, DK_SML_DPM_IP_XCORE, &level), DK_SML_SUCCESS);
    EXPECT_EQ(level, 9u);
    // Each die's maximum and current levels are in the golden dksmi --json transcripts.
    EXPECT_EQ(dkSmlGetDieDpmIpMaxPerfLevel(index, 2, DK_SML_DPM_IP_MC, &level), DK_SML_ERROR_INVALID_DIE_ID);

    DkSmlDpmForAll all{};
    ASSERT_EQ(dkSmlGetDpmMaxPerfLevel(index, &all), DK_SML_SUCCESS);
    EXPECT_EQ(all.level[DK_SML_DPM_IP_HBM], 2u);
    EXPECT_EQ(all.level[DK_SML_DPM_IP_NPU], DK_SML_DPM_LEVEL_NONE);

    ASSERT_EQ(dkSmlGetCurrentDpmIpPerfLevel(index, DK_SML_DPM_IP_XCORE, &level), DK_SML_SUCCESS);
    EXPECT_LT(level, 10u);

    DkSmlDpmPerfLevel clocks{};
    ASSERT_EQ(dkSmlGetDpmIpClockInfo(index, DK_SML_DPM_IP_XCORE, &clocks), DK_SML_SUCCESS);
    EXPECT_EQ(clocks.count, 10u);
    EXPECT_LT(clocks.values[0], clocks.values[9]);
    DkSmlDpmPerfLevel volts{};
    ASSERT_EQ(dkSmlGetDpmIpVddInfo(index, DK_SML_DPM_IP_XCORE, &volts), DK_SML_SUCCESS);
    EXPECT_EQ(volts.count, clocks.count);
}

// Null pointers and unknown indices are checked by the native frame test.
TEST_F(DpmApiTest, VirtualFunctionsAndBadInput) {
    uint32_t level = 0;
    EXPECT_EQ(dkSmlGetDpmIpMaxPerfLevel(100, DK_SML_DPM_IP_XCORE, &level), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetDpmIpMaxPerfLevel(0, static_cast<DkSmlDpmIp>(40), &level), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlSetDpmIpMaxPerfLevel(c_dkk6u, DK_SML_DPM_IP_DLA, 0), DK_SML_ERROR_INVALID_INPUT);
}

// Written last in the suite's files: the virtual host keeps what was written.
TEST_F(DpmApiTest, SetMaxLevelWritesTheDriverLine) {
    const uint32_t index = c_dkk2;  // eight compute levels
    EXPECT_EQ(dkSmlSetDpmIpMaxPerfLevel(index, DK_SML_DPM_IP_XCORE, 8), DK_SML_ERROR_INVALID_INPUT);
    ASSERT_EQ(dkSmlSetDpmIpMaxPerfLevel(index, DK_SML_DPM_IP_XCORE, 5), DK_SML_SUCCESS);
    EXPECT_EQ(Smi("0000:1e:00.0", "dpmcount"), "xcore 6\n");
}

// The firmware units and the record's compute-stack version of every device
// are compared with dksmi --json by the Python module's snapshot test.
TEST_F(DpmApiTest, VersionsOfADevice) {
    const uint32_t index = c_dkk6al;
    char text[64];
    uint32_t size = sizeof text;
    ASSERT_EQ(dkSmlGetDeviceVersion(index, DK_SML_VERSION_DRIVER, text, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "6.2.15");
    EXPECT_EQ(size, 7u);
    size = sizeof text;
    ASSERT_EQ(dkSmlGetPptableVersion(index, text, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "3.10");

    DkSmlVersion record{};
    ASSERT_EQ(dkSmlGetDeviceDieVersion(index, 0, &record), DK_SML_SUCCESS);
    EXPECT_STREQ(record.fwVersion.vr0, "0x21");
    EXPECT_EQ(std::string(record.vbiosVersion).rfind("016.4.", 0), 0u);

    // The limited device answers its VBIOS version only.
    size = sizeof text;
    ASSERT_EQ(dkSmlGetDeviceVersion(6, DK_SML_VERSION_VBIOS, text, &size), DK_SML_SUCCESS);
    EXPECT_EQ(std::string(text).rfind("016.2.", 0), 0u) << text;
    size = sizeof text;
    EXPECT_EQ(dkSmlGetDeviceVersion(6, DK_SML_VERSION_DRIVER, text, &size), DK_SML_ERROR_INVALID_INPUT);

    char tiny[3];
    size = sizeof tiny;
    EXPECT_EQ(dkSmlGetVornVersion(tiny, &size), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, 9u);
    EXPECT_STREQ(tiny, "un");
}

TEST_F(DpmApiTest, CompatibilityVersionsAndClocks) {
    char text[DK_SML_EX_SYSTEM_DRIVER_VERSION_BUFFER_SIZE];
    ASSERT_EQ(dkSmlExSystemGetDriverVersion(text, sizeof text), DK_SML_EX_SUCCESS);
    EXPECT_STREQ(text, "6.2.15");
    EXPECT_EQ(dkSmlExSystemGetDriverVersion(text, 6), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    uint32_t number = 0;
    ASSERT_EQ(dkSmlExSystemGetVornDriverVersion(&number), DK_SML_EX_SUCCESS);
    EXPECT_EQ(number, 2030u);

    DkSmlExDevice handle = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:1c:00.0", &handle), DK_SML_EX_SUCCESS);
    uint32_t clocks[16];
    uint32_t count = 2;
    EXPECT_EQ(dkSmlExDeviceGetSupportedMemoryClocks(handle, &count, clocks), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 4u);
    ASSERT_EQ(dkSmlExDeviceGetSupportedMemoryClocks(handle, &count, clocks), DK_SML_EX_SUCCESS);
    const uint32_t memoryClock = clocks[1];
    count = 16;
    EXPECT_EQ(dkSmlExDeviceGetSupportedGraphicsClocks(handle, memoryClock + 1, &count, clocks),
              DK_SML_EX_ERROR_NOT_FOUND);
    ASSERT_EQ(dkSmlExDeviceGetSupportedGraphicsClocks_v2(handle, memoryClock, &count, clocks), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 10u);
    uint32_t applications = 0;
    ASSERT_EQ(dkSmlExDeviceGetApplicationsClock(handle, DK_SML_EX_CLOCK_SM, &applications), DK_SML_EX_SUCCESS);
    EXPECT_EQ(applications, clocks[9]);
    DkSmlExPstates state = DK_SML_EX_PSTATE_UNKNOWN;
    ASSERT_EQ(dkSmlExDeviceGetPerformanceState(handle, &state), DK_SML_EX_SUCCESS);
    EXPECT_LE(static_cast<int>(state), 9);
    ASSERT_EQ(dkSmlExDeviceSetApplicationsClocks(handle, 0, clocks[4]), DK_SML_EX_SUCCESS);
    EXPECT_EQ(Smi("0000:1c:00.0", "dpmcount"), "xcore 5\n");
    EXPECT_EQ(dkSmlExDeviceSetApplicationsClocks(handle, 0, 1), DK_SML_EX_ERROR_NOT_FOUND);
}

}  // namespace
}  // namespace dksml::test
