// Under a small descriptor limit a device keeps only what the library's share
// of that limit allows and reads the rest by path: dksmi then prints exactly
// what it prints without the limit, for every shipped host. (Before, the
// devices past the limit lost their second die, their names and readings.)
#include <gtest/gtest.h>

#include "dksmi/dksmi_runner.h"
#include "support/dk_shipped_profiles.h"

namespace dksmi::test {
namespace {

// 32 descriptors: a budget of 8 kept directories, two devices' worth.
constexpr const char* c_smallLimit = "ulimit -n 32;";

class DksmiFdLimitTest : public DksmiTest {};

TEST_F(DksmiFdLimitTest, ReadsPastTheBudgetAnswerAsKeptOnes) {
    for (const std::string& profile : dksml::test::ShippedProfiles()) {
        const ScopedHost host(profile);
        for (const char* arguments : {"", "--json"}) {
            const RunResult unlimited = RunDksmi(arguments);
            const RunResult limited = RunDksmi(arguments, c_smallLimit);
            EXPECT_EQ(limited.exitCode, unlimited.exitCode) << profile << " dksmi " << arguments;
            EXPECT_EQ(limited.out, unlimited.out) << profile << " dksmi " << arguments;
        }
    }
}

}  // namespace
}  // namespace dksmi::test
