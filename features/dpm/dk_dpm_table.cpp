// The DPM tables: clock ("showclkrange") and voltage ("dpmctl") of every
// level, time spent at each level ("dpmusage"), the size of the table
// ("dpmfeature") and the table editor ("dpm_table_ctrl": current and backup
// copies, hidden levels, algorithm parameters). Layouts: include/dksml.h.
#include <string>

#include "core/idk_device.h"
#include "features/dpm/dk_dpm.h"
#include "features/dpm/dk_dpm_layout.h"
#include "features/dpm/dk_dpm_read.h"

namespace dksml {
namespace {

// Row suffixes of "dpm_table_ctrl" ("xcore clock: ...", "xcore hide: 5").
constexpr std::string_view c_tableClock = " clock";
constexpr std::string_view c_tableVdd = " vdd";
constexpr std::string_view c_tableBackupClock = " backup clock";
constexpr std::string_view c_tableBackupVdd = " backup vdd";
constexpr std::string_view c_tableHide = " hide";
constexpr std::string_view c_tableParam = " param";
// Commands written to "dpm_table_ctrl" and "dpmusage".
constexpr std::string_view c_backupCommand = "backup";
constexpr std::string_view c_hideCommand = "hide";
constexpr std::string_view c_setCommand = "set";
constexpr std::string_view c_clearCommand = "clear";

bool Refused(IDkDevice* device) { return device->IsVf(); }

std::string Words(std::initializer_list<std::string_view> words) {
    std::string line;
    for (std::string_view word : words) {
        if (!line.empty()) line += ' ';
        line += word;
    }
    return line;
}

// Label "name" + suffix, the row read as one domain's levels.
DkSmlReturn ReadSuffixedRow(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, DkSmlDpmIp ip,
                            std::string_view suffix, DkSmlDpmPerfLevel& levels) {
    const std::string_view name = DpmIpName(ip);
    if (name.empty()) return DK_SML_ERROR_INVALID_INPUT;
    std::string label(name);
    label += suffix;
    return ReadDomainRow(device, dieId, op, label, levels);
}

DkSmlReturn ReadClockAndVdd(IDkDevice* device, unsigned int dieId, dravik_smi_opcode op, std::string_view clock,
                            std::string_view vdd, DkSmlDpmInfoForAll* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlReturn result = ReadAllDomainRows(*device, dieId, op, clock, info->clock);
    if (result != DK_SML_SUCCESS) return result;
    return ReadAllDomainRows(*device, dieId, op, vdd, info->voltage);
}

}  // namespace

DkSmlReturn DkDpm::GetDpmClockInfo(IDkDevice* device, DkSmlDpmInfoForAll* info) {
    return GetDieDpmClockInfo(device, 0, info);
}

DkSmlReturn DkDpm::GetDieDpmClockInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmInfoForAll* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadAllDomainRows(*device, dieId, DRAVIK_SMI_SHOWCLKRANGE, "", info->clock);
}

DkSmlReturn DkDpm::GetDpmIpClockInfo(IDkDevice* device, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels) {
    return GetDieDpmIpClockInfo(device, 0, ip, levels);
}

DkSmlReturn DkDpm::GetDieDpmIpClockInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip,
                                        DkSmlDpmPerfLevel* levels) {
    if (device == nullptr || levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadSuffixedRow(*device, dieId, DRAVIK_SMI_SHOWCLKRANGE, ip, "", *levels);
}

DkSmlReturn DkDpm::GetDpmVddInfo(IDkDevice* device, DkSmlDpmInfoForAll* info) {
    return GetDieDpmVddInfo(device, 0, info);
}

DkSmlReturn DkDpm::GetDieDpmVddInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmInfoForAll* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadAllDomainRows(*device, dieId, DRAVIK_SMI_DPMCTL, "", info->voltage);
}

DkSmlReturn DkDpm::GetDpmIpVddInfo(IDkDevice* device, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels) {
    return GetDieDpmIpVddInfo(device, 0, ip, levels);
}

