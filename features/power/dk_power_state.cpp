// PCI power state, power mode and per-IP power states.
#include <cstdio>
#include <string>

#include "core/idk_device.h"
#include "driver/dk_key_value_scan.h"
#include "features/power/dk_power.h"
#include "features/power/dk_power_tables.h"

namespace dksml {
namespace {

DkSmlReturn ReadValueAfterColon(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, uint32_t* value) {
    std::string& text = ScratchText();
    const DkSmlReturn result = device.FetchDriverData(dieId, op, text);
    if (result != DK_SML_SUCCESS) return result;
    DkTextLines lines(text);
    return ReadStringStream<unsigned int>(lines, &ProcessValueByColon<unsigned int>, value);
}

}  // namespace

DkSmlReturn DkPower::GetPciPowerState(IDkDevice* device, DkSmlPciPowerState* state) {
    if (device == nullptr || state == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    std::string& text = ScratchText();
    const DkSmlReturn result = device->FetchDriverData(0, DRAVIK_SMI_PCIPOWERSTATE, text);
    if (result != DK_SML_SUCCESS) return result;
    DkTextLines lines(text);
    std::string_view line;
    if (!lines.Next(line)) return DK_SML_ERROR_SYSFS;
    const std::string_view name = TrimView(ExtractValueStrByColon(line), " \t");
    for (const DkPciPowerStateName& entry : c_pciPowerStateMap) {
        if (entry.name != name) continue;
        *state = entry.state;
        return DK_SML_SUCCESS;
    }
    return DK_SML_ERROR_FAILURE;
}

// A virtual function has no power control of its own: it runs in its
// parent's mode.
DkSmlReturn DkPower::GetDiePowerMode(IDkDevice* device, unsigned int dieId, uint32_t* mode) {
    if (device == nullptr || mode == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    IDkDevice* source = device->IsVf() ? device->GetPfAncestor() : device;
    if (source == nullptr) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadValueAfterColon(*source, dieId, DRAVIK_SMI_POW_PERSIST_CTRL, mode);
}

DkSmlReturn DkPower::GetPowerMode(IDkDevice* device, uint32_t* mode) {
    if (device == nullptr || mode == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    uint32_t deviceMode = 1;
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 0; die < dieCount; ++die) {
        uint32_t dieMode = 0;
        const DkSmlReturn result = GetDiePowerMode(device, die, &dieMode);
        if (result != DK_SML_SUCCESS) return result;
        if (dieMode == 0) deviceMode = 0;
    }
    *mode = deviceMode;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPower::SetDiePowerMode(IDkDevice* device, unsigned int dieId, uint32_t mode) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    char text[16];
    std::snprintf(text, sizeof text, "%u", mode);
    return device->SetDriverData(dieId, DRAVIK_SMI_POW_PERSIST_CTRL, text);
}

// Every die is written even after a failure; the last failure is reported.
DkSmlReturn DkPower::SetPowerMode(IDkDevice* device, uint32_t mode) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn last = DK_SML_SUCCESS;
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 0; die < dieCount; ++die) {
        const DkSmlReturn result = SetDiePowerMode(device, die, mode);
        if (result != DK_SML_SUCCESS) last = result;
    }
    return last;
}

DkSmlReturn DkPower::GetArraySize(IDkDevice* device, DkSmlDpmIp ip, uint32_t* count) {
    const uint32_t needed = IpInstanceCount(*device, ip);
    if (needed == 0) return DK_SML_ERROR_NOT_SUPPORTED;
    if (*count < needed) {
        *count = needed;
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }
    *count = needed;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPower::GetPowerState(IDkDevice* device, DkSmlDpmIp ip, int32_t* states, uint32_t* count) {
    return GetDiePowerState(device, 0, ip, states, count);
}

DkSmlReturn DkPower::GetDiePowerState(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, int32_t* states,
                                      uint32_t* count) {
    if (device == nullptr || states == nullptr || count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (static_cast<uint32_t>(ip) >= DK_SML_DPM_IP_COUNT) return DK_SML_ERROR_INVALID_INPUT;
    std::string& text = ScratchText();
    DkSmlReturn result = device->FetchDriverData(dieId, DRAVIK_SMI_IPPOWERSTATE, text);
    if (result != DK_SML_SUCCESS) return result;
    uint32_t instances = *count;
    result = GetArraySize(device, ip, &instances);
    if (result != DK_SML_SUCCESS) {
        if (result == DK_SML_ERROR_INSUFFICIENT_SIZE) *count = instances;
        return result;
    }
    // The IP's mask is on its own line, lines in IP order.
    DkTextLines lines(text);
    std::string_view line;
    for (uint32_t i = 0; i <= static_cast<uint32_t>(ip); ++i) {
        if (!lines.Next(line)) return DK_SML_ERROR_SYSFS;
    }
    // Parsed into a local array first: nothing reaches the caller unless the
    // whole mask was read.
    int bits[32];
    try {
        GetBitState(ExtractValueStrByColon(line), bits, instances);
    } catch (DkSmlReturn code) {
        return code;
    }
    for (uint32_t i = 0; i < instances; ++i) states[i] = bits[i];
    *count = instances;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
