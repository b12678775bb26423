// Every per-handle compatibility export answers
// DK_SML_EX_ERROR_INVALID_ARGUMENT for a null or forged
// handle, whatever its outputs, and never touches the forged memory.
#include <gtest/gtest.h>

#include <cstring>

#include "api_host.h"
#include "compat_exports.h"

namespace dksml::test {
namespace {

class CompatFrameTest : public ::testing::Test {
protected:
    void SetUp() override { host = MakeHost("empty"); }
    std::unique_ptr<vhost::ScopedHost> host;
};

TEST_F(CompatFrameTest, NullHandleIsAnInvalidArgument) {
    for (const CompatExport& entry : CompatExports()) {
        for (bool nullOutputs : {false, true}) {
            CompatOutputs outputs;
            EXPECT_EQ(entry.call(outputs, nullptr, nullOutputs), DK_SML_EX_ERROR_INVALID_ARGUMENT)
                << entry.name << (nullOutputs ? " with null outputs" : "");
        }
    }
}

// A forged handle points at caller memory filled with a pattern that would
// crash or mislead if it were read as a die record.
TEST_F(CompatFrameTest, ForgedHandleIsRejectedWithoutBeingRead) {
    alignas(16) unsigned char forged[256];
    std::memset(forged, 0xA5, sizeof(forged));
    const DkSmlExDevice handle = reinterpret_cast<DkSmlExDevice>(forged);
    for (const CompatExport& entry : CompatExports()) {
        for (bool nullOutputs : {false, true}) {
            CompatOutputs outputs;
            EXPECT_EQ(entry.call(outputs, handle, nullOutputs), DK_SML_EX_ERROR_INVALID_ARGUMENT)
                << entry.name << (nullOutputs ? " with null outputs" : "");
        }
    }
    for (unsigned char byte : forged) ASSERT_EQ(byte, 0xA5);
}

TEST_F(CompatFrameTest, FieldValuesWithoutArrayIsInvalid) {
    EXPECT_EQ(dkSmlExDeviceGetFieldValues(nullptr, 0, nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

}  // namespace
}  // namespace dksml::test
