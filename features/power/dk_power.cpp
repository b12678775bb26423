// PMBus readings, per-way board readings and the board power limit.
#include "features/power/dk_power.h"

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "core/dk_system_manager.h"
#include "core/idk_device.h"
#include "driver/dk_key_value_scan.h"
#include "features/power/dk_power_tables.h"

namespace dksml {
namespace {

// Brands whose driver lists the board readings way by way; the others list
// them quantity by quantity.
bool ListsBoardReadingsByWay(DkSmlDeviceBrand brand) {
    return brand == DK_SML_BRAND_DKK || brand == DK_SML_BRAND_DKK_X;
}

DkSmlReturn ReadBoardList(IDkDevice& device, std::vector<unsigned int>& values) {
    std::string& text = ScratchText();
    const DkSmlReturn result = device.FetchDriverData(0, DRAVIK_SMI_SHOWBOARDPOWERINFO, text);
    if (result != DK_SML_SUCCESS) return result;
    return ParseValueAfterColon(text, values);
}

// The first value of each unit in one PMBus attribute; found[u] stays false
// when no key carries unit u.
struct DkPmbusFileValues {
    uint32_t value[c_pmbusUnitCount] = {};
    bool found[c_pmbusUnitCount] = {};
};

DkSmlReturn ParsePmbusText(std::string_view text, DkPmbusFileValues& values) {
    return ScanKeyValueLines(text, [&](std::string_view key, std::string_view numbers) {
        const DkPmbusFragment* entry = FindPmbusFragment(key);
        if (entry == nullptr) return;
        const auto unit = static_cast<uint32_t>(entry->unit);
        if (unit >= c_pmbusUnitCount || values.found[unit]) return;
        int64_t number = 0;
        ExtractNumber(numbers, number);
        values.value[unit] = static_cast<uint32_t>(number);
        values.found[unit] = true;
    });
}

}  // namespace

DkSmlReturn DkPower::ReadPmbusValue(IDkDevice* device, unsigned int dieId, dravik_smi_opcode op, DkSmlPmbusUnit unit,
                                    uint32_t& value) {
    std::string& text = ScratchText();
    DkSmlReturn result = device->FetchDriverData(dieId, op, text);
    if (result != DK_SML_SUCCESS) return result;
    DkPmbusFileValues values;
    result = ParsePmbusText(text, values);
    if (result != DK_SML_SUCCESS) return result;
    const auto index = static_cast<uint32_t>(unit);  // any value may come through the interface
    if (index >= c_pmbusUnitCount || !values.found[index]) return DK_SML_ERROR_NOT_SUPPORTED;
    value = values.value[index];
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPower::GetDiePmbusInfo(IDkDevice* device, unsigned int dieId, DkSmlPmbusUnit unit,
                                     DkSmlPmbusInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlReturn result = ReadPmbusValue(device, dieId, DRAVIK_SMI_SHOWPMBUSVOL, unit, info->voltage);
    if (result != DK_SML_SUCCESS) return result;
    result = ReadPmbusValue(device, dieId, DRAVIK_SMI_SHOWPMBUSCUR, unit, info->current);
    if (result != DK_SML_SUCCESS) return result;
    return ReadPmbusValue(device, dieId, DRAVIK_SMI_SHOWPMBUSPOWER, unit, info->power);
}

DkSmlReturn DkPower::GetDiePmbusRails(IDkDevice* device, unsigned int dieId, DkDiePmbusRails* rails) {
    if (device == nullptr || rails == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    for (uint32_t unit = 0; unit < c_pmbusUnitCount; ++unit) {
        rails->status[unit] = DK_SML_SUCCESS;
        rails->info[unit] = DkSmlPmbusInfo{};
    }
    // Voltage, current, power: a rail takes the first failure in this order,
    // as GetDiePmbusInfo stops at it.
    constexpr std::pair<dravik_smi_opcode, uint32_t DkSmlPmbusInfo::*> c_files[] = {
        {DRAVIK_SMI_SHOWPMBUSVOL, &DkSmlPmbusInfo::voltage},
        {DRAVIK_SMI_SHOWPMBUSCUR, &DkSmlPmbusInfo::current},
        {DRAVIK_SMI_SHOWPMBUSPOWER, &DkSmlPmbusInfo::power}};
    for (const auto& [op, member] : c_files) {
        std::string& text = ScratchText();
        DkPmbusFileValues values;
        DkSmlReturn result = device->FetchDriverData(dieId, op, text);
        if (result == DK_SML_SUCCESS) result = ParsePmbusText(text, values);
        for (uint32_t unit = 0; unit < c_pmbusUnitCount; ++unit) {
            if (rails->status[unit] != DK_SML_SUCCESS) continue;
            if (result != DK_SML_SUCCESS) rails->status[unit] = result;
            else if (!values.found[unit]) rails->status[unit] = DK_SML_ERROR_NOT_SUPPORTED;
            else rails->info[unit].*member = values.value[unit];
        }
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPower::GetPmbusInfo(IDkDevice* device, DkSmlPmbusUnit unit, DkSmlPmbusInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 0; die < dieCount; ++die) {
        const DkSmlReturn result = GetDiePmbusInfo(device, die, unit, info);
        if (result != DK_SML_ERROR_NOT_SUPPORTED) return result;
    }
    return DK_SML_ERROR_NOT_SUPPORTED;
}

DkSmlReturn DkPower::GetBoardElectricInfo(IDkDevice* device, uint32_t* count, DkSmlBoardWayElectricInfo* ways) {
    if (device == nullptr || count == nullptr || ways == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    // Reused between calls so that a reading costs no allocation once warm.
    thread_local std::vector<unsigned int> values;
    values.clear();
    DkSmlReturn result = ReadBoardList(*device, values);
    if (result != DK_SML_SUCCESS) return result;
    if (values.empty() && device->IsDkk6()) {
        result = GetMasterDieBoardElectricInfo(device, values);
        if (result != DK_SML_SUCCESS) return result;
    }
    if (values.empty()) return DK_SML_ERROR_NOT_SUPPORTED;

    const auto n = static_cast<uint32_t>(values.size() / 3);
    if (*count < n) {
        *count = n;
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }
    *count = n;
    const bool byWay = ListsBoardReadingsByWay(device->GetDeviceBrand());
    for (uint32_t i = 0; i < n; ++i) {
        for (uint32_t q = 0; q < 3; ++q) ways[i].values[q] = byWay ? values[3 * i + q] : values[q * n + i];
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPower::GetMasterDieBoardElectricInfo(IDkDevice* device, std::vector<unsigned int>& values) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSystemManager& manager = DkSystemManager::GetInstance();
    DkBoardInfo board{};
    if (manager.GetDeviceBoardInfo(device->GetDeviceId(), &board) != DK_SML_SUCCESS) {
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    for (uint32_t i = 0; i < board.deviceCount; ++i) {
        if (board.deviceIds[i] == device->GetDeviceId()) continue;
        std::shared_ptr<IDkDevice> other = manager.GetDeviceById(board.deviceIds[i]);
        if (!other) continue;
        values.clear();
        if (ReadBoardList(*other, values) == DK_SML_SUCCESS && !values.empty()) return DK_SML_SUCCESS;
    }
    values.clear();
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPower::GetBoardPowerLimitInfo(IDkDevice* device, DkSmlBoardPowerLimitInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    std::string& text = ScratchText();
    const DkSmlReturn result = device->FetchDriverData(0, DRAVIK_SMI_CONFIG_TBP, text);
    if (result != DK_SML_SUCCESS) return result;
    if (text.empty()) return DK_SML_ERROR_SYSFS;
    std::size_t pos = 0;
    uint32_t read = 0;
    for (uint32_t& field : info->values) {
        unsigned int value = 0;
        if (detail::Scan<unsigned int>(text, pos, value) != detail::ScanStatus::Ok) break;
        field = value;
        ++read;
    }
    // Text without even the limit is as good as empty.
    return read == 0 ? DK_SML_ERROR_SYSFS : DK_SML_SUCCESS;
}

DkSmlReturn DkPower::SetBoardPowerLimit(IDkDevice* device, uint32_t limit) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    char text[16];
    std::snprintf(text, sizeof text, "%u", limit);
    return device->SetDriverData(0, DRAVIK_SMI_CONFIG_TBP, text);
}

// "config_tbp" is in watts; "capability" in milliwatts.
DkSmlReturn DkPower::GetBoardPowerLimit_v2(IDkDevice* device, uint32_t* limit) {
    DkSmlBoardPowerLimitInfo info{};
    const DkSmlReturn result = GetBoardPowerLimitInfo(device, &info);
    if (result != DK_SML_SUCCESS) return result;
    if (info.values[0] > UINT32_MAX / 1000) return DK_SML_ERROR_SYSFS;  // no board draws 4 MW
    *limit = info.values[0] * 1000;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPower::GetBoardPowerLimit(IDkDevice* device, uint32_t* limit) {
    if (device == nullptr || limit == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsDkk6Series()) return GetBoardPowerLimit_v2(device, limit);
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    std::string& text = ScratchText();
    const DkSmlReturn result = device->FetchDriverData(0, DRAVIK_SMI_CAPABILITY, text);
    if (result != DK_SML_SUCCESS) return result;
    DkTextLines lines(text);
    return ReadStringStream<unsigned int>(lines, &ProcessValueByColon<unsigned int>, limit);
}

}  // namespace dksml
