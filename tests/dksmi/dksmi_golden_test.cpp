// Golden outputs: dksmi's table, its --json document, its topology and
// process views and the detail view of every device for every shipped
// virtual-host profile, compared with the transcripts checked in under
// tests/dksmi/golden/. Any change to what dksmi prints shows up in review as a
// diff of those files.
//
// When a change is intended, rewrite them and review the diff:
//   DKSML_UPDATE_GOLDEN=1 build/tests/dksml_dksmi_tests --gtest_filter='DksmiGolden*'
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "dksmi/dksmi_runner.h"
#include "support/dk_shipped_profiles.h"

namespace dksmi::test {
namespace {

namespace fs = std::filesystem;
using dksml::test::ReadWholeFile;
using dksml::test::ShippedProfiles;

fs::path GoldenDirectory() { return fs::path(DKSML_SOURCE_DIR) / "tests" / "dksmi" / "golden"; }

bool UpdatingGolden() {
    const char* value = std::getenv("DKSML_UPDATE_GOLDEN");
    return value != nullptr && std::string(value) == "1";
}

// The one place that masks what legitimately differs between runs: the
// temporary directory the virtual host is written to (it appears in messages
// that name a file). The outputs carry no clock time; a profile that adds one
// must be masked here too.
std::string MaskVarying(std::string text, const ScopedHost& host) {
    const std::string root = host.Root().string();
    const std::string mask = "<HOST_ROOT>";
    for (size_t at = text.find(root); at != std::string::npos; at = text.find(root, at + mask.size()))
        text.replace(at, root.size(), mask);
    return text;
}

// What a run printed, as one reviewable file: the command, its standard
// output, then the exit code and whatever it wrote to standard error.
std::string Transcript(const std::string& arguments, const ScopedHost& host) {
    const RunResult run = RunDksmi(arguments);
    std::string text = "$ dksmi" + (arguments.empty() ? "" : " " + arguments) + "\n" + run.out;
    if (!text.empty() && text.back() != '\n') text += "\n";
    text += "[exit " + std::to_string(run.exitCode) + "]\n" + run.err;
    return MaskVarying(text, host);
}

// The detail view ("-i N") of every device and limited device the host lists,
// one run after another.
std::string DetailTranscripts(const ScopedHost& host) {
    const nlohmann::json document = nlohmann::json::parse(RunDksmi("--json").out);
    std::string text;
    for (const char* list : {"devices", "limited_devices"}) {
        for (const nlohmann::json& device : document[list])
            text += Transcript("-i " + std::to_string(device["index"].get<uint32_t>()), host);
    }
    return text;
}

struct Output {
    const char* suffix;
    const char* arguments;
};

// dksmi's renderings of the whole host: the summary table, the JSON document
// (which carries every per-die detail), the topology matrix in both forms, the
// process list in both orders and (no arguments) the detail view of each
// device.
constexpr Output c_outputs[] = {{"table", ""},
                                {"json", "--json"},
                                {"topo", "topo"},
                                {"topo-json", "topo --json"},
                                {"processes", "processes"},
                                {"processes-by-memory", "processes --sort memory"},
                                {"detail", nullptr}};

// The topology rows of a network card appear only for the vendor named in
// "DK_SMI_NIC_VENDOR"; the transcripts name the one the profiles ship.
constexpr const char* c_nicVendor = "0x15b3";

using DksmiGolden = DksmiTest;

TEST_F(DksmiGolden, EveryShippedProfileMatchesItsTranscripts) {
    const std::vector<std::string> profiles = ShippedProfiles();
    ASSERT_FALSE(profiles.empty());
    if (UpdatingGolden()) fs::create_directories(GoldenDirectory());
    setenv("DK_SMI_NIC_VENDOR", c_nicVendor, 1);
    for (const std::string& profile : profiles) {
        ScopedHost host(profile);
        for (const Output& output : c_outputs) {
            const fs::path file = GoldenDirectory() / (profile + "." + output.suffix + ".txt");
            const std::string actual =
                output.arguments == nullptr ? DetailTranscripts(host) : Transcript(output.arguments, host);
            if (UpdatingGolden()) {
                std::ofstream(file, std::ios::binary) << actual;
                continue;
            }
            ASSERT_TRUE(fs::exists(file)) << file << " is missing; run with DKSML_UPDATE_GOLDEN=1 to write it";
            EXPECT_EQ(actual, ReadWholeFile(file))
                << "dksmi " << output.suffix << " on profile \"" << profile << "\" differs from " << file
                << "; if the change is intended, rerun with DKSML_UPDATE_GOLDEN=1 and review the diff";
        }
    }
    unsetenv("DK_SMI_NIC_VENDOR");
}

// A golden file whose profile is gone would never be compared again.
TEST_F(DksmiGolden, EveryTranscriptBelongsToAShippedProfile) {
    if (UpdatingGolden()) GTEST_SKIP() << "rewriting";
    const std::vector<std::string> profiles = ShippedProfiles();
    for (const fs::directory_entry& entry : fs::directory_iterator(GoldenDirectory())) {
        const std::string name = entry.path().filename().string();
        const std::string profile = name.substr(0, name.find('.'));
        EXPECT_TRUE(std::binary_search(profiles.begin(), profiles.end(), profile)) << name << " has no profile";
    }
}

}  // namespace
}  // namespace dksmi::test
