// The operating mode in the driver manager's "system_maintenance" file.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "api_host.h"
#include "core/dk_system_manager.h"

namespace dksml::test {
namespace {

constexpr const char* c_managerDir = "/sys/devices/virtual/dkcd/dkcd/manager";
constexpr const char* c_modeFile = "/sys/devices/virtual/dkcd/dkcd/manager/system_maintenance";

class OpModeTest : public ::testing::Test {
protected:
    void SetUp() override {
        host = MakeHost("empty");
        DkSystemManager::GetInstance().SetSystemManagerPath(c_managerDir);
    }
    std::unique_ptr<vhost::ScopedHost> host;
};

TEST_F(OpModeTest, ReadsTheDriversNumberAndWritesOneDecimalLine) {
    host->WriteFile(c_modeFile, "3\n");
    uint32_t mode = 0;
    EXPECT_EQ(dkSmlGetOpMode(&mode), DK_SML_SUCCESS);
    EXPECT_EQ(mode, 3u);
    EXPECT_EQ(dkSmlSetOpMode(12), DK_SML_SUCCESS);
    EXPECT_EQ(host->ReadFile(c_modeFile), "12\n");
    EXPECT_EQ(dkSmlGetOpMode(&mode), DK_SML_SUCCESS);
    EXPECT_EQ(mode, 12u);
}

// A driver without the attribute: nothing to read or write, whoever asks.
TEST_F(OpModeTest, MissingFileCannotBeReadOrWritten) {
    host->Remove(c_modeFile);
    EXPECT_EQ(dkSmlSetOpMode(1), DK_SML_ERROR_PERMISSION);
    uint32_t mode = 77;
    EXPECT_EQ(dkSmlGetOpMode(&mode), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(mode, 77u);
}

TEST_F(OpModeTest, ReadOnlyFileIsAPermissionError) {
    if (geteuid() == 0) GTEST_SKIP() << "root may write a read-only file";
    host->WriteFile(c_modeFile, "1\n");
    ASSERT_EQ(chmod(host->Path(c_modeFile).c_str(), 0444), 0);
    EXPECT_EQ(dkSmlSetOpMode(2), DK_SML_ERROR_PERMISSION);
    EXPECT_EQ(host->ReadFile(c_modeFile), "1\n");
}

}  // namespace
}  // namespace dksml::test
