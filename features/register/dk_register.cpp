#include "features/register/dk_register.h"

#include <string>

#include "core/dk_system_manager.h"
#include "core/idk_device.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

struct DkAddressRange {
    unsigned long first;
    unsigned long last;  // inclusive
};

// Each XRBM window but the last ends 0x24 short of the next 1 KiB boundary.
constexpr DkAddressRange c_xrbmRanges[] = {
    {0x60000, 0x603DB}, {0x60400, 0x607DB}, {0x60800, 0x60BDB}, {0x60C00, 0x60FDB},
    {0x61000, 0x613DB}, {0x61400, 0x617DB}, {0x61800, 0x61BDB}, {0x61C00, 0x61FDB},
    {0x62000, 0x623DB}, {0x62400, 0x627DB}, {0x62800, 0x62BFF},
};

constexpr uint32_t c_xrbmInstances = 8;
constexpr uint32_t c_xrbmSubInstances = 32;
constexpr int c_mutexTries = 10;
constexpr unsigned int c_mutexHeldBit = 0x80000000u;
constexpr unsigned int c_xrbmBroadcast = 0x8080;
constexpr uint32_t c_firstVirtualIndex = 100;
constexpr unsigned long c_ethStatusRegister = 0x7800200;
constexpr unsigned int c_ethStatusShift = 16;

uint32_t SystemGpuId(uint32_t deviceIndex) {
    DkSystemManager& manager = DkSystemManager::GetInstance();
    return manager.GetGpuIdByBdfId(manager.GetBdfIdByDeviceId(deviceIndex));
}

}  // namespace

bool IsXrbmAddress(unsigned long address) {
    for (const DkAddressRange& range : c_xrbmRanges)
        if (address >= range.first && address <= range.last) return true;
    return false;
}

DkRegister::DkRegister() : DkRegister(SystemGpuId) {}

DkRegister::DkRegister(GpuIdLookup lookup) : m_lookup(std::move(lookup)) {}

