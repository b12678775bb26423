// Runs the built dksmi binary on the current host root (DK_SMI_FSROOT, set by
// a ScopedHost) and reads the simulated host's files for expected values.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksmi::test {

struct RunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

std::filesystem::path DksmiBinary();
RunResult RunDksmi(const std::string& arguments);

// Fixture base: the tests need the dksmi binary, which is absent when the
// tools are not built.
class DksmiTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(DksmiBinary())) GTEST_SKIP() << "dksmi is not built (tools disabled)";
    }
};

// What the host tree says about one PCI function.
struct TreeFunction {
    std::string busId;
    uint32_t vendorId = 0;
    bool isVirtualFunction = false;
    uint32_t dieCount = 0;   // number of smi/ and smi1/ directories
};

// Every PCI function of the maker in /sys/bus/pci/devices, in bus id order.
std::vector<TreeFunction> MakerFunctions(const dksml::vhost::ScopedHost& host);

// "key: value" lines of an attribute file (key trimmed, value as written).
std::map<std::string, std::string> ReadKeyValues(const dksml::vhost::ScopedHost& host, const std::string& hostPath);

// Attribute directory of a die ("/sys/bus/pci/devices/BDF/smi/" or ".../smi1/").
std::string DieDirectory(const std::string& busId, unsigned die);

}  // namespace dksmi::test
