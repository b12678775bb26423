// System-level queries on a machine without any GPU: the compatibility
// family's and the operating mode in the driver manager's
// "system_maintenance" file. The native family's failed discovery is in the
// discovery tests.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "api_host.h"
#include "core/dk_system_manager.h"

namespace dksml::test {
namespace {

constexpr const char* c_managerDir = "/sys/devices/virtual/dkcd/dkcd/manager";
constexpr const char* c_modeFile = "/sys/devices/virtual/dkcd/dkcd/manager/system_maintenance";

class EmptyHostTest : public ::testing::Test {
protected:
    void SetUp() override {
        host = MakeHost("empty");
        DkSystemManager::GetInstance().SetSystemManagerPath(c_managerDir);
    }
    std::unique_ptr<vhost::ScopedHost> host;
};

// The C client in tests/abi checks init, shutdown, the count and the index
// lookup on an empty host.
TEST_F(EmptyHostTest, CompatFamilyHasNoDeviceAndNoHandle) {
    uint32_t count = 77;
    EXPECT_EQ(dkSmlExVornDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 0u);
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:00:17.0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID("GPU-0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    for (uint32_t index : c_absentIndices) EXPECT_EQ(dkSmlGetSgpuCount(index), 0u) << index;
    // Without a device there is no driver to ask.
    char text[64] = {};
    EXPECT_EQ(dkSmlExSystemGetDriverVersion(text, sizeof(text)), DK_SML_EX_ERROR_UNKNOWN);
    EXPECT_EQ(dkSmlExShutdown(), DK_SML_EX_SUCCESS);  // even without an init
}

TEST_F(EmptyHostTest, SystemQueriesRejectNullOutputsAndShortBuffers) {
    char text[16] = {};
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(nullptr, sizeof(text)), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(text, 5), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(text, 6), DK_SML_EX_SUCCESS);
    EXPECT_STREQ(text, "2.3.1");
    EXPECT_EQ(dkSmlExSystemGetDriverVersion(nullptr, 64), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExSystemGetVornDriverVersion(nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetCount(nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(0, nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID(nullptr, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId(nullptr, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

TEST_F(EmptyHostTest, OpModeReadsAndWritesOneDecimalLineWhileTheFileExists) {
    host->WriteFile(c_modeFile, "3\n");
    uint32_t mode = 0;
    EXPECT_EQ(dkSmlGetOpMode(&mode), DK_SML_SUCCESS);
    EXPECT_EQ(mode, 3u);
    EXPECT_EQ(dkSmlSetOpMode(12), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile(c_modeFile), "12\n");
    EXPECT_EQ(dkSmlGetOpMode(&mode), DK_SML_SUCCESS);
    EXPECT_EQ(mode, 12u);
    // A driver without the attribute: nothing to read or write, whoever asks.
    host->Remove(c_modeFile);
    EXPECT_EQ(dkSmlSetOpMode(1), DK_SML_ERROR_PERMISSION);
    mode = 77;
    EXPECT_EQ(dkSmlGetOpMode(&mode), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(mode, 77u);
}

TEST_F(EmptyHostTest, OpModeReadOnlyFileIsAPermissionError) {
    if (geteuid() == 0) GTEST_SKIP() << "root may write a read-only file";
    host->WriteFile(c_modeFile, "1\n");
    ASSERT_EQ(chmod(host->Path(c_modeFile).c_str(), 0444), 0);
    EXPECT_EQ(dkSmlSetOpMode(2), DK_SML_ERROR_PERMISSION);
    EXPECT_EQ(host->ReadFile(c_modeFile), "1\n");
}

}  // namespace
}  // namespace dksml::test
