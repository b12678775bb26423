// Slice GPUs end to end through the exported functions on the "slices" host
// (device 1 in slice mode with slices 0, 1 and 3; device 0 native). A static
// tree cannot create directories when "create" is written: the tests check
// the exact text written, and SliceDriver plays the driver's part through the
// service's hook (the attribute files stay regular files).
#include <string>

#include "features/slicegpu/dk_slicegpu_files.h"
#include "process_host.h"

namespace dksml::test {
namespace {

constexpr const char* c_sgpuDir = "/sys/devices/pci0000:17/0000:17:02.0/0000:3b:00.0/sgpu";

std::string SgpuFile(const std::string& name) { return std::string(c_sgpuDir) + "/" + name; }

// The slice service with the driver's part played: once the library has
// written "create" (a regular file, as every attribute), the slice directory
// appears and one slice fewer is available, as the driver does it. Records what "create" held at that moment.
class SliceDriver : public DkSliceGpu {
public:
    explicit SliceDriver(const vhost::ScopedHost& host) : m_host(host) {}
    const std::string& Written() const { return m_written; }

protected:
    void AfterCreateWritten(IDkDevice* /*device*/, uint32_t sgpuId) override {
        m_written = m_host.ReadFile(SgpuFile("create"));
        const std::string dir = std::string(c_sgpuDir) + "/sgpu" + std::to_string(sgpuId) + "/";
        m_host.WriteFile(dir + "sched_quota", "0\n");
        m_host.WriteFile(dir + "gpu_id", std::to_string(61000 + sgpuId) + "\n");
        const unsigned long available = std::stoul(m_host.ReadFile(SgpuFile("available_devcnt")));
        m_host.WriteFile(SgpuFile("available_devcnt"), std::to_string(available - 1) + "\n");
    }

private:
    const vhost::ScopedHost& m_host;
    std::string m_written;
};

// The mode of each device is pinned by dksmi's golden transcripts.
TEST_F(SlicesHost, NativeDeviceRefusesSliceOperations) {
    uint32_t id = 0, value = 0;
    DkSmlSgpuInfo info{};
    EXPECT_EQ(dkSmlCreateSgpu(c_plainDevice, 1, 1, &id), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlRemoveSgpu(c_plainDevice, 0), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetSgpuInfo(c_plainDevice, 0, &info), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetDeviceTimeslice(c_plainDevice, &value), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlSetSgpuVramQuota(c_plainDevice, 0, 1), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetSgpuCount(c_plainDevice), 0u);
}

// Turning it on is checked in python/tests/test_families.py.
TEST_F(SlicesHost, ToggleWritesTheWordWithANewline) {
    ASSERT_EQ(dkSmlSetSgpuToggle(c_sliceDevice, 0), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile(SgpuFile("../model")), "native\n");
    host->Remove("/sys/devices/pci0000:17/0000:17:01.0/0000:1b:00.0/model");
    EXPECT_EQ(dkSmlSetSgpuToggle(c_plainDevice, 1), DK_SML_ERROR_NOT_SUPPORTED);
}

// Each slice's quotas, uuid, state, usage and memory are pinned by dksmi's
// golden transcripts, the slice count, timeslice and total quota by the Python
// tests; the other device-wide readings and the node number are here.
TEST_F(SlicesHost, SliceReadingsComeFromTheSliceAndItsLayoutNode) {
    DkSmlSgpuInfo info{};
    ASSERT_EQ(dkSmlGetSgpuInfo(c_sliceDevice, 0, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.minor, 200u);
    int32_t usage = -1;
    EXPECT_EQ(dkSmlGetSgpuUsage(c_sliceDevice, 2, &usage), DK_SML_ERROR_NOT_SUPPORTED);  // no slice 2
    DkSmlSgpuAvailableQuota quota{};
    ASSERT_EQ(dkSmlGetSgpuAvailableQuota(c_sliceDevice, &quota), DK_SML_SUCCESS);
    EXPECT_EQ(quota.availableVramQuota, 65536u - 40960u);
    EXPECT_EQ(quota.availableComputeQuota, 40u);
    DkSmlSchedClass schedClass = 0;
    ASSERT_EQ(dkSmlGetDeviceSchedClass(c_sliceDevice, &schedClass), DK_SML_SUCCESS);
    EXPECT_EQ(schedClass, 2u);
}

TEST_F(SlicesHost, AliasAndAnnotationIdFollowTheTextRule) {
    char text[16] = "xxxxxxxxxxxxxxx";
    uint32_t size = 9;  // "tenant-a" is 8 characters: fits exactly
    ASSERT_EQ(dkSmlGetSgpuAlias(c_sliceDevice, 0, text, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "tenant-a");
    size = 8;
    EXPECT_EQ(dkSmlGetSgpuAlias(c_sliceDevice, 0, text, &size), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, 9u);

    size = sizeof text;
    ASSERT_EQ(dkSmlGetSgpuAnnotationsId(c_sliceDevice, 0, text, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "42");  // "name=a;id=42;x=1": the first line with an id
    EXPECT_EQ(size, 3u);
    ASSERT_EQ(dkSmlGetSgpuAnnotationsId(c_sliceDevice, 1, text, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "");  // no id line
    size = 6;
    EXPECT_EQ(dkSmlGetSgpuAnnotationsId(c_sliceDevice, 3, text, &size), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_STREQ(text, "slice");
    EXPECT_EQ(size, std::string("slice-three-long-annotation").size() + 1);
    size = 0;
    EXPECT_EQ(dkSmlGetSgpuAnnotationsId(c_sliceDevice, 3, text, &size), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(dkSmlGetSgpuAnnotationsId(c_sliceDevice, 9, text, &size), DK_SML_ERROR_SYSFS);
}

// The quotas, the timeslice, the alias and the removal are checked in
// python/tests/test_families.py.
TEST_F(SlicesHost, SettersWriteOneDecimalToTheirFile) {
    ASSERT_EQ(dkSmlSetSgpuDeviceQueuePriority(c_sliceDevice, 1, 2), DK_SML_SUCCESS);
    ASSERT_EQ(dkSmlSetDeviceSchedClass(c_sliceDevice, 1), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile(SgpuFile("sgpu1/online")), "2\n");  // the driver's priority file
    EXPECT_EQ(host->ReadFile(SgpuFile("sched_class")), "1\n");
}

TEST_F(SlicesHost, CreateUndoesASliceWhoseQuotaCannotBeSet) {
    uint32_t id = 99;
    // Nothing makes sgpu2 appear: the compute quota cannot be written.
    EXPECT_EQ(dkSmlCreateSgpu(c_sliceDevice, 8192, 20, &id), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(id, 99u);
    EXPECT_EQ(host->ReadFile(SgpuFile("create")), "8192\n");
    EXPECT_EQ(host->ReadFile(SgpuFile("remove")), "2\n");  // the lowest free id, undone
}

TEST_F(SlicesHost, CreateTakesTheLowestFreeIdAndSetsItsComputeQuota) {
    SliceDriver driver(*host);
    IDkDevice* device = DkSystemManager::GetInstance().GetDeviceById(c_sliceDevice).get();
    uint32_t id = 99;
    ASSERT_EQ(driver.CreateSgpu(device, 8192, 20, &id), DK_SML_SUCCESS);
    EXPECT_EQ(id, 2u);
    EXPECT_EQ(driver.Written(), "8192\n");
    EXPECT_EQ(host->ReadFile(SgpuFile("sgpu2/sched_quota")), "20\n");
    EXPECT_EQ(host->ReadFile(SgpuFile("remove")), "");
    // The new slice is found by the exports like any other.
    EXPECT_EQ(dkSmlGetSgpuCount(c_sliceDevice), 4u);
    ASSERT_EQ(driver.CreateSgpu(device, 4096, 5, &id), DK_SML_SUCCESS);
    EXPECT_EQ(id, 4u);
}

TEST_F(SlicesHost, SchedulingLatencyReadsOneValuePerPeriod) {
    DkSliceGpu& slices = *DkServiceManager::GetInstance().GetDkSliceGpu();
    IDkDevice* device = DkSystemManager::GetInstance().GetDeviceById(c_sliceDevice).get();
    int32_t values[3] = {};
    uint32_t count = 3;
    ASSERT_EQ(slices.GetSchedulingLatency(device, 0, values, &count), DK_SML_SUCCESS);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(values[2], 7);
    count = 2;
    EXPECT_EQ(slices.GetSchedulingLatency(device, 0, values, &count), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(slices.GetSchedulingLatency(device, 2, values, &count), DK_SML_ERROR_NOT_SUPPORTED);
}

TEST(SliceDirName, OnlySgpuFollowedByADecimalIdCounts) {
    const struct {
        const char* name;
        bool valid;
        uint32_t id;
    } cases[] = {{"sgpu0", true, 0},   {"sgpu12", true, 12}, {"sgpu", false, 0},      {"sgpux", false, 0},
                 {"sgpu-1", false, 0}, {"sgpu1x", false, 0}, {"xsgpu1", false, 0},    {"create", false, 0},
                 {"sgpu99999999999", false, 0}};
    for (const auto& c : cases) {
        uint32_t id = 0;
        EXPECT_EQ(ParseSliceDirName(c.name, id), c.valid) << c.name;
        if (c.valid) {
            EXPECT_EQ(id, c.id) << c.name;
        }
    }
}

}  // namespace
}  // namespace dksml::test
