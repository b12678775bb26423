// The process scan end to end through the exported functions on the "slices"
// host: which clients qualify, their entries, the record versions and the
// capacity rules.
#include <string>

#include "process_host.h"

namespace dksml::test {
namespace {

using ::testing::ElementsAre;

// The names, entries, slices, memory and the cut at 64 entries of each
// record, in the scan's order, are pinned by dksmi's golden process
// transcripts of this host; dksmi sorts the records by pid, so the order of the
// records and what the scan leaves untouched are here.
TEST_F(SlicesHost, CountingScanAndRecordsLeaveOutIdleClientsAndNodeHolders) {
    uint32_t count = 0;
    ASSERT_EQ(dkSmlGetNumberOfProcess(&count), DK_SML_SUCCESS);
    EXPECT_EQ(count, 3u);  // train, container, wide
    std::vector<DkSmlProcessInfo_v3> records(4);
    ASSERT_EQ(dkSmlGetProcessInfo_v3(4, records.data()), DK_SML_SUCCESS);
    EXPECT_THAT(PidsOf(records.data(), 4), ElementsAre(c_trainPid, c_containerPid, c_widePid, 0u));
    EXPECT_EQ(records[0].gpuInfo[2].sgpuId, -1);  // unused entries keep the fresh value
}

TEST_F(SlicesHost, FullRecordsStillCountInTheAllGpuScanOnly) {
    std::vector<DkSmlProcessInfo_v3> v3(2);
    uint32_t count = 0;
    ASSERT_EQ(Processes().GetProcessInfo_v3(v3.data(), 2, &count, DK_SML_ALL_GPUS, false), DK_SML_SUCCESS);
    EXPECT_EQ(count, 3u);
    std::vector<DkSmlProcessInfo_v2> v2(1);
    ASSERT_EQ(Processes().GetProcessInfo_v2(v2.data(), 1, &count, c_plainGpuId, false, true), DK_SML_SUCCESS);
    EXPECT_EQ(count, 1u);  // train and wide use the GPU; the single-GPU scan stops at capacity
    EXPECT_EQ(v2[0].pid, c_trainPid);
    ASSERT_EQ(Processes().GetProcessInfo_v3(nullptr, 0, &count, c_plainGpuId, false), DK_SML_SUCCESS);
    EXPECT_EQ(count, 2u);
}

TEST_F(SlicesHost, IncludeAllAddsIdleClientsAndDeviceNodeHolders) {
    std::vector<DkSmlProcessInfo_v3> records(8);
    uint32_t count = 0;
    ASSERT_EQ(Processes().GetProcessInfo_v3(records.data(), 8, &count, DK_SML_ALL_GPUS, true), DK_SML_SUCCESS);
    // The driver directories first; then /proc entries whose pid the scan has
    // not reported as a namespace pid: the container's host pid and the monitor.
    EXPECT_THAT(PidsOf(records.data(), count),
                ElementsAre(c_trainPid, c_containerPid, c_idlePid, c_widePid, c_containerPid, c_monitorPid));
    EXPECT_EQ(records[5].gpuCount, 0u);
    EXPECT_STREQ(records[5].processName, "dk_monitor");
    uint32_t counted = 0;
    ASSERT_EQ(Processes().GetProcessInfo_v3(records.data(), 2, &counted, DK_SML_ALL_GPUS, true), DK_SML_SUCCESS);
    EXPECT_EQ(counted, count);
}

// The newest form per device is checked in python/tests/test_families.py.
TEST_F(SlicesHost, SingleGpuProcessesOfTheFirstFormNeedTheDevicesOwnGpuId) {
    std::vector<DkSmlProcessInfo> v1(4);
    uint32_t count = 4;
    ASSERT_EQ(dkSmlGetSingleGpuProcess(c_plainDevice, &count, v1.data()), DK_SML_SUCCESS);
    EXPECT_THAT(PidsOf(v1.data(), count), ElementsAre(c_trainPid, c_widePid));
    EXPECT_EQ(v1[0].gpuCount, 1u);
    // The slice parent has no GPU id of its own: only the slice-parent form serves it.
    count = 4;
    EXPECT_EQ(dkSmlGetSingleGpuProcess(c_sliceDevice, &count, v1.data()), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
}

TEST_F(SlicesHost, CompatibilityViewSumsMemoryPerProcess) {
    DkSmlExDevice handle = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:1b:00.0", &handle), DK_SML_EX_SUCCESS);
    DkSmlExProcessInfo infos[4] = {};
    uint32_t count = 1;
    EXPECT_EQ(dkSmlExDeviceGetComputeRunningProcesses(handle, &count, infos), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 2u);
    count = 4;
    ASSERT_EQ(dkSmlExDeviceGetComputeRunningProcesses(handle, &count, infos), DK_SML_EX_SUCCESS);
    ASSERT_EQ(count, 2u);
    EXPECT_EQ(infos[0].pid, c_trainPid);
    EXPECT_EQ(infos[0].usedGpuMemory, 8589934592ull);
}

TEST_F(SlicesHost, SlicesCountAsDevicesInTheCompatibilityFamily) {
    uint32_t count = 0;
    ASSERT_EQ(dkSmlExDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 5u);  // two dies + three slices
    // Slice 3 removed by the driver: two dies + two slices.
    host->Remove("/sys/devices/pci0000:17/0000:17:02.0/0000:3b:00.0/sgpu/sgpu3");
    host->WriteFile("/sys/devices/pci0000:17/0000:17:02.0/0000:3b:00.0/sgpu/available_devcnt", "14\n");
    ASSERT_EQ(dkSmlExDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 4u);
}

class RecordingSysUtils : public DkSysUtils {
public:
    RecordingSysUtils(uid_t uid, std::set<pid_t>* signalled) : m_uid(uid), m_signalled(signalled) {}
    uid_t GetUid() override { return m_uid; }
    int Kill(pid_t pid, int signal) override {
        if (signal != 0) m_signalled->insert(pid);
        return 0;
    }

private:
    uid_t m_uid;
    std::set<pid_t>* m_signalled;
};

TEST_F(SlicesHost, KillAllSignalsEveryDeviceNodeHolderAsRootOnly) {
    std::set<pid_t> signalled;
    DkSystemManager& manager = DkSystemManager::GetInstance();
    ASSERT_EQ(manager.Initialize(g_dkDeviceSearchPath, std::make_unique<RecordingSysUtils>(1000, &signalled), 1),
              DK_SML_SUCCESS);
    EXPECT_EQ(Processes().KillAllProcess(), DK_SML_ERROR_PERMISSION);
    ASSERT_EQ(manager.Initialize(g_dkDeviceSearchPath, std::make_unique<RecordingSysUtils>(0, &signalled), 1),
              DK_SML_SUCCESS);
    ASSERT_EQ(Processes().KillAllProcess(), DK_SML_SUCCESS);
    EXPECT_EQ(signalled, (std::set<pid_t>{4242, 5120, 6001, 7007, 8080}));
}

TEST_F(SlicesHost, DefaultSystemCallsNeverSignalUnderAHostRoot) {
    DkSysUtils sys;
    EXPECT_EQ(sys.Kill(1, 0), 0);
    EXPECT_NE(sys.Kill(1, 9), 0);
}

}  // namespace
}  // namespace dksml::test