DkSmlReturn DkDpm::GetDieDpmIpVddInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip,
                                      DkSmlDpmPerfLevel* levels) {
    if (device == nullptr || levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadSuffixedRow(*device, dieId, DRAVIK_SMI_DPMCTL, ip, "", *levels);
}

DkSmlReturn DkDpm::GetDpmCounter(IDkDevice* device, DkSmlDpmCounterForAll* counters) {
    return GetDieDpmCounter(device, 0, counters);
}

DkSmlReturn DkDpm::GetDieDpmCounter(IDkDevice* device, unsigned int dieId, DkSmlDpmCounterForAll* counters) {
    if (device == nullptr || counters == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    std::string* text = nullptr;
    const DkSmlReturn result = FetchDpmText(*device, dieId, DRAVIK_SMI_DPMUSAGE, text);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlDpmCounterForAll all{};
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        std::string_view value;
        if (!FindLabelledRow(*text, c_dpmIpNameMap[ip], value)) continue;
        uint32_t count = 0;
        const DkSmlReturn parsed = ParseLevelValues(value, all.counter[ip], DK_SML_DPM_MAX_LEVELS, count);
        if (parsed != DK_SML_SUCCESS) return parsed;
    }
    *counters = all;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDpm::ClearDpmCounter(IDkDevice* device) { return ClearDieDpmCounter(device, 0); }

DkSmlReturn DkDpm::ClearDieDpmCounter(IDkDevice* device, unsigned int dieId) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return device->SetDriverData(dieId, DRAVIK_SMI_DPMUSAGE, std::string(c_clearCommand));
}

// "dpmfeature" holds the number of levels the table of each domain enables.
DkSmlReturn DkDpm::GetDpmMaxLevel(IDkDevice* device, DkSmlDpmMaxForAll* levels) {
    if (device == nullptr || levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlDpmPerfLevel rows[DK_SML_DPM_IP_COUNT];
    const DkSmlReturn result = ReadAllDomainRows(*device, 0, DRAVIK_SMI_DPMFEATURE, "", rows);
    if (result != DK_SML_SUCCESS) return result;
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        const bool listed = rows[ip].count == 1 && rows[ip].values[0] > 0;
        if (rows[ip].count > 1) return DK_SML_ERROR_SYSFS;
        levels->levelCount[ip] = listed ? rows[ip].values[0] : 0;
        levels->maxLevel[ip] = listed ? rows[ip].values[0] - 1 : DK_SML_DPM_LEVEL_NONE;
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDpm::SetDpmMaxLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t level) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    const std::string_view name = DpmIpName(ip);
    if (name.empty() || level >= DK_SML_DPM_MAX_LEVELS) return DK_SML_ERROR_INVALID_INPUT;
    return device->SetDriverData(0, DRAVIK_SMI_DPMFEATURE, Words({name, std::to_string(level + 1)}));
}

DkSmlReturn DkDpm::GetDpmBackup(IDkDevice* device, DkSmlDpmInfoForAll* info) {
    return ReadClockAndVdd(device, 0, DRAVIK_SMI_DPM_TABLE_CTRL, c_tableBackupClock, c_tableBackupVdd, info);
}

DkSmlReturn DkDpm::SetDpmBackup(IDkDevice* device) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return device->SetDriverData(0, DRAVIK_SMI_DPM_TABLE_CTRL, std::string(c_backupCommand));
}

DkSmlReturn DkDpm::GetDpmCurrent(IDkDevice* device, DkSmlDpmInfoForAll* info) {
    return ReadClockAndVdd(device, 0, DRAVIK_SMI_DPM_TABLE_CTRL, c_tableClock, c_tableVdd, info);
}

DkSmlReturn DkDpm::GetDpmHide(IDkDevice* device, DkSmlDpmIp ip, uint32_t* hiddenMask) {
    if (device == nullptr || hiddenMask == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlDpmPerfLevel row;
    const DkSmlReturn result = ReadSuffixedRow(*device, 0, DRAVIK_SMI_DPM_TABLE_CTRL, ip, c_tableHide, row);
    if (result != DK_SML_SUCCESS) return result;
    if (row.count != 1) return DK_SML_ERROR_SYSFS;
    *hiddenMask = row.values[0];
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDpm::SetDpmHide(IDkDevice* device, DkSmlDpmIp ip, uint32_t hiddenMask) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    const std::string_view name = DpmIpName(ip);
    if (name.empty() || (hiddenMask >> DK_SML_DPM_MAX_LEVELS) != 0) return DK_SML_ERROR_INVALID_INPUT;
    return device->SetDriverData(0, DRAVIK_SMI_DPM_TABLE_CTRL,
                                 Words({c_hideCommand, name, std::to_string(hiddenMask)}));
}

DkSmlReturn DkDpm::SetDpmInfo(IDkDevice* device, DkSmlDpmIp ip, uint32_t level, uint32_t clock) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    const std::string_view name = DpmIpName(ip);
    if (name.empty() || level >= DK_SML_DPM_MAX_LEVELS) return DK_SML_ERROR_INVALID_INPUT;
    return device->SetDriverData(0, DRAVIK_SMI_DPM_TABLE_CTRL,
                                 Words({c_setCommand, name, std::to_string(level), std::to_string(clock)}));
}

DkSmlReturn DkDpm::GetDpmParam(IDkDevice* device, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels) {
    if (device == nullptr || levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadSuffixedRow(*device, 0, DRAVIK_SMI_DPM_TABLE_CTRL, ip, c_tableParam, *levels);
}

}  // namespace dksml
