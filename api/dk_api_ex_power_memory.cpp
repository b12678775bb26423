// Compatibility power, utilisation and memory queries.
#include <cstdint>

#include "api/dk_api_ex_frame.h"
#include "dksml.h"
#include "features/power/dk_power.h"
#include "features/utilization/dk_utilization.h"

using namespace dksml;

namespace {

constexpr DkSmlPmbusUnit c_pmbusRails[] = {
    DK_SML_PMBUS_UNIT_SOC,  DK_SML_PMBUS_UNIT_CORE, DK_SML_PMBUS_UNIT_HBM,
    DK_SML_PMBUS_UNIT_PCIE, DK_SML_PMBUS_UNIT_HBM2, DK_SML_PMBUS_UNIT_PCIE2,
};

DkSmlExReturn BoardPowerLimit(IDkDevice* device, uint32_t* limit) {
    return WithExService(&DkServiceManager::GetDkPower, [&](DkPower& power) {
        return ExFromNative(power.GetBoardPowerLimit(device, limit));
    });
}

// Percentage of `part` in `whole`, 0 for an empty whole; a driver that
// reports more used than total reads as 100.
uint32_t Percent(uint64_t part, uint64_t whole) {
    if (whole == 0) return 0;
    if (part >= whole) return 100;
    return static_cast<uint32_t>(static_cast<long double>(part) * 100 / static_cast<long double>(whole));
}

// KiB to bytes, saturating instead of wrapping on a hostile driver value.
uint64_t KibToBytes(uint64_t kib) { return kib > (UINT64_MAX >> 10) ? UINT64_MAX : kib << 10; }

}  // namespace

extern "C" {

// The board draw is the sum of the die's PMBus rails; a rail the board does
// not carry is skipped, and a die without any rail answers
// DK_SML_EX_ERROR_NOT_SUPPORTED.
DKSML_API DkSmlExReturn dkSmlExGetPowerUsage(DkSmlExDevice device, uint32_t* power) {
    if (power == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        return WithExService(&DkServiceManager::GetDkPower, [&](DkPower& service) {
            uint64_t sum = 0;
            bool anyRail = false;
            for (DkSmlPmbusUnit rail : c_pmbusRails) {
                DkSmlPmbusInfo info{};
                const DkSmlReturn result = service.GetDiePmbusInfo(d, die.dieIndex, rail, &info);
                if (result == DK_SML_ERROR_NOT_SUPPORTED) continue;
                if (result != DK_SML_SUCCESS) return ExFromNative(result);
                sum += info.power;
                anyRail = true;
            }
            if (!anyRail) return DK_SML_EX_ERROR_NOT_SUPPORTED;
            *power = sum > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(sum);
            return DK_SML_EX_SUCCESS;
        });
    });
}

DKSML_API DkSmlExReturn dkSmlExGetPowerManagementLimit(DkSmlExDevice device, uint32_t* limit) {
    if (limit == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) { return BoardPowerLimit(d, limit); });
}

// The library sets no limit of its own: the board limit is the one enforced.
DKSML_API DkSmlExReturn dkSmlExDeviceGetEnforcedPowerLimit(DkSmlExDevice device, uint32_t* limit) {
    if (limit == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) { return BoardPowerLimit(d, limit); });
}

// Compute usage of the die and the used share of its device memory.
DKSML_API DkSmlExReturn dkSmlExDeviceGetUtilization(DkSmlExDevice device, DkSmlExUtilization* utilization) {
    if (utilization == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        return WithExService(&DkServiceManager::GetDkUtilization, [&](DkUtilization& service) {
            int32_t usage = 0;
            DkSmlReturn result = service.GetDieUsage(d, die.dieIndex, DK_SML_USAGE_IP_XCORE, &usage);
            if (result != DK_SML_SUCCESS) return ExFromNativeKeepNotSupported(result);
            DkSmlMemoryInfo memory{};
            result = service.GetDieMemoryInfo(d, die.dieIndex, &memory);
            if (result != DK_SML_SUCCESS) return ExFromNativeKeepNotSupported(result);
            utilization->gpu = usage < 0 ? 0 : static_cast<uint32_t>(usage);
            utilization->memory = Percent(memory.pool[0].used, memory.pool[0].total);
            return DK_SML_EX_SUCCESS;
        });
    });
}

// The native record is in KiB; this family reports bytes.
DKSML_API DkSmlExReturn dkSmlExDeviceGetMemoryInfo(DkSmlExDevice device, DkSmlExMemory* memory) {
    if (memory == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        return WithExService(&DkServiceManager::GetDkUtilization, [&](DkUtilization& service) {
            DkSmlMemoryInfo info{};
            const DkSmlReturn result = service.GetDieMemoryInfo(d, die.dieIndex, &info);
            if (result != DK_SML_SUCCESS) return ExFromNativeKeepNotSupported(result);
            const uint64_t total = KibToBytes(info.pool[0].total);
            const uint64_t used = KibToBytes(info.pool[0].used);
            memory->total = total;
            memory->used = used;
            memory->free = total >= used ? total - used : 0;
            return DK_SML_EX_SUCCESS;
        });
    });
}

}  // extern "C"
