// Runs the built dksmi binary on the current host root (DK_SMI_FSROOT, set by
// a ScopedHost).
#pragma once

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksmi::test {

struct RunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

std::filesystem::path DksmiBinary();
// `prefix` runs dksmi under another command (e.g. one that drops root).
RunResult RunDksmi(const std::string& arguments, const std::string& prefix = "");

// Fixture base: the tests need the dksmi binary, which is absent when the
// tools are not built.
class DksmiTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(DksmiBinary())) GTEST_SKIP() << "dksmi is not built (tools disabled)";
    }
};

// Attribute directory of a die ("/sys/bus/pci/devices/BDF/smi/" or ".../smi1/").
std::string DieDirectory(const std::string& busId, unsigned die);

}  // namespace dksmi::test