// One write of the whole line through the device's handler; the driver takes
// the selection from it. Any failure means the debug file refused us.
DkSmlReturn DkRegister::SelectGpuId(IDkDevice& device, unsigned int dieId) {
    const uint32_t deviceIndex = device.GetDeviceId();
    if (deviceIndex >= c_firstVirtualIndex) return DK_SML_ERROR_NOT_SUPPORTED;
    const uint32_t gpuId = m_lookup ? m_lookup(deviceIndex) : 0;
    const unsigned long selection = (static_cast<unsigned long>(dieId) << 16) | gpuId;
    if (device.SetDriverData(dieId, DRAVIK_SMI_SELECTGPUID, std::to_string(selection)) != DK_SML_SUCCESS)
        return DK_SML_ERROR_PERMISSION;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkRegister::GetRegisterData(IDkDevice* device, unsigned long address, unsigned int* values,
                                        uint32_t* count) {
    return GetDieRegisterData(device, 0, address, values, count);
}

DkSmlReturn DkRegister::GetDieRegisterData(IDkDevice* device, unsigned int dieId, unsigned long address,
                                           unsigned int* values, uint32_t* count) {
    if (device == nullptr || values == nullptr || count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn selected = SelectGpuId(*device, dieId);
    if (selected != DK_SML_SUCCESS) return selected;
    if (!IsXrbmAddress(address)) {
        if (*count == 0) {
            *count = 1;
            return DK_SML_ERROR_INSUFFICIENT_SIZE;
        }
        *count = 1;
        return device->GetRegisterData(dieId, address, values);
    }
    if (*count < c_xrbmValueCount) {
        *count = c_xrbmValueCount;
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }
    return ReadXrbmBlock(*device, dieId, address, values);
}

// Bit 31 of the mutex register is set while another agent holds it.
DkSmlReturn DkRegister::LockXrbm(IDkDevice& device, unsigned int dieId) {
    for (int attempt = 0; attempt < c_mutexTries; ++attempt) {
        unsigned int value = 0;
        const DkSmlReturn result = device.GetRegisterData(dieId, c_xrbmMutexRegister, &value);
        if (result != DK_SML_SUCCESS) return result;
        if ((value & c_mutexHeldBit) == 0) return DK_SML_SUCCESS;
    }
    return DK_SML_ERROR_FAILURE;
}

// The select register is shared with other agents, so it is restored after
// every sub-instance. An error leaves the mutex held, as the driver expects
// its own recovery to clear it.
DkSmlReturn DkRegister::ReadXrbmBlock(IDkDevice& device, unsigned int dieId, unsigned long address,
                                      unsigned int* values) {
    DkSmlReturn result = LockXrbm(device, dieId);
    if (result != DK_SML_SUCCESS) return result;
    uint32_t next = 0;
    for (uint32_t instance = 0; instance < c_xrbmInstances; ++instance) {
        for (uint32_t sub = 0; sub < c_xrbmSubInstances; ++sub) {
            unsigned int saved = 0;
            result = device.GetRegisterData(dieId, c_xrbmSelectRegister, &saved);
            if (result != DK_SML_SUCCESS) return result;
            const unsigned int select = ((sub << 8) & 0x1F00u) | (instance & 0xFu);
            result = device.SetRegisterData(dieId, c_xrbmSelectRegister, select);
            if (result != DK_SML_SUCCESS) return result;
            result = device.GetRegisterData(dieId, address, &values[next++]);
            if (result != DK_SML_SUCCESS) return result;
            result = device.SetRegisterData(dieId, c_xrbmSelectRegister, saved);
            if (result != DK_SML_SUCCESS) return result;
        }
    }
    return device.SetRegisterData(dieId, c_xrbmMutexRegister, 0);
}

DkSmlReturn DkRegister::GetSerialRegisterData(IDkDevice* device, unsigned long address, unsigned int* values,
                                              uint32_t count) {
    return GetDieSerialRegisterData(device, 0, address, values, count);
}

DkSmlReturn DkRegister::GetDieSerialRegisterData(IDkDevice* device, unsigned int dieId, unsigned long address,
                                                 unsigned int* values, uint32_t count) {
    if (device == nullptr || (values == nullptr && count != 0)) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn selected = SelectGpuId(*device, dieId);
    if (selected != DK_SML_SUCCESS) return selected;
    if (IsXrbmAddress(address)) return DK_SML_ERROR_NOT_SUPPORTED;
    for (uint32_t i = 0; i < count; ++i) {
        const DkSmlReturn result = device->GetRegisterData(dieId, address + 4ul * i, &values[i]);
        if (result != DK_SML_SUCCESS) return result;
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkRegister::SetRegisterData(IDkDevice* device, unsigned long address, unsigned int value) {
    return SetDieRegisterData(device, 0, address, value);
}

// An XRBM write goes to every instance at once (broadcast), which is left
// selected afterwards.
DkSmlReturn DkRegister::SetDieRegisterData(IDkDevice* device, unsigned int dieId, unsigned long address,
                                           unsigned int value) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn selected = SelectGpuId(*device, dieId);
    if (selected != DK_SML_SUCCESS) return selected;
    if (!IsXrbmAddress(address)) return device->SetRegisterData(dieId, address, value);
    DkSmlReturn result = LockXrbm(*device, dieId);
    if (result != DK_SML_SUCCESS) return result;
    result = device->SetRegisterData(dieId, c_xrbmSelectRegister, c_xrbmBroadcast);
    if (result != DK_SML_SUCCESS) return result;
    result = device->SetRegisterData(dieId, address, value);
    if (result != DK_SML_SUCCESS) return result;
    return device->SetRegisterData(dieId, c_xrbmMutexRegister, 0);
}

DkSmlReturn DkRegister::GetDeviceEthStatus(IDkDevice* device, uint32_t* status) {
    if (device == nullptr || status == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (!device->IsDkk6Series()) return DK_SML_ERROR_NOT_SUPPORTED;
    *status = 0;
    unsigned int value = 0;
    uint32_t count = 1;
    const DkSmlReturn result = GetDieRegisterData(device, 0, c_ethStatusRegister, &value, &count);
    if (result == DK_SML_SUCCESS) *status = (value >> c_ethStatusShift) & 1u;
    return result;
}

}  // namespace dksml
