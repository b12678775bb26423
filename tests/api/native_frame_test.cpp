// Every native device-indexed export checks its pointers before the device
// index (DK_SML_ERROR_INVALID_INPUT even for an unknown index), then answers
// DK_SML_ERROR_DEVICE_NOT_AVAILABLE for an unknown index.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "api_host.h"

namespace dksml::test {
namespace {

using Call = std::function<DkSmlReturn(TableOutputs&, uint32_t index, bool null)>;

struct Export {
    const char* name;
    bool takesPointer;
    Call call;
};

#define DK_EXPORT(name, takesPointer, body) \
    Export { #name, takesPointer, [](TableOutputs& o, uint32_t i, bool n) -> DkSmlReturn { (void)o; (void)n; return body; } }

const std::vector<Export>& Exports() {
    static const std::vector<Export> exports = {
        DK_EXPORT(dkSmlGetLimitedDeviceInfo, true, dkSmlGetLimitedDeviceInfo(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceBoardId, true, dkSmlGetDeviceBoardId(i, P(n, o.count))),
        DK_EXPORT(dkSmlGetDeviceInfo, true, dkSmlGetDeviceInfo(i, o.Any(n))),
        DK_EXPORT(dkSmlGetVirtualDevicesByPhysicalId, true, dkSmlGetVirtualDevicesByPhysicalId(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceRealPath, true, dkSmlGetDeviceRealPath(i, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetDeviceState, true, dkSmlGetDeviceState(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceIsaVersion, true, dkSmlGetDeviceIsaVersion(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceUnavailableReason, true, dkSmlGetDeviceUnavailableReason(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceDieCount, true, dkSmlGetDeviceDieCount(i, P(n, o.count))),
        DK_EXPORT(dkSmlGetLocalAndRemoteUuid, true, dkSmlGetLocalAndRemoteUuid(i, o.Any(n))),
        DK_EXPORT(dkSmlGetLocalAndMultipleRemoteUuid, true, dkSmlGetLocalAndMultipleRemoteUuid(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetClocks, true, dkSmlGetClocks(i, DK_SML_DIE_ALL, o.Any(n))),
        DK_EXPORT(dkSmlGetCurrentClocksThrottleReason, true, dkSmlGetCurrentClocksThrottleReason(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlGetTemperatureInfo, true, dkSmlGetTemperatureInfo(i, DK_SML_TEMPERATURE_HOTSPOT, o.Any(n))),
        DK_EXPORT(dkSmlGetDieTemperatureInfo, true, dkSmlGetDieTemperatureInfo(i, 0, DK_SML_TEMPERATURE_SOC, o.Any(n))),
        DK_EXPORT(dkSmlGetFanSpeedInfo, true, dkSmlGetFanSpeedInfo(i, P(n, o.count), P(n, o.count2))),
        DK_EXPORT(dkSmlGetSingleGpuProcess, true, dkSmlGetSingleGpuProcess(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetSingleGpuProcess_v2, true, dkSmlGetSingleGpuProcess_v2(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetSingleGpuProcess_v3, true, dkSmlGetSingleGpuProcess_v3(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetSgpuToggle, true, dkSmlGetSgpuToggle(i, P(n, o.count))),
        DK_EXPORT(dkSmlSetSgpuToggle, false, dkSmlSetSgpuToggle(i, 1)),
        DK_EXPORT(dkSmlCreateSgpu, true, dkSmlCreateSgpu(i, 10, 10, P(n, o.count))),
        DK_EXPORT(dkSmlRemoveSgpu, false, dkSmlRemoveSgpu(i, 0)),
        DK_EXPORT(dkSmlGetSgpuInfo, true, dkSmlGetSgpuInfo(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlSetSgpuDeviceQueuePriority, false, dkSmlSetSgpuDeviceQueuePriority(i, 0, 1)),
        DK_EXPORT(dkSmlGetSgpuState, true, dkSmlGetSgpuState(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlSetSgpuVramQuota, false, dkSmlSetSgpuVramQuota(i, 0, 1)),
        DK_EXPORT(dkSmlSetSgpuComputeQuota, false, dkSmlSetSgpuComputeQuota(i, 0, 1)),
        DK_EXPORT(dkSmlGetSgpuAvailableQuota, true, dkSmlGetSgpuAvailableQuota(i, o.Any(n))),
        DK_EXPORT(dkSmlGetSgpuUsage, true, dkSmlGetSgpuUsage(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlGetSgpuMemory, true, dkSmlGetSgpuMemory(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceTimeslice, true, dkSmlGetDeviceTimeslice(i, P(n, o.count))),
        DK_EXPORT(dkSmlSetDeviceTimeslice, false, dkSmlSetDeviceTimeslice(i, 5)),
        DK_EXPORT(dkSmlGetDeviceSchedClass, true, dkSmlGetDeviceSchedClass(i, o.Any(n))),
        DK_EXPORT(dkSmlSetDeviceSchedClass, false, dkSmlSetDeviceSchedClass(i, 1)),
        DK_EXPORT(dkSmlGetSgpuAlias, true, dkSmlGetSgpuAlias(i, 0, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlSetSgpuAlias, true, dkSmlSetSgpuAlias(i, 0, n ? nullptr : "alias")),
        DK_EXPORT(dkSmlGetSgpuAnnotationsId, true, dkSmlGetSgpuAnnotationsId(i, 0, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetDeviceTopology, true, dkSmlGetDeviceTopology(i, i, o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceDistance, true, dkSmlGetDeviceDistance(i, i, P(n, o.count))),
        DK_EXPORT(dkSmlGetCpuAffinity, true, dkSmlGetCpuAffinity(i, 4, o.Any(n))),
        DK_EXPORT(dkSmlSetCpuAffinity, false, dkSmlSetCpuAffinity(i)),
        DK_EXPORT(dkSmlClearCpuAffinity, false, dkSmlClearCpuAffinity(i)),
        DK_EXPORT(dkSmlGetNodeAffinity, true, dkSmlGetNodeAffinity(i, 4, o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkRemoteInfo, true, dkSmlGetDravikLinkRemoteInfo(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlGetPmbusInfo, true, dkSmlGetPmbusInfo(i, DK_SML_PMBUS_UNIT_SOC, o.Any(n))),
        DK_EXPORT(dkSmlGetDiePmbusInfo, true, dkSmlGetDiePmbusInfo(i, 0, DK_SML_PMBUS_UNIT_CORE, o.Any(n))),
        DK_EXPORT(dkSmlGetBoardPowerInfo, true, dkSmlGetBoardPowerInfo(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetBoardPowerLimit, true, dkSmlGetBoardPowerLimit(i, P(n, o.count))),
        DK_EXPORT(dkSmlGetPowerStateInfo, true, dkSmlGetPowerStateInfo(i, DK_SML_DPM_IP_DLA, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetDiePowerStateInfo, true, dkSmlGetDiePowerStateInfo(i, 0, DK_SML_DPM_IP_DLA, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetPciPowerState, true, dkSmlGetPciPowerState(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDpmIpClockInfo, true, dkSmlGetDpmIpClockInfo(i, DK_SML_DPM_IP_XCORE, o.Any(n))),
        DK_EXPORT(dkSmlGetDpmIpVddInfo, true, dkSmlGetDpmIpVddInfo(i, DK_SML_DPM_IP_XCORE, o.Any(n))),
        DK_EXPORT(dkSmlGetCurrentDpmIpPerfLevel, true, dkSmlGetCurrentDpmIpPerfLevel(i, DK_SML_DPM_IP_MC, P(n, o.count))),
        DK_EXPORT(dkSmlGetCurrentDieDpmIpPerfLevel, true, dkSmlGetCurrentDieDpmIpPerfLevel(i, 0, DK_SML_DPM_IP_MC, P(n, o.count))),
        DK_EXPORT(dkSmlGetDpmMaxPerfLevel, true, dkSmlGetDpmMaxPerfLevel(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDpmIpMaxPerfLevel, true, dkSmlGetDpmIpMaxPerfLevel(i, DK_SML_DPM_IP_SOC, P(n, o.count))),
        DK_EXPORT(dkSmlGetDieDpmIpMaxPerfLevel, true, dkSmlGetDieDpmIpMaxPerfLevel(i, 0, DK_SML_DPM_IP_SOC, P(n, o.count))),
        DK_EXPORT(dkSmlSetDpmIpMaxPerfLevel, false, dkSmlSetDpmIpMaxPerfLevel(i, DK_SML_DPM_IP_XCORE, 1)),
        DK_EXPORT(dkSmlGetMemoryInfo, true, dkSmlGetMemoryInfo(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDieMemoryInfo, true, dkSmlGetDieMemoryInfo(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlGetDeviceIpUsage, true, dkSmlGetDeviceIpUsage(i, DK_SML_USAGE_IP_DLA, o.Any(n))),
        DK_EXPORT(dkSmlGetDieIpUsage, true, dkSmlGetDieIpUsage(i, 0, DK_SML_USAGE_IP_VPUD, o.Any(n))),
        DK_EXPORT(dkSmlGetXcoreApUsage, true, dkSmlGetXcoreApUsage(i, o.Any(n), P(n, o.count), P(n, o.count2))),
        DK_EXPORT(dkSmlGetDieXcoreApUsage, true, dkSmlGetDieXcoreApUsage(i, 0, o.Any(n), P(n, o.count), P(n, o.count2))),
        DK_EXPORT(dkSmlGetApUsageToggle, true, dkSmlGetApUsageToggle(i, P(n, o.count))),
        DK_EXPORT(dkSmlGetDieApUsageToggle, true, dkSmlGetDieApUsageToggle(i, 0, P(n, o.count))),
        DK_EXPORT(dkSmlSetApUsageToggle, false, dkSmlSetApUsageToggle(i, 1)),
        DK_EXPORT(dkSmlSetDieApUsageToggle, false, dkSmlSetDieApUsageToggle(i, 0, 0)),
        DK_EXPORT(dkSmlGetEepromInfo, true, dkSmlGetEepromInfo(i, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetBoardSerial, true, dkSmlGetBoardSerial(i, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetChipSerial, true, dkSmlGetChipSerial(i, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetDeviceVersion, true, dkSmlGetDeviceVersion(i, DK_SML_VERSION_VBIOS, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetDeviceDieVersion, true, dkSmlGetDeviceDieVersion(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlGetPptableVersion, true, dkSmlGetPptableVersion(i, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetRasErrorData, true, dkSmlGetRasErrorData(i, o.Any(n))),
        DK_EXPORT(dkSmlGetRasErrorData_v2, true, dkSmlGetRasErrorData_v2(i, 0, o.Any(n))),
        DK_EXPORT(dkSmlGetRasStatusData, true, dkSmlGetRasStatusData(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetEccState, true, dkSmlGetEccState(i, P(n, o.count))),
        DK_EXPORT(dkSmlSetEccState, false, dkSmlSetEccState(i, 1)),
        DK_EXPORT(dkSmlGetTotalEccErrors, true, dkSmlGetTotalEccErrors(i, o.Any(n))),
        DK_EXPORT(dkSmlGetPcieInfo, true, dkSmlGetPcieInfo(i, o.Any(n))),
        DK_EXPORT(dkSmlGetPcieMaxLinkInfo, true, dkSmlGetPcieMaxLinkInfo(i, o.Any(n))),
        DK_EXPORT(dkSmlGetPcieThroughput, true, dkSmlGetPcieThroughput(i, o.Any(n))),
        DK_EXPORT(dkSmlSetPciSpeed, false, dkSmlSetPciSpeed(i, DK_SML_PCI_GEN3)),
        DK_EXPORT(dkSmlGetPciDelay, true, dkSmlGetPciDelay(i, P(n, o.count))),
        DK_EXPORT(dkSmlSetPciDelay, false, dkSmlSetPciDelay(i, 10)),
        DK_EXPORT(dkSmlGetDeviceSlot, true, dkSmlGetDeviceSlot(i, P(n, o.count))),
        DK_EXPORT(dkSmlGetPciMmioState, true, dkSmlGetPciMmioState(i, P(n, o.count))),
        DK_EXPORT(dkSmlGetPciEventInfo, true, dkSmlGetPciEventInfo(i, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetVpuStatus, true, dkSmlGetVpuStatus(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetCodecStatus, true, dkSmlGetCodecStatus(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetHbmBandWidth, true, dkSmlGetHbmBandWidth(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetDmaBandwidth, true, dkSmlGetDmaBandwidth(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetEthThroughput, true, dkSmlGetEthThroughput(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetOpticalModuleStatus, true, dkSmlGetOpticalModuleStatus(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetOpticalModuleInfo, true, dkSmlGetOpticalModuleInfo(i, 0, o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlGetOpticalModulePower, true, dkSmlGetOpticalModulePower(i, 0, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkBandwidth, true, dkSmlGetDravikLinkBandwidth(i, DK_SML_DRAVIK_LINK_INBOUND, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkTrafficStat, true, dkSmlGetDravikLinkTrafficStat(i, DK_SML_DRAVIK_LINK_OUTBOUND, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkAer, true, dkSmlGetDravikLinkAer(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkInfo, true, dkSmlGetDravikLinkInfo(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkInfo_v2, true, dkSmlGetDravikLinkInfo_v2(i, o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkState, true, dkSmlGetDravikLinkState(i, P(n, o.count2), o.Any(n), P(n, o.count))),
        DK_EXPORT(dkSmlSetDravikLinkState, false, dkSmlSetDravikLinkState(i, 1)),
        DK_EXPORT(dkSmlGetDravikLinkPortState, true, dkSmlGetDravikLinkPortState(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlGetDravikLinkTopo, true, dkSmlGetDravikLinkTopo(i, P(n, o.count), o.Any(n))),
        DK_EXPORT(dkSmlSetFwLoglevel, false, dkSmlSetFwLoglevel(i, 2)),
        DK_EXPORT(dkSmlGetFwIpLoglevel, true, dkSmlGetFwIpLoglevel(i, 0, P(n, o.count))),
        DK_EXPORT(dkSmlGetFwLoglevel, true, dkSmlGetFwLoglevel(i, P(n, o.count))),
        DK_EXPORT(dkSmlFunctionLevelReset, false, dkSmlFunctionLevelReset(i)),
        DK_EXPORT(dkSmlFunctionLevelResetVfFromPf, false, dkSmlFunctionLevelResetVfFromPf(i, 0)),
        DK_EXPORT(dkSmlReset, false, dkSmlReset(i)),
        DK_EXPORT(dkSmlForceReset, false, dkSmlForceReset(i)),
        DK_EXPORT(dkSmlVbiosUpgrade, true, dkSmlVbiosUpgrade(i, n ? nullptr : "/tmp/image.bin")),
        DK_EXPORT(dkSmlDumpVbios, true, dkSmlDumpVbios(i, n ? nullptr : "/tmp/dump.bin")),
        DK_EXPORT(dkSmlGetSriovState, true, dkSmlGetSriovState(i, P(n, o.count))),
    };
    return exports;
}

#undef DK_EXPORT

class NativeFrameTest : public ::testing::Test {
protected:
    void SetUp() override { host = MakeHost("empty"); }
    std::unique_ptr<vhost::ScopedHost> host;
};

TEST_F(NativeFrameTest, NullPointerIsRejectedBeforeTheUnknownIndex) {
    for (const Export& entry : Exports()) {
        for (uint32_t index : c_absentIndices) {
            TableOutputs outputs;
            if (entry.takesPointer) {
                EXPECT_EQ(entry.call(outputs, index, true), DK_SML_ERROR_INVALID_INPUT) << entry.name << " " << index;
            }
            EXPECT_EQ(entry.call(outputs, index, false), DK_SML_ERROR_DEVICE_NOT_AVAILABLE)
                << entry.name << " index " << index;
        }
    }
}

// Affinity masks of zero words cannot hold any CPU.
TEST_F(NativeFrameTest, EmptyAffinityMaskIsInvalidInput) {
    uint32_t mask[1] = {};
    EXPECT_EQ(dkSmlGetCpuAffinity(0, 0, mask), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetNodeAffinity(0, 0, mask), DK_SML_ERROR_INVALID_INPUT);
}

TEST_F(NativeFrameTest, DeviceFreeQueriesRejectNullOutputs) {
    uint32_t count = 0;
    EXPECT_EQ(dkSmlGetOpMode(nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetVornVersion(nullptr, &count), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetNumberOfProcess(nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetProcessInfo(1, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetProcessInfo_v2(1, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetProcessInfo_v3(1, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetAllLimitedDevices(nullptr, nullptr), DK_SML_ERROR_INVALID_INPUT);
}

}  // namespace
}  // namespace dksml::test
