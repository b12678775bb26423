// Every native device-indexed export checks its pointers before the device
// index (DK_SML_ERROR_INVALID_INPUT even for an unknown index), then answers
// DK_SML_ERROR_DEVICE_NOT_AVAILABLE for an unknown index.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "api_host.h"

namespace dksml::test {
namespace {

// One output of every kind any export writes, large enough for any capacity
// the table passes.
struct Outputs {
    uint32_t u32 = 4;
    uint32_t u32b = 4;
    uint32_t u32c = 4;
    int32_t i32 = 0;
    uint64_t u64 = 0;
    uint32_t array[64] = {};
    int32_t signedArray[64] = {};
    char text[256] = {};
    DkSmlLimitedDeviceInfo limited{};
    DkSmlDeviceInfo info{};
    DkSmlIsaVersion isa{};
    DkSmlDeviceUnavailableReasonInfo reason{};
    DkSmlUuidPair uuids[4] = {};
    DkSmlClocksFreqForAll clocks{};
    DkSmlProcessInfo processes[4] = {};
    DkSmlProcessInfo_v2 processes2[4] = {};
    DkSmlProcessInfo_v3 processes3[4] = {};
    DkSmlSgpuInfo sgpu{};
    DkSmlSgpuAvailableQuota quota{};
    DkSmlSgpuMemoryInfo sgpuMemory{};
    DkSmlSchedClass schedClass = 0;
    DkSmlGpuTopologyLevel level = DK_SML_TOPOLOGY_UNKNOWN;
    DkSmlDravikLinkRemoteInfo remote{};
    DkSmlPmbusInfo pmbus{};
    DkSmlBoardWayElectricInfo ways[4] = {};
    DkSmlPciPowerState pciPower = DK_SML_PCI_POWER_STATE_D0;
    DkSmlDpmPerfLevel dpmLevels{};
    DkSmlDpmForAll dpmAll{};
    DkSmlMemoryInfo memory{};
    DkSmlVersion version{};
    DkSmlRasErrorData ras{};
    DkSmlRasErrorData_v2 ras2{};
    DkSmlEccErrorCount ecc{};
    DkSmlPcieInfo pcie{};
    DkSmlPcieThroughput throughput{};
    DkSmlBandwidthInfo bandwidth[4] = {};
    DkSmlEthThroughput eth[4] = {};
    DkSmlDravikLinkBandwidth linkBandwidth[4] = {};
    DkSmlDravikLinkTrafficStat traffic[4] = {};
    DkSmlDravikLinkAer aer[4] = {};
    DkSmlDravikLinkInfo linkInfo{};
    DkSmlDravikLinkInfo_v2 linkInfo2{};
    DkSmlDravikLinkTopo topo[4] = {};
};

using Call = std::function<DkSmlReturn(Outputs&, uint32_t index, bool null)>;

struct Export {
    const char* name;
    bool takesPointer;
    Call call;
};

#define DK_EXPORT(name, takesPointer, body) \
    Export { #name, takesPointer, [](Outputs& o, uint32_t i, bool n) -> DkSmlReturn { (void)o; (void)n; return body; } }

const std::vector<Export>& Exports() {
    static const std::vector<Export> exports = {
        DK_EXPORT(dkSmlGetLimitedDeviceInfo, true, dkSmlGetLimitedDeviceInfo(i, P(n, o.limited))),
        DK_EXPORT(dkSmlGetDeviceBoardId, true, dkSmlGetDeviceBoardId(i, P(n, o.u32))),
        DK_EXPORT(dkSmlGetDeviceInfo, true, dkSmlGetDeviceInfo(i, P(n, o.info))),
        DK_EXPORT(dkSmlGetVirtualDevicesByPhysicalId, true, dkSmlGetVirtualDevicesByPhysicalId(i, P(n, o.u32), P(n, o.array))),
        DK_EXPORT(dkSmlGetDeviceRealPath, true, dkSmlGetDeviceRealPath(i, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetDeviceState, true, dkSmlGetDeviceState(i, P(n, o.i32))),
        DK_EXPORT(dkSmlGetDeviceIsaVersion, true, dkSmlGetDeviceIsaVersion(i, P(n, o.isa))),
        DK_EXPORT(dkSmlGetDeviceUnavailableReason, true, dkSmlGetDeviceUnavailableReason(i, P(n, o.reason))),
        DK_EXPORT(dkSmlGetDeviceDieCount, true, dkSmlGetDeviceDieCount(i, P(n, o.u32))),
        DK_EXPORT(dkSmlGetLocalAndRemoteUuid, true, dkSmlGetLocalAndRemoteUuid(i, P(n, o.uuids[0]))),
        DK_EXPORT(dkSmlGetLocalAndMultipleRemoteUuid, true, dkSmlGetLocalAndMultipleRemoteUuid(i, P(n, o.u32), P(n, o.uuids))),
        DK_EXPORT(dkSmlGetClocks, true, dkSmlGetClocks(i, DK_SML_DIE_ALL, P(n, o.clocks))),
        DK_EXPORT(dkSmlGetCurrentClocksThrottleReason, true, dkSmlGetCurrentClocksThrottleReason(i, 0, P(n, o.u64))),
        DK_EXPORT(dkSmlGetTemperatureInfo, true, dkSmlGetTemperatureInfo(i, DK_SML_TEMPERATURE_HOTSPOT, P(n, o.i32))),
        DK_EXPORT(dkSmlGetDieTemperatureInfo, true, dkSmlGetDieTemperatureInfo(i, 0, DK_SML_TEMPERATURE_SOC, P(n, o.i32))),
        DK_EXPORT(dkSmlGetFanSpeedInfo, true, dkSmlGetFanSpeedInfo(i, P(n, o.u32), P(n, o.u32b))),
        DK_EXPORT(dkSmlGetSingleGpuProcess, true, dkSmlGetSingleGpuProcess(i, P(n, o.u32), P(n, o.processes))),
        DK_EXPORT(dkSmlGetSingleGpuProcess_v2, true, dkSmlGetSingleGpuProcess_v2(i, P(n, o.u32), P(n, o.processes2))),
        DK_EXPORT(dkSmlGetSingleGpuProcess_v3, true, dkSmlGetSingleGpuProcess_v3(i, P(n, o.u32), P(n, o.processes3))),
        DK_EXPORT(dkSmlGetSgpuToggle, true, dkSmlGetSgpuToggle(i, P(n, o.u32))),
        DK_EXPORT(dkSmlSetSgpuToggle, false, dkSmlSetSgpuToggle(i, 1)),
        DK_EXPORT(dkSmlCreateSgpu, true, dkSmlCreateSgpu(i, 10, 10, P(n, o.u32))),
        DK_EXPORT(dkSmlRemoveSgpu, false, dkSmlRemoveSgpu(i, 0)),
        DK_EXPORT(dkSmlGetSgpuInfo, true, dkSmlGetSgpuInfo(i, 0, P(n, o.sgpu))),
        DK_EXPORT(dkSmlSetSgpuDeviceQueuePriority, false, dkSmlSetSgpuDeviceQueuePriority(i, 0, 1)),
        DK_EXPORT(dkSmlGetSgpuState, true, dkSmlGetSgpuState(i, 0, P(n, o.i32))),
        DK_EXPORT(dkSmlSetSgpuVramQuota, false, dkSmlSetSgpuVramQuota(i, 0, 1)),
        DK_EXPORT(dkSmlSetSgpuComputeQuota, false, dkSmlSetSgpuComputeQuota(i, 0, 1)),
        DK_EXPORT(dkSmlGetSgpuAvailableQuota, true, dkSmlGetSgpuAvailableQuota(i, P(n, o.quota))),
        DK_EXPORT(dkSmlGetSgpuUsage, true, dkSmlGetSgpuUsage(i, 0, P(n, o.i32))),
        DK_EXPORT(dkSmlGetSgpuMemory, true, dkSmlGetSgpuMemory(i, 0, P(n, o.sgpuMemory))),
        DK_EXPORT(dkSmlGetDeviceTimeslice, true, dkSmlGetDeviceTimeslice(i, P(n, o.u32))),
        DK_EXPORT(dkSmlSetDeviceTimeslice, false, dkSmlSetDeviceTimeslice(i, 5)),
        DK_EXPORT(dkSmlGetDeviceSchedClass, true, dkSmlGetDeviceSchedClass(i, P(n, o.schedClass))),
        DK_EXPORT(dkSmlSetDeviceSchedClass, false, dkSmlSetDeviceSchedClass(i, 1)),
        DK_EXPORT(dkSmlGetSgpuAlias, true, dkSmlGetSgpuAlias(i, 0, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlSetSgpuAlias, true, dkSmlSetSgpuAlias(i, 0, n ? nullptr : "alias")),
        DK_EXPORT(dkSmlGetSgpuAnnotationsId, true, dkSmlGetSgpuAnnotationsId(i, 0, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetDeviceTopology, true, dkSmlGetDeviceTopology(i, i, P(n, o.level))),
        DK_EXPORT(dkSmlGetDeviceDistance, true, dkSmlGetDeviceDistance(i, i, P(n, o.u32))),
        DK_EXPORT(dkSmlGetCpuAffinity, true, dkSmlGetCpuAffinity(i, 4, P(n, o.array))),
        DK_EXPORT(dkSmlSetCpuAffinity, false, dkSmlSetCpuAffinity(i)),
        DK_EXPORT(dkSmlClearCpuAffinity, false, dkSmlClearCpuAffinity(i)),
        DK_EXPORT(dkSmlGetNodeAffinity, true, dkSmlGetNodeAffinity(i, 4, P(n, o.array))),
        DK_EXPORT(dkSmlGetDravikLinkRemoteInfo, true, dkSmlGetDravikLinkRemoteInfo(i, 0, P(n, o.remote))),
        DK_EXPORT(dkSmlGetPmbusInfo, true, dkSmlGetPmbusInfo(i, DK_SML_PMBUS_UNIT_SOC, P(n, o.pmbus))),
        DK_EXPORT(dkSmlGetDiePmbusInfo, true, dkSmlGetDiePmbusInfo(i, 0, DK_SML_PMBUS_UNIT_CORE, P(n, o.pmbus))),
        DK_EXPORT(dkSmlGetBoardPowerInfo, true, dkSmlGetBoardPowerInfo(i, P(n, o.u32), P(n, o.ways))),
        DK_EXPORT(dkSmlGetBoardPowerLimit, true, dkSmlGetBoardPowerLimit(i, P(n, o.u32))),
        DK_EXPORT(dkSmlGetPowerStateInfo, true, dkSmlGetPowerStateInfo(i, DK_SML_DPM_IP_DLA, P(n, o.signedArray), P(n, o.u32))),
        DK_EXPORT(dkSmlGetDiePowerStateInfo, true, dkSmlGetDiePowerStateInfo(i, 0, DK_SML_DPM_IP_DLA, P(n, o.signedArray), P(n, o.u32))),
        DK_EXPORT(dkSmlGetPciPowerState, true, dkSmlGetPciPowerState(i, P(n, o.pciPower))),
        DK_EXPORT(dkSmlGetDpmIpClockInfo, true, dkSmlGetDpmIpClockInfo(i, DK_SML_DPM_IP_XCORE, P(n, o.dpmLevels))),
        DK_EXPORT(dkSmlGetDpmIpVddInfo, true, dkSmlGetDpmIpVddInfo(i, DK_SML_DPM_IP_XCORE, P(n, o.dpmLevels))),
        DK_EXPORT(dkSmlGetCurrentDpmIpPerfLevel, true, dkSmlGetCurrentDpmIpPerfLevel(i, DK_SML_DPM_IP_MC, P(n, o.u32))),
        DK_EXPORT(dkSmlGetCurrentDieDpmIpPerfLevel, true, dkSmlGetCurrentDieDpmIpPerfLevel(i, 0, DK_SML_DPM_IP_MC, P(n, o.u32))),
        DK_EXPORT(dkSmlGetDpmMaxPerfLevel, true, dkSmlGetDpmMaxPerfLevel(i, P(n, o.dpmAll))),
        DK_EXPORT(dkSmlGetDpmIpMaxPerfLevel, true, dkSmlGetDpmIpMaxPerfLevel(i, DK_SML_DPM_IP_SOC, P(n, o.u32))),
        DK_EXPORT(dkSmlGetDieDpmIpMaxPerfLevel, true, dkSmlGetDieDpmIpMaxPerfLevel(i, 0, DK_SML_DPM_IP_SOC, P(n, o.u32))),
        DK_EXPORT(dkSmlSetDpmIpMaxPerfLevel, false, dkSmlSetDpmIpMaxPerfLevel(i, DK_SML_DPM_IP_XCORE, 1)),
        DK_EXPORT(dkSmlGetMemoryInfo, true, dkSmlGetMemoryInfo(i, P(n, o.memory))),
        DK_EXPORT(dkSmlGetDieMemoryInfo, true, dkSmlGetDieMemoryInfo(i, 0, P(n, o.memory))),
        DK_EXPORT(dkSmlGetDeviceIpUsage, true, dkSmlGetDeviceIpUsage(i, DK_SML_USAGE_IP_DLA, P(n, o.i32))),
        DK_EXPORT(dkSmlGetDieIpUsage, true, dkSmlGetDieIpUsage(i, 0, DK_SML_USAGE_IP_VPUD, P(n, o.i32))),
        DK_EXPORT(dkSmlGetXcoreApUsage, true, dkSmlGetXcoreApUsage(i, P(n, o.array), P(n, o.u32), P(n, o.u32b))),
        DK_EXPORT(dkSmlGetDieXcoreApUsage, true, dkSmlGetDieXcoreApUsage(i, 0, P(n, o.array), P(n, o.u32), P(n, o.u32b))),
        DK_EXPORT(dkSmlGetApUsageToggle, true, dkSmlGetApUsageToggle(i, P(n, o.u32))),
        DK_EXPORT(dkSmlGetDieApUsageToggle, true, dkSmlGetDieApUsageToggle(i, 0, P(n, o.u32))),
        DK_EXPORT(dkSmlSetApUsageToggle, false, dkSmlSetApUsageToggle(i, 1)),
        DK_EXPORT(dkSmlSetDieApUsageToggle, false, dkSmlSetDieApUsageToggle(i, 0, 0)),
        DK_EXPORT(dkSmlGetEepromInfo, true, dkSmlGetEepromInfo(i, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetBoardSerial, true, dkSmlGetBoardSerial(i, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetChipSerial, true, dkSmlGetChipSerial(i, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetDeviceVersion, true, dkSmlGetDeviceVersion(i, DK_SML_VERSION_VBIOS, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetDeviceDieVersion, true, dkSmlGetDeviceDieVersion(i, 0, P(n, o.version))),
        DK_EXPORT(dkSmlGetPptableVersion, true, dkSmlGetPptableVersion(i, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetRasErrorData, true, dkSmlGetRasErrorData(i, P(n, o.ras))),
        DK_EXPORT(dkSmlGetRasErrorData_v2, true, dkSmlGetRasErrorData_v2(i, 0, P(n, o.ras2))),
        DK_EXPORT(dkSmlGetRasStatusData, true, dkSmlGetRasStatusData(i, P(n, o.u32), P(n, o.array))),
        DK_EXPORT(dkSmlGetEccState, true, dkSmlGetEccState(i, P(n, o.u32))),
        DK_EXPORT(dkSmlSetEccState, false, dkSmlSetEccState(i, 1)),
        DK_EXPORT(dkSmlGetTotalEccErrors, true, dkSmlGetTotalEccErrors(i, P(n, o.ecc))),
        DK_EXPORT(dkSmlGetPcieInfo, true, dkSmlGetPcieInfo(i, P(n, o.pcie))),
        DK_EXPORT(dkSmlGetPcieMaxLinkInfo, true, dkSmlGetPcieMaxLinkInfo(i, P(n, o.pcie))),
        DK_EXPORT(dkSmlGetPcieThroughput, true, dkSmlGetPcieThroughput(i, P(n, o.throughput))),
        DK_EXPORT(dkSmlSetPciSpeed, false, dkSmlSetPciSpeed(i, DK_SML_PCI_GEN3)),
        DK_EXPORT(dkSmlGetPciDelay, true, dkSmlGetPciDelay(i, P(n, o.u32))),
        DK_EXPORT(dkSmlSetPciDelay, false, dkSmlSetPciDelay(i, 10)),
        DK_EXPORT(dkSmlGetDeviceSlot, true, dkSmlGetDeviceSlot(i, P(n, o.u32))),
        DK_EXPORT(dkSmlGetPciMmioState, true, dkSmlGetPciMmioState(i, P(n, o.u32))),
        DK_EXPORT(dkSmlGetPciEventInfo, true, dkSmlGetPciEventInfo(i, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetVpuStatus, true, dkSmlGetVpuStatus(i, P(n, o.u32), P(n, o.array))),
        DK_EXPORT(dkSmlGetCodecStatus, true, dkSmlGetCodecStatus(i, P(n, o.u32), P(n, o.array))),
        DK_EXPORT(dkSmlGetHbmBandWidth, true, dkSmlGetHbmBandWidth(i, P(n, o.u32), P(n, o.bandwidth))),
        DK_EXPORT(dkSmlGetDmaBandwidth, true, dkSmlGetDmaBandwidth(i, P(n, o.u32), P(n, o.bandwidth))),
        DK_EXPORT(dkSmlGetEthThroughput, true, dkSmlGetEthThroughput(i, P(n, o.u32), P(n, o.eth))),
        DK_EXPORT(dkSmlGetOpticalModuleStatus, true, dkSmlGetOpticalModuleStatus(i, P(n, o.u32), P(n, o.array))),
        DK_EXPORT(dkSmlGetOpticalModuleInfo, true, dkSmlGetOpticalModuleInfo(i, 0, P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlGetOpticalModulePower, true, dkSmlGetOpticalModulePower(i, 0, P(n, o.u32), P(n, o.signedArray))),
        DK_EXPORT(dkSmlGetDravikLinkBandwidth, true, dkSmlGetDravikLinkBandwidth(i, DK_SML_DRAVIK_LINK_INBOUND, P(n, o.u32), P(n, o.linkBandwidth))),
        DK_EXPORT(dkSmlGetDravikLinkTrafficStat, true, dkSmlGetDravikLinkTrafficStat(i, DK_SML_DRAVIK_LINK_OUTBOUND, P(n, o.u32), P(n, o.traffic))),
        DK_EXPORT(dkSmlGetDravikLinkAer, true, dkSmlGetDravikLinkAer(i, P(n, o.u32), P(n, o.aer))),
        DK_EXPORT(dkSmlGetDravikLinkInfo, true, dkSmlGetDravikLinkInfo(i, P(n, o.linkInfo))),
        DK_EXPORT(dkSmlGetDravikLinkInfo_v2, true, dkSmlGetDravikLinkInfo_v2(i, P(n, o.linkInfo2))),
        DK_EXPORT(dkSmlGetDravikLinkState, true, dkSmlGetDravikLinkState(i, P(n, o.u32b), P(n, o.text), P(n, o.u32))),
        DK_EXPORT(dkSmlSetDravikLinkState, false, dkSmlSetDravikLinkState(i, 1)),
        DK_EXPORT(dkSmlGetDravikLinkPortState, true, dkSmlGetDravikLinkPortState(i, P(n, o.u32), P(n, o.array))),
        DK_EXPORT(dkSmlGetDravikLinkTopo, true, dkSmlGetDravikLinkTopo(i, P(n, o.u32), P(n, o.topo))),
        DK_EXPORT(dkSmlSetFwLoglevel, false, dkSmlSetFwLoglevel(i, 2)),
        DK_EXPORT(dkSmlGetFwIpLoglevel, true, dkSmlGetFwIpLoglevel(i, 0, P(n, o.u32))),
        DK_EXPORT(dkSmlGetFwLoglevel, true, dkSmlGetFwLoglevel(i, P(n, o.u32))),
        DK_EXPORT(dkSmlFunctionLevelReset, false, dkSmlFunctionLevelReset(i)),
        DK_EXPORT(dkSmlFunctionLevelResetVfFromPf, false, dkSmlFunctionLevelResetVfFromPf(i, 0)),
        DK_EXPORT(dkSmlReset, false, dkSmlReset(i)),
        DK_EXPORT(dkSmlForceReset, false, dkSmlForceReset(i)),
        DK_EXPORT(dkSmlVbiosUpgrade, true, dkSmlVbiosUpgrade(i, n ? nullptr : "/tmp/image.bin")),
        DK_EXPORT(dkSmlDumpVbios, true, dkSmlDumpVbios(i, n ? nullptr : "/tmp/dump.bin")),
        DK_EXPORT(dkSmlGetSriovState, true, dkSmlGetSriovState(i, P(n, o.u32))),
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
            Outputs outputs;
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
