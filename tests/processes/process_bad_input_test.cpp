// Client directories the scan must survive: odd names, garbage files, missing
// pieces, dangling descriptors and a process that exits mid-scan.
#include <algorithm>
#include <filesystem>
#include <string>

#include "core/dk_host_root.h"
#include "features/process/dk_dir_list.h"
#include "features/process/dk_linux_process_management.h"
#include "process_host.h"

namespace dksml::test {
namespace {

constexpr const char* c_clients = "/sys/kernel/debug/dkcd/proc/";

class BadClients : public SlicesHost {
protected:
    void Client(const std::string& pid, const std::string& file, const std::string& text) {
        host->WriteFile(c_clients + pid + "/" + file, text);
    }
    // The records of one scan over every GPU (room for 16).
    std::vector<DkSmlProcessInfo_v3> Scan(bool includeAll) {
        std::vector<DkSmlProcessInfo_v3> records(16);
        uint32_t count = 0;
        EXPECT_EQ(Processes().GetProcessInfo_v3(records.data(), 16, &count, DK_SML_ALL_GPUS, includeAll),
                  DK_SML_SUCCESS);
        records.resize(std::min<uint32_t>(count, 16));
        return records;
    }
    static const DkSmlProcessInfo_v3* Find(const std::vector<DkSmlProcessInfo_v3>& records, uint32_t pid) {
        for (const DkSmlProcessInfo_v3& record : records)
            if (record.pid == pid) return &record;
        return nullptr;
    }
};

TEST_F(BadClients, DirectoriesThatAreNoPidAreIgnored) {
    for (const char* name : {"abc", "12a", "99999999999", "-5", "4294967296"}) {
        Client(name, "vram_48651", "999999999999\n");
        Client(name, "name", "bogus\n");
    }
    EXPECT_EQ(Scan(false).size(), 3u);
}

TEST_F(BadClients, GarbageFilesGiveDefinedValues) {
    Client("9001", "nspid", "garbage\n");
    Client("9001", "name", "");
    Client("9001", "vram_", "1\n");
    Client("9001", "vram_abc", "1\n");
    Client("9001", "vram_4294967296", "77777777777\n");       // 2^32: not a GPU number
    Client("9001", "vram_99999999999999999999", "777777777\n");
    Client("9001", "vram_48651", "junk\n");                   // unreadable value: 0
    Client("9001", "ringbuf/0/gpuid", "48651\n");             // no "type": not a compute ring
    Client("9002", "vram_48651", "68719476736\n");            // no "name", no "nspid"
    Client("9003", "vram_77", "68719476736\n");               // a GPU id discovery does not know
    auto records = Scan(false);
    EXPECT_EQ(Find(records, 9001), nullptr);  // 0 bytes, no ring buffer: idle
    EXPECT_EQ(Find(records, 9003), nullptr);
    const DkSmlProcessInfo_v3* noName = Find(records, 9002);
    ASSERT_NE(noName, nullptr);
    EXPECT_STREQ(noName->processName, "N/A");

    records = Scan(true);
    const DkSmlProcessInfo_v3* garbage = Find(records, 9001);
    ASSERT_NE(garbage, nullptr);
    EXPECT_STREQ(garbage->processName, "");
    ASSERT_EQ(garbage->gpuCount, 1u);
    EXPECT_EQ(garbage->gpuInfo[0].memoryUsed, 0u);
    EXPECT_STREQ(garbage->gpuInfo[0].bdf, "0000:1b:00.0");
}

TEST_F(BadClients, LongNamesAreCutToTheField) {
    Client("9004", "name", std::string(200, 'n') + "\n");
    Client("9004", "vram_48651", "68719476736\n");
    auto records = Scan(false);
    const DkSmlProcessInfo_v3* record = Find(records, 9004);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(std::string(record->processName, sizeof(record->processName)), std::string(64, 'n'));
    EXPECT_EQ(record->gpuCount, 1u);  // the next field is intact
}

TEST_F(BadClients, DanglingDescriptorsHoldNothing) {
    std::filesystem::create_directories(host->Path("/proc/9100/fd"));
    std::filesystem::create_symlink("/nowhere/at/all", host->Path("/proc/9100/fd/3"));
    std::filesystem::create_symlink("../../../dev/null-missing", host->Path("/proc/9100/fd/4"));
    auto records = Scan(true);
    EXPECT_EQ(Find(records, 9100), nullptr);
    EXPECT_NE(Find(records, c_monitorPid), nullptr);
}

// Removes one client's directory after the listing, as when the process exits.
class VanishingScan : public DkLinuxProcessManagement {
public:
    using DkLinuxProcessManagement::DkLinuxProcessManagement;
    std::string victim;
    vhost::ScopedHost* host = nullptr;

protected:
    void BeforeReadingProcess(const std::string& processDir) override {
        if (processDir.size() >= victim.size() && processDir.compare(processDir.size() - victim.size(), victim.size(),
                                                                     victim) == 0)
            host->Remove(processDir);
    }
};

TEST_F(BadClients, AProcessThatExitsMidScanIsSkipped) {
    VanishingScan scan(std::string(c_dkcdDebugDir) + "/proc", 16ull << 20);
    scan.victim = "/4242";
    scan.host = host.get();
    std::vector<DkSmlProcessInfo_v3> records(4);
    uint32_t count = 0;
    ASSERT_EQ(scan.GetProcessInfo_v3(records.data(), 4, &count, DK_SML_ALL_GPUS, false), DK_SML_SUCCESS);
    EXPECT_THAT(PidsOf(records.data(), count), ::testing::ElementsAre(c_containerPid, c_widePid));
}

TEST_F(BadClients, AnUnreadableDriverDirectoryFailsTheScan) {
    host->Remove("/sys/kernel/debug/dkcd/proc");
    uint32_t count = 0;
    EXPECT_EQ(dkSmlGetNumberOfProcess(&count), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(Processes().GetProcessInfo_v3(nullptr, 4, &count, DK_SML_ALL_GPUS, false), DK_SML_ERROR_INVALID_INPUT);
}

TEST(ProcessNames, DecimalParsingRejectsWhatIsNoNumber) {
    uint32_t value = 0;
    EXPECT_TRUE(ParseDecimalName("4294967295", value));
    EXPECT_EQ(value, 4294967295u);
    for (const char* bad : {"", "4294967296", "12 ", "+1", "0x10", "1e3"}) EXPECT_FALSE(ParseDecimalName(bad, value)) << bad;
    uint64_t big = 0;
    EXPECT_TRUE(ParseLeadingDecimal("18446744073709551615xyz", UINT64_MAX, big));
    EXPECT_FALSE(ParseLeadingDecimal("18446744073709551616", UINT64_MAX, big));
}

}  // namespace
}  // namespace dksml::test
