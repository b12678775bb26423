// The maker's per-model tables: brands and model predicates.
#include <algorithm>
#include <string>
#include <vector>

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

TEST(DeviceTables, BoardNamesAndBrandsByDeviceId) {
    EXPECT_EQ(GetBoardNameByPciDeviceId(0x0902), "DKQ9-B");
    EXPECT_EQ(GetBoardNameByPciDeviceId(0x0982), "DKQ9-B VF");
    EXPECT_EQ(GetBoardNameByPciDeviceId(0x2203), "DKZ2VPL");
    EXPECT_EQ(GetBoardNameByPciDeviceId(0xffff), "");
    EXPECT_EQ(GetBrandByPciDeviceId(0x1691), DK_SML_BRAND_DKK_X);
    EXPECT_EQ(GetBrandByPciDeviceId(0x2381), DK_SML_BRAND_DKZ);
    EXPECT_FALSE(GetBrandByPciDeviceId(0).has_value());
}

// Each row: a device id and the models it is (all others must be false).
TEST(DeviceTables, EveryModelPredicate) {
    const DkModel all[] = {DkModel::Dkq7e, DkModel::DkqHarvest, DkModel::Dkq8,  DkModel::Dkq9,
                           DkModel::Dkk2,  DkModel::Dkk3,       DkModel::Dkk6,  DkModel::Dkk6u,
                           DkModel::Dkk6Series, DkModel::DkMcm};
    const struct {
        uint32_t deviceId;
        std::vector<DkModel> models;
    } rows[] = {
        {0x0701, {}},
        {0x0702, {DkModel::DkqHarvest}},
        {0x0783, {DkModel::Dkq7e}},
        {0x0801, {DkModel::Dkq8}},
        {0x0982, {DkModel::Dkq9}},
        {0x1101, {}},
        {0x1204, {DkModel::Dkk2}},
        {0x1381, {DkModel::Dkk3}},
        {0x1601, {DkModel::Dkk6, DkModel::Dkk6Series, DkModel::DkMcm}},
        {0x1682, {DkModel::Dkk6, DkModel::Dkk6Series}},
        {0x1603, {DkModel::Dkk6, DkModel::Dkk6Series, DkModel::DkMcm}},
        {0x1611, {DkModel::Dkk6u, DkModel::Dkk6Series}},
        {0x2301, {}},
        {0x4242, {}},
    };
    for (const auto& row : rows) {
        for (DkModel model : all) {
            bool expected = std::find(row.models.begin(), row.models.end(), model) != row.models.end();
            EXPECT_EQ(IsModel(model, row.deviceId, c_noIsa), expected)
                << std::hex << row.deviceId << " model " << static_cast<int>(model);
        }
    }
    // An x-series instruction set marks an unlisted board as part of the DKK6 series only.
    EXPECT_TRUE(IsModel(DkModel::Dkk6Series, 0x4242, {6, 2}));
    EXPECT_FALSE(IsModel(DkModel::Dkk6, 0x4242, {6, 2}));
}

}  // namespace
}  // namespace dksml
