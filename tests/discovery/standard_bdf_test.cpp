#include <gtest/gtest.h>

#include "core/dk_system_manager.h"

namespace dksml {
namespace {

TEST(StandardBdfId, NormalisesEveryFieldOrGivesEmpty) {
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"0:3:0.0", "0000:03:00.0"},
        {"0000:03:00.0", "0000:03:00.0"},
        {"0000:AF:1F.7", "0000:af:1f.7"},
        {"10000:1:2.3", "10000:01:02.3"},  // wider than the fill: kept whole
        {"0:3:0.a", "0000:03:00.a"},
        {"zz:03:00.0", ""},
        {"0000:03.00.0", ""},   // one colon only
        {"0000:03:00", ""},     // no function
        {"0000::00.0", ""},     // empty bus
        {"0000:03:00.", ""},
        {":03:00.0", ""},
        {"0000:0:3:00.0", ""},  // the bus would span a colon
        {"0000:03:0x1.0", ""},
        {"", ""},
    };
    for (const auto& c : cases) EXPECT_EQ(GetStandardBdfId(c.text), c.expected) << c.text;
}

}  // namespace
}  // namespace dksml
