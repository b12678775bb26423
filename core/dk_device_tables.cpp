#include "core/dk_device_tables.h"

#include <algorithm>
#include <array>
#include <vector>
#include <map>
#include <set>
#include <utility>

#include "core/dk_pci_ids.h"

namespace dksml {
namespace {

// Instruction-set majors of the x-series and their accepted minors.
const std::map<uint32_t, std::set<uint32_t>> c_xSeriesIsaVersionMap = {
    {6, {0, 1, 2}},
};

// Instruction sets of the other lines: inference (3.x), training (5.x), edge (7.x).
const std::map<std::pair<uint32_t, uint32_t>, DkSmlDeviceBrand> c_isaBrandMap = {
    {{3, 0}, DK_SML_BRAND_DKQ}, {{3, 1}, DK_SML_BRAND_DKQ}, {{3, 2}, DK_SML_BRAND_DKQ},
    {{5, 0}, DK_SML_BRAND_DKK}, {{5, 1}, DK_SML_BRAND_DKK}, {{5, 2}, DK_SML_BRAND_DKK},
    {{7, 0}, DK_SML_BRAND_DKZ}, {{7, 1}, DK_SML_BRAND_DKZ},
};

// What each model predicate accepts: the physical-function device ids of the
// model (their virtual functions match as well), and whether any x-series
// instruction set also identifies it (for boards newer than the id list).
struct DkModelRow {
    DkModel model;
    std::vector<uint32_t> pfDeviceIds;
    bool matchesXSeriesIsa;
};

const std::array<DkModelRow, 10> c_modelTable{{
    {DkModel::Dkq7e, {0x0703}, false},
    // DKQ7V is the DKQ7 bin with part of its compute units fused off.
    {DkModel::DkqHarvest, {0x0702}, false},
    {DkModel::Dkq8, {0x0801}, false},
    {DkModel::Dkq9, {0x0901, 0x0902}, false},
    {DkModel::Dkk2, {0x1201, 0x1202, 0x1203, 0x1204}, false},
    {DkModel::Dkk3, {0x1301}, false},
    {DkModel::Dkk6, {0x1601, 0x1602, 0x1603}, false},
    {DkModel::Dkk6u, {0x1611}, false},
    {DkModel::Dkk6Series, {0x1601, 0x1602, 0x1603, 0x1611}, true},
    // DKK6-A and DKK6-PL carry two dies in one package.
    {DkModel::DkMcm, {0x1601, 0x1603}, false},
}};

const DkProductRow* FindProduct(uint32_t pciDeviceId, bool& isVfId) {
    for (const DkProductRow& row : c_productTable) {
        if (row.pfDeviceId == pciDeviceId || row.vfDeviceId == pciDeviceId) {
            isVfId = row.vfDeviceId == pciDeviceId;
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

bool IsXSeriesIsaVersion(const DkSmlIsaVersion& isa) {
    auto it = c_xSeriesIsaVersionMap.find(isa.major);
    return it != c_xSeriesIsaVersionMap.end() && it->second.count(isa.minor) != 0;
}

std::optional<DkSmlDeviceBrand> GetBrandByIsaVersion(const DkSmlIsaVersion& isa) {
    auto it = c_isaBrandMap.find({isa.major, isa.minor});
    if (it == c_isaBrandMap.end()) return std::nullopt;
    return it->second;
}

std::optional<DkSmlDeviceBrand> GetBrandByPciDeviceId(uint32_t pciDeviceId) {
    bool isVfId = false;
    const DkProductRow* row = FindProduct(pciDeviceId, isVfId);
    if (row == nullptr) return std::nullopt;
    return row->brand;
}

std::string GetBoardNameByPciDeviceId(uint32_t pciDeviceId) {
    bool isVfId = false;
    const DkProductRow* row = FindProduct(pciDeviceId, isVfId);
    if (row == nullptr) return {};
    std::string name(row->name);
    if (isVfId) name += " VF";
    return name;
}

bool IsModel(DkModel model, uint32_t pciDeviceId, const DkSmlIsaVersion& isa) {
    auto row = std::find_if(c_modelTable.begin(), c_modelTable.end(),
                            [model](const DkModelRow& r) { return r.model == model; });
    if (row == c_modelTable.end()) return false;
    if (row->matchesXSeriesIsa && IsXSeriesIsaVersion(isa)) return true;
    bool isVfId = false;
    const DkProductRow* product = FindProduct(pciDeviceId, isVfId);
    if (product == nullptr) return false;
    return std::find(row->pfDeviceIds.begin(), row->pfDeviceIds.end(), product->pfDeviceId) !=
           row->pfDeviceIds.end();
}

}  // namespace dksml
