// "dksmi set": its writes, refusals and bad values.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using DksmiSet = DksmiTest;

TEST_F(DksmiSet, ChangesTheMaximumLevelAndTheIntervalAsRoot) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    ScopedHost host("server"sv);
    // Device 1 is 0000:1c:00.0 (numbering pinned by the golden transcripts).
    const RunResult run = RunDksmi("set -i 1 --max-perf-level xcore=5 --dpm-interval xcore=20");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("xcore maximum performance level: 9 -> 5"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("xcore DPM interval: 10 -> 20 ms"), std::string::npos) << run.out;
    EXPECT_EQ(host.ReadFile("/sys/bus/pci/devices/0000:1c:00.0/smi/dpmcount"), "xcore 6\n");
    EXPECT_EQ(host.ReadFile("/sys/bus/pci/devices/0000:1c:00.0/smi/dpminterval"), "xcore 20\n");
}

TEST_F(DksmiSet, RefusalsAndBadValues) {
    ScopedHost host("server"sv);
    const std::string index = "2";  // 0000:1e:00.0
    const std::string before = host.ReadFile("/sys/bus/pci/devices/0000:1e:00.0/smi/dpmcount");
    struct Case {
        std::string arguments;
        int exitCode;
        const char* message;
    };
    const Case cases[] = {
        {"set -i " + index + " --max-perf-level gpu=3", 2, "DOMAIN one of"},
        {"set -i " + index + " --max-perf-level xcore", 2, "expects DOMAIN=LEVEL"},
        {"set -i " + index + " --max-perf-level xcore=99", 2, "not \"xcore=99\""},
        {"set -i " + index, 2, "nothing to set"},
        {"set --max-perf-level xcore=1", 2, "--index"},
        {"set -i 4242 --max-perf-level xcore=1", geteuid() == 0 ? 5 : 7, ""},
        // DKK2 has eight compute levels: the library refuses level 8.
        {"set -i " + index + " --max-perf-level xcore=8", 7, ""},
        {"set -i " + index + " --pci-delay 0", 2, "not in range"},
        // PCI delay is a brand-1 setting: the library refuses it on this board.
        {"set -i " + index + " --pci-delay 100", geteuid() == 0 ? 1 : 7, geteuid() == 0 ? "PCI delay" : ""},
    };
    for (const Case& c : cases) {
        const RunResult run = RunDksmi(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.arguments << "\n" << run.err;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << c.arguments << "\n" << run.err;
    }
    EXPECT_EQ(host.ReadFile("/sys/bus/pci/devices/0000:1e:00.0/smi/dpmcount"), before);
}

// The "slices" host: device 0 native (0000:1b:00.0), device 1 in slice mode
// with slices 0, 1 and 3. Rows run in order on one host; each names the files
// the driver would have been given and their exact text. A static tree makes
// no slice directory when "create" is written, so create ends in its undo.
TEST_F(DksmiSet, SliceOperationsWriteTheDriverFilesAsRoot) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
    ScopedHost host("slices"sv);
    const std::string plain = "/sys/devices/pci0000:17/0000:17:01.0/0000:1b:00.0/";
    const std::string sgpu = "/sys/devices/pci0000:17/0000:17:02.0/0000:3b:00.0/sgpu/";
    struct Case {
        const char* arguments;
        int exitCode;
        const char* message;  // on standard output when the exit code is 0, else on standard error
        std::vector<std::pair<std::string, std::string>> files;
    };
    const Case cases[] = {
        {"set -i 0 --remove-slice 0", 7, "not in slice mode (turn it on first)", {}},
        {"set -i 1 --slice-alias 1=batch", 0, "slice 1 alias: \"\" -> \"batch\"", {{sgpu + "sgpu1/alias", "batch"}}},
        {"set -i 1 --slice-alias 0=x", 0, "slice 0 alias: \"tenant-a\" -> \"x\"", {{sgpu + "sgpu0/alias", "x"}}},
        {"set -i 1 --create-slice --vram-quota 8192 --compute-quota 20", 7, "the driver did not accept",
         {{sgpu + "create", "8192\n"}, {sgpu + "remove", "2\n"}}},
        {"set -i 1 --create-slice --vram-quota 8192", 2, "quota above 0", {}},
        {"set -i 1 --remove-slice 3", 0, "Device 1 (0000:3b:00.0): removed slice 3", {{sgpu + "remove", "3\n"}}},
        {"set -i 0 --slice-mode on", 0, "slice mode: off -> on", {{plain + "model", "sgpu\n"}}},
        // Mode first, then the removal, which slice mode off refuses.
        {"set -i 1 --slice-mode off --remove-slice 1", 7, "not in slice mode",
         {{sgpu + "../model", "native\n"}, {sgpu + "remove", "3\n"}}},
        {"set -i 1 --slice-alias one=x", 2, "expects ID=TEXT", {}},
        {"set -i 1 --slice-mode maybe", 2, "maybe", {}},
        {"set -i 1 --vram-quota 5", 2, "--create-slice", {}},
    };
    for (const Case& c : cases) {
        const RunResult run = RunDksmi(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.arguments << "\n" << run.out << run.err;
        EXPECT_NE((c.exitCode == 0 ? run.out : run.err).find(c.message), std::string::npos)
            << c.arguments << "\n" << run.out << run.err;
        for (const auto& [file, text] : c.files) EXPECT_EQ(host.ReadFile(file), text) << c.arguments << " " << file;
    }
}

// Every write needs root: run as nobody, dksmi reports the library's
// permission status and no driver file is touched.
TEST_F(DksmiSet, WritesRefuseWithoutRoot) {
    const struct {
        const char* profile;
        const char* arguments;
        const char* untouchedFile;
    } cases[] = {
        {"server", "set -i 0 --max-perf-level xcore=1", "/sys/bus/pci/devices/0000:1b:00.0/smi/dpmcount"},
        {"slices", "set -i 1 --remove-slice 0", "/sys/devices/pci0000:17/0000:17:02.0/0000:3b:00.0/sgpu/remove"},
    };
    const std::string prefix = geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups" : "";
    for (const auto& c : cases) {
        ScopedHost host(std::string_view(c.profile));
        const std::string before = host.ReadFile(c.untouchedFile);
        const RunResult run = RunDksmi(c.arguments, prefix);
        EXPECT_EQ(run.exitCode, 7) << c.arguments << "\n" << run.err;
        EXPECT_NE(run.err.find("permission denied"), std::string::npos) << c.arguments << "\n" << run.err;
        EXPECT_NE(run.err.find("code 8"), std::string::npos) << c.arguments << "\n" << run.err;
        EXPECT_EQ(host.ReadFile(c.untouchedFile), before) << c.arguments;
    }
}

}  // namespace
}  // namespace dksmi::test
