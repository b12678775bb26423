// Performance levels: the maximum level a domain may reach ("dpmcount"),
// the level in force ("showperflevel" read, "setperflevel" write) and the
// stepping through the levels.
#include "features/dpm/dk_dpm.h"

#include <string>

#include "core/idk_device.h"
#include "features/dpm/dk_dpm_layout.h"
#include "features/dpm/dk_dpm_read.h"

namespace dksml {
namespace {

// One model keeps at most ten levels for every domain it reports.
constexpr uint32_t c_dkk3TopLevel = 9;
// Rotation steps: the inference engine has eight levels, other domains four.
constexpr uint32_t c_npuRotationLevels = 8;
constexpr uint32_t c_rotationLevels = 4;

// "name value" (the handler ends the line).
std::string DomainLine(std::string_view name, uint32_t value) {
    std::string line(name);
    line += ' ';
    line += std::to_string(value);
    return line;
}

// Level from one "dpmcount" line ("name: count"): the driver counts from 1.
DkSmlReturn MaxLevelFromLine(const IDkDevice& device, std::string_view line, uint32_t& level) {
    uint32_t count = 0;
    const DkSmlReturn result = ParseCountAfterColon(line, count);
    if (result != DK_SML_SUCCESS) return result;
    if (count == 0) return DK_SML_ERROR_SYSFS;
    level = count - 1;
    if (device.IsDkk3() && level > c_dkk3TopLevel) level = c_dkk3TopLevel;
    return DK_SML_SUCCESS;
}

}  // namespace

// The domain's "name: level" row of "showperflevel": 3 without a row, 4 unless
// it holds exactly one level.
DkSmlReturn CurrentLevelInText(std::string_view text, std::string_view name, uint32_t& level) {
    std::string_view value;
    if (!FindLabelledRow(text, name, value)) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlDpmPerfLevel row{};
    const DkSmlReturn result = ParseLevelValues(value, row.values, DK_SML_DPM_MAX_LEVELS, row.count);
    if (result != DK_SML_SUCCESS) return result;
    if (row.count != 1) return DK_SML_ERROR_SYSFS;
    level = row.values[0];
    return DK_SML_SUCCESS;
}

// The first "dpmcount" line naming the domain: 9 when none does.
DkSmlReturn MaxLevelInText(const IDkDevice& device, std::string_view text, std::string_view name, uint32_t& level) {
    std::string_view line;
    if (!FindLineContaining(text, name, line)) return DK_SML_ERROR_INVALID_INPUT;
    return MaxLevelFromLine(device, line, level);
}

DkSmlReturn DkDpm::GetDpmIpMaxPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t* level) {
    return GetDieDpmIpMaxPerfLevel(device, 0, ip, level);
}

DkSmlReturn DkDpm::GetDieDpmIpMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint32_t* level) {
    if (device == nullptr || level == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    const std::string_view name = DpmIpName(ip);
    if (name.empty()) return DK_SML_ERROR_INVALID_INPUT;
    std::string* text = nullptr;
    const DkSmlReturn result = FetchDpmText(*device, dieId, DRAVIK_SMI_DPMCOUNT, text);
    if (result != DK_SML_SUCCESS) return result;
    return MaxLevelInText(*device, *text, name, *level);
}

DkSmlReturn DkDpm::GetDpmMaxPerfLevel(IDkDevice* device, DkSmlDpmForAll* levels) {
    return GetDieDpmMaxPerfLevel(device, 0, levels);
}

// Every domain the driver lists; the others read DK_SML_DPM_LEVEL_NONE.
DkSmlReturn DkDpm::GetDieDpmMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmForAll* levels) {
    if (device == nullptr || levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    std::string* text = nullptr;
    const DkSmlReturn result = FetchDpmText(*device, dieId, DRAVIK_SMI_DPMCOUNT, text);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlDpmForAll all{};
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        all.level[ip] = DK_SML_DPM_LEVEL_NONE;
        std::string_view value;
        if (!FindLabelledRow(*text, c_dpmIpNameMap[ip], value)) continue;
        uint32_t level = 0;
        // The row's value after a stand-in label: only the count matters.
        char line[32] = ":";
        const std::size_t length = value.copy(line + 1, sizeof line - 2);
        if (length != value.size()) return DK_SML_ERROR_SYSFS;
        const DkSmlReturn parsed = MaxLevelFromLine(*device, std::string_view(line, length + 1), level);
        if (parsed != DK_SML_SUCCESS) return parsed;
        all.level[ip] = level;
    }
    *levels = all;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDpm::GetAllDpmMaxPerfLevel(IDkDevice* device, DkSmlDpmMaxForAll* levels) {
    return GetDieAllDpmMaxPerfLevel(device, 0, levels);
}

// The limit in force ("dpmcount") with the number of levels the clock table
// holds ("showclkrange").
DkSmlReturn DkDpm::GetDieAllDpmMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmMaxForAll* levels) {
    if (levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlDpmForAll limits{};
    DkSmlReturn result = GetDieDpmMaxPerfLevel(device, dieId, &limits);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlDpmInfoForAll info{};
    result = GetDieDpmClockInfo(device, dieId, &info);
    if (result != DK_SML_SUCCESS) return result;
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        levels->maxLevel[ip] = limits.level[ip];
        levels->levelCount[ip] = info.clock[ip].count;
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDpm::SetDpmMaxPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t level) {
    return SetDieDpmMaxPerfLevel(device, 0, ip, level);
}

// The driver counts levels from 1, so level + 1 is written.
DkSmlReturn DkDpm::SetDieDpmMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint32_t level) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    if (device->IsDkk3() && level > c_dkk3TopLevel) return DK_SML_ERROR_INVALID_INPUT;
    const uint32_t count = LevelCountOf(SetDpmTableOf(*device), ip);
    if (count == 0 || level >= count) return DK_SML_ERROR_INVALID_INPUT;
    return device->SetDriverData(dieId, DRAVIK_SMI_DPMCOUNT, DomainLine(DpmIpName(ip), level + 1));
}

