#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "support/dk_shipped_profiles.h"
#include "vhost/dk_virtual_host.h"
#include "vhost/vhost_archive.h"
#include "vhost/vhost_gather.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

std::string Manifest(const fs::path& out) { return test::ReadWholeFile(out / c_manifestName); }

// The server host with what a real machine adds around it: private process
// files, a descriptor with an absolute target, an override that is a dangling link.
class GatherTest : public ::testing::Test {
protected:
    GatherTest() : m_host("server") {
        m_host.WriteFile("/proc/4242/cmdline", "python3 train.py --token=secret");
        m_host.WriteFile("/proc/4242/environ", "HOME=/home/alice");
        m_host.WriteFile("/proc/4242/status", "Name: python3");
        fs::create_directories(m_host.Path("/proc/4242/fd"));
        fs::create_symlink("/home/alice/data.bin", m_host.Path("/proc/4242/fd/7"));
        m_host.WriteFile("/proc/777/comm", "absolute\n");
        fs::create_directories(m_host.Path("/proc/777/fd"));
        fs::create_symlink("/dev/dkcd", m_host.Path("/proc/777/fd/4"));
        m_host.WriteFile("/home/alice/notes.txt", "private");
        m_host.WriteFile("/sys/bus/pci/devices/0000:1b:00.0/smi/vfflr", "");
        fs::create_directories(m_host.Path("/opt/smi/etc"));
        fs::create_symlink("/nowhere/vendorid", m_host.Path("/opt/smi/etc/vendorid"));
    }

    GatherSummary GatherTo(const fs::path& out, bool keepNames = true) {
        GatherOptions options;
        options.sourceRoot = m_host.Root();
        options.keepProcessNames = keepNames;
        return Gather(options, out);
    }

    ScopedHost m_host;
    ScratchDirectory m_scratch;
};

TEST_F(GatherTest, TakesNothingPersonalAndRecordsWhatItCouldNotRead) {
    const fs::path out = m_scratch.Path() / "snap";
    EXPECT_GE(GatherTo(out).unreadable, 1u);
    const std::string manifest = Manifest(out);
    EXPECT_NE(manifest.find("unreadable\t/opt/smi/etc/vendorid\t"), std::string::npos);
    EXPECT_NE(manifest.find("file\t/proc/modules\t"), std::string::npos);
    EXPECT_NE(manifest.find("link\t/sys/bus/pci/devices/0000:1b:00.0\t"), std::string::npos);
    EXPECT_FALSE(fs::exists(fs::symlink_status(out / "opt/smi/etc/vendorid")));
    for (const char* absent : {"proc/4242/cmdline", "proc/4242/environ", "proc/4242/status", "proc/4242/fd/7",
                               "home/alice/notes.txt"})
        EXPECT_FALSE(fs::exists(fs::symlink_status(out / absent))) << absent;
    EXPECT_TRUE(fs::exists(out / "proc/4242/comm"));
    // A file that resets the function is never opened.
    EXPECT_FALSE(fs::exists(out / "sys/bus/pci/devices/0000:1b:00.0/smi/vfflr"));
    EXPECT_NE(manifest.find("0000:1b:00.0/smi/vfflr\taction file\n"), std::string::npos);
    // The absolute target became relative, so it resolves inside the snapshot.
    EXPECT_EQ(fs::read_symlink(out / "proc/777/fd/4"), "../../../dev/dkcd");
    EXPECT_EQ(fs::canonical(out / "proc/777/fd/4"), fs::canonical(out / "dev/dkcd"));
    // Relative links are kept as they are.
    const char* function = "sys/bus/pci/devices/0000:1b:00.0";
    EXPECT_EQ(fs::read_symlink(out / function), fs::read_symlink(m_host.Root() / function));
    EXPECT_TRUE(fs::is_directory(out / function / "smi"));
    EXPECT_TRUE(fs::exists(out / function / "driver"));
}

TEST_F(GatherTest, DropsProcessNamesOnRequest) {
    const fs::path out = m_scratch.Path() / "snap";
    GatherTo(out, false);
    EXPECT_FALSE(fs::exists(out / "proc/4242/comm"));
    EXPECT_FALSE(fs::exists(out / "sys/kernel/debug/dkcd/proc/4242/name"));
    EXPECT_TRUE(fs::exists(out / "sys/kernel/debug/dkcd/proc/4242/nspid"));
    EXPECT_NE(Manifest(out).find("dropped\t/sys/kernel/debug/dkcd/proc/4242/name"), std::string::npos);
}

TEST_F(GatherTest, NeverEmptiesADirectoryThatIsNotASnapshot) {
    const fs::path out = m_scratch.Path() / "precious";
    fs::create_directories(out);
    std::ofstream(out / "thesis.tex") << "x";
    EXPECT_THROW(GatherTo(out), std::runtime_error);
    EXPECT_TRUE(fs::exists(out / "thesis.tex"));
    // An earlier snapshot is replaced.
    const fs::path snap = m_scratch.Path() / "snap";
    GatherTo(snap);
    EXPECT_NO_THROW(GatherTo(snap));
}

TEST_F(GatherTest, DiffNamesTheAttributeFilesThatChanged) {
    const fs::path good = m_scratch.Path() / "good.tar.gz";
    GatherTo(good);
    m_host.WriteFile("/sys/bus/pci/devices/0000:1b:00.0/smi/showtemp", "hotspot: 99\n");
    m_host.Remove("/sys/bus/pci/devices/0000:1c:00.0/smi/fan_ctrl");
    const fs::path bad = m_scratch.Path() / "bad";
    GatherTo(bad);
    std::ostringstream report;
    EXPECT_EQ(DiffSnapshots(good, bad, report), 2u);
    const std::string text = report.str();
    EXPECT_NE(text.find("differs:   /sys/devices/"), std::string::npos) << text;
    EXPECT_NE(text.find("0000:1b:00.0/smi/showtemp\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  B:  hotspot: 99\n"), std::string::npos) << text;
    EXPECT_NE(text.find("only in A: /sys/devices/"), std::string::npos) << text;
}

}  // namespace
}  // namespace dksml::vhost
