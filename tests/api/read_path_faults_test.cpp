// Attribute files that are not plain files or that are too large: each gives
// a clear status at once through the exported functions, and the device keeps
// answering once the file is back.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "api/api_host.h"
#include "driver/dk_text.h"

namespace dksml::test {
namespace {

enum class Fault { Fifo, DevZeroLink, OverCap, Directory };

void Plant(const std::filesystem::path& file, Fault fault) {
    std::filesystem::remove_all(file);
    switch (fault) {
        case Fault::Fifo:
            ASSERT_EQ(mkfifo(file.c_str(), 0644), 0);
            break;
        case Fault::DevZeroLink:
            ASSERT_EQ(symlink("/dev/zero", file.c_str()), 0);
            break;
        case Fault::OverCap:
            {
                FILE* f = std::fopen(file.c_str(), "w");
                ASSERT_NE(f, nullptr);
                const std::string line = "GFX: 1200\n";
                for (std::size_t n = 0; n <= c_maxAttributeBytes; n += line.size()) std::fputs(line.c_str(), f);
                std::fclose(f);
            }
            break;
        case Fault::Directory:
            std::filesystem::create_directory(file);
            break;
    }
}

TEST(ReadPathFaults, NonRegularAndOversizedFilesAnswerAtOnce) {
    auto host = MakeHost("server");
    DkSmlDeviceInfo info{};
    ASSERT_EQ(dkSmlGetDeviceInfo(0, &info), DK_SML_SUCCESS);
    const std::string clocksPath = std::string("/sys/bus/pci/devices/") + info.bdfId + "/smi/showclocks";
    const std::string original = host->ReadFile(clocksPath);
    DkSmlClocksFreqForAll clocks{};
    ASSERT_EQ(dkSmlGetClocks(0, 0, &clocks), DK_SML_SUCCESS);

    // A FIFO blocks an ordinary open and /dev/zero never ends: a regression
    // hangs here, and the alarm ends the test instead of the whole run.
    alarm(30);
    for (Fault fault : {Fault::Fifo, Fault::DevZeroLink, Fault::OverCap, Fault::Directory}) {
        Plant(host->Path(clocksPath), fault);
        EXPECT_EQ(dkSmlGetClocks(0, 0, &clocks), DK_SML_ERROR_SYSFS) << static_cast<int>(fault);
        std::filesystem::remove_all(host->Path(clocksPath));
        EXPECT_EQ(dkSmlGetClocks(0, 0, &clocks), DK_SML_ERROR_NOT_SUPPORTED) << static_cast<int>(fault);
        host->WriteFile(clocksPath, original);
        EXPECT_EQ(dkSmlGetClocks(0, 0, &clocks), DK_SML_SUCCESS) << static_cast<int>(fault);
    }
    alarm(0);
}

}  // namespace
}  // namespace dksml::test