DkSmlReturn DkDpm::SetK3XcoreMaxPerfLevel(IDkDevice* device, uint32_t level) {
    return SetK3DieXcoreMaxPerfLevel(device, 0, level);
}

DkSmlReturn DkDpm::SetK3DieXcoreMaxPerfLevel(IDkDevice* device, unsigned int dieId, uint32_t level) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (!device->IsDkk3()) return DK_SML_ERROR_NOT_SUPPORTED;
    return SetDieDpmMaxPerfLevel(device, dieId, DK_SML_DPM_IP_XCORE, level);
}

DkSmlReturn DkDpm::GetCurrentDpmIpPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t* level) {
    return GetCurrentDieDpmIpPerfLevel(device, 0, ip, level);
}

DkSmlReturn DkDpm::GetCurrentDieDpmIpPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip,
                                               uint32_t* level) {
    if (device == nullptr || level == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    const std::string_view name = DpmIpName(ip);
    if (name.empty()) return DK_SML_ERROR_INVALID_INPUT;
    std::string* text = nullptr;
    const DkSmlReturn result = FetchDpmText(*device, dieId, DRAVIK_SMI_SHOWPERFLEVEL, text);
    if (result != DK_SML_SUCCESS) return result;
    return CurrentLevelInText(*text, name, *level);
}

DkSmlReturn DkDpm::GetDpmCurPerfLevel(IDkDevice* device, DkSmlDpmForAll* levels) {
    return GetDieDpmCurPerfLevel(device, 0, levels);
}

DkSmlReturn DkDpm::GetDieDpmCurPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmForAll* levels) {
    if (device == nullptr || levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlDpmPerfLevel rows[DK_SML_DPM_IP_COUNT];
    const DkSmlReturn result = ReadAllDomainRows(*device, dieId, DRAVIK_SMI_SHOWPERFLEVEL, "", rows);
    if (result != DK_SML_SUCCESS) return result;
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip)
        levels->level[ip] = rows[ip].count == 1 ? rows[ip].values[0] : DK_SML_DPM_LEVEL_NONE;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDpm::SetDpmPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t level) {
    return SetDieDpmPerfLevel(device, 0, ip, level);
}

// Unlike the maximum-level write, the current level is written as it is:
// "setperflevel" counts from 0.
DkSmlReturn DkDpm::SetDieDpmPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint32_t level) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkDpmIpTable* table = nullptr;
    switch (device->GetDeviceBrand()) {
        case DK_SML_BRAND_DKK:
        case DK_SML_BRAND_DKK_X: table = &SetDpmTableOf(*device); break;
        case DK_SML_BRAND_DKQ: table = &c_setDkqDpmIpMap; break;
        default: return DK_SML_ERROR_NOT_SUPPORTED;
    }
    const uint32_t count = LevelCountOf(*table, ip);
    if (count == 0 || level >= count) return DK_SML_ERROR_INVALID_INPUT;
    return device->SetDriverData(dieId, DRAVIK_SMI_SETPERFLEVEL, DomainLine(DpmIpName(ip), level));
}

DkSmlReturn DkDpm::SetDpmPerfLevelRotation(IDkDevice* device, DkSmlDpmIp ip) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    const uint32_t steps = DpmIpName(ip) == "npu" ? c_npuRotationLevels : c_rotationLevels;
    for (uint32_t level = 0; level < steps; ++level) (void)SetDpmPerfLevel(device, ip, level);
    return DK_SML_SUCCESS;
}

}  // namespace dksml
