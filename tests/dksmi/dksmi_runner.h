// Runs the built dksmi binary on the current host root (DK_SMI_FSROOT, set by
// a ScopedHost), or any shell command, with its standard output and standard
// error captured apart.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "support/dk_shipped_profiles.h"
#include "vhost/dk_virtual_host.h"

namespace dksmi::test {

using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

struct RunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

inline RunResult RunCommand(const std::string& command) {
    const std::filesystem::path errFile =
        std::filesystem::temp_directory_path() / ("dksml-test-stderr-" + std::to_string(getpid()));
    RunResult result;
    FILE* pipe = popen((command + " 2>'" + errFile.string() + "'").c_str(), "r");
    if (pipe == nullptr) return result;
    std::array<char, 4096> buffer{};
    size_t n = 0;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) result.out.append(buffer.data(), n);
    const int status = pclose(pipe);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.err = dksml::test::ReadWholeFile(errFile);
    std::filesystem::remove(errFile);
    return result;
}

inline std::filesystem::path DksmiBinary() {
    return std::filesystem::path(DKSML_BINARY_DIR) / "tools" / "dksmi" / "dksmi";
}

// `prefix` runs dksmi under another command (e.g. one that drops root).
inline RunResult RunDksmi(const std::string& arguments, const std::string& prefix = "") {
    return RunCommand(prefix + " '" + DksmiBinary().string() + "' " + arguments);
}

// Fixture base: the tests need the dksmi binary, which is absent when the
// tools are not built.
class DksmiTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(DksmiBinary())) GTEST_SKIP() << "dksmi is not built (tools disabled)";
    }
};

// Attribute directory of a die ("/sys/bus/pci/devices/BDF/smi/" or ".../smi1/").
inline std::string DieDirectory(const std::string& busId, unsigned die) {
    return "/sys/bus/pci/devices/" + busId + (die == 0 ? "/smi/" : "/smi1/");
}

}  // namespace dksmi::test
