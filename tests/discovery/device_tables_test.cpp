// The maker's per-model tables: the rules around them (virtual-function ids,
// unlisted ids, the x-series instruction sets), not the rows themselves.
#include <string>

#include <gtest/gtest.h>

#include "core/dk_device_tables.h"

namespace dksml {
namespace {

constexpr DkSmlIsaVersion c_noIsa{0, 0};

TEST(DeviceTables, BrandByIsaVersion) {
    const struct {
        DkSmlIsaVersion isa;
        bool xSeries;
        int brand;  // -1: not listed
    } cases[] = {
        {{6, 1}, true, -1},  {{6, 0}, true, -1},  {{6, 3}, false, -1}, {{3, 1}, false, DK_SML_BRAND_DKQ},
        {{5, 2}, false, DK_SML_BRAND_DKK}, {{7, 0}, false, DK_SML_BRAND_DKZ}, {{0, 0}, false, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.isa.major) + "." + std::to_string(c.isa.minor));
        EXPECT_EQ(IsXSeriesIsaVersion(c.isa), c.xSeries);
        auto brand = GetBrandByIsaVersion(c.isa);
        EXPECT_EQ(brand ? static_cast<int>(*brand) : -1, c.brand);
    }
}

// A virtual function's id names its product with " VF" and counts as the
// product's model; an unlisted id is no product and no model.
TEST(DeviceTables, VirtualFunctionAndUnlistedIds) {
    EXPECT_EQ(GetBoardNameByPciDeviceId(0x0902), "DKQ9-B");
    EXPECT_EQ(GetBoardNameByPciDeviceId(0x0982), "DKQ9-B VF");
    EXPECT_EQ(GetBoardNameByPciDeviceId(0xffff), "");
    EXPECT_EQ(GetBrandByPciDeviceId(0x1691), DK_SML_BRAND_DKK_X);
    EXPECT_FALSE(GetBrandByPciDeviceId(0).has_value());
    EXPECT_TRUE(IsModel(DkModel::Dkq9, 0x0982, c_noIsa));
    EXPECT_TRUE(IsModel(DkModel::Dkk6, 0x1682, c_noIsa));
    EXPECT_FALSE(IsModel(DkModel::DkMcm, 0x1682, c_noIsa));
    EXPECT_FALSE(IsModel(DkModel::Dkk6, 0x4242, c_noIsa));
    // An x-series instruction set marks an unlisted board as part of the DKK6 series only.
    EXPECT_TRUE(IsModel(DkModel::Dkk6Series, 0x4242, {6, 2}));
    EXPECT_FALSE(IsModel(DkModel::Dkk6, 0x4242, {6, 2}));
}

}  // namespace
}  // namespace dksml
