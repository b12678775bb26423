// 32-bit device registers by address, through the driver's debug files:
// "select_gpu_id" chooses the GPU and die, the device's register-dump access
// does the read or write. The XRBM block holds replicated registers that are
// read instance by instance under a hardware mutex.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "dksml.h"

namespace dksml {

class IDkDevice;

// XRBM: 256 values per address (8 instances x 32 sub-instances).
inline constexpr uint32_t c_xrbmValueCount = 256;
inline constexpr unsigned long c_xrbmMutexRegister = 0x72008;
inline constexpr unsigned long c_xrbmSelectRegister = 0x7200C;

bool IsXrbmAddress(unsigned long address);

class DkRegister {
public:
    // Driver GPU id of a device index (bus id, then the layout node's id).
    using GpuIdLookup = std::function<uint32_t(uint32_t deviceIndex)>;

    DkRegister();
    explicit DkRegister(GpuIdLookup lookup);
    virtual ~DkRegister() = default;

    virtual DkSmlReturn GetRegisterData(IDkDevice* device, unsigned long address, unsigned int* values,
                                        uint32_t* count);
    virtual DkSmlReturn GetDieRegisterData(IDkDevice* device, unsigned int dieId, unsigned long address,
                                           unsigned int* values, uint32_t* count);
    virtual DkSmlReturn GetSerialRegisterData(IDkDevice* device, unsigned long address, unsigned int* values,
                                              uint32_t count);
    virtual DkSmlReturn GetDieSerialRegisterData(IDkDevice* device, unsigned int dieId, unsigned long address,
                                                 unsigned int* values, uint32_t count);
    virtual DkSmlReturn SetRegisterData(IDkDevice* device, unsigned long address, unsigned int value);
    virtual DkSmlReturn SetDieRegisterData(IDkDevice* device, unsigned int dieId, unsigned long address,
                                           unsigned int value);
    virtual DkSmlReturn GetDeviceEthStatus(IDkDevice* device, uint32_t* status);

    // Points the driver's register access at one GPU and die.
    DkSmlReturn SelectGpuId(IDkDevice& device, unsigned int dieId);

private:
    DkSmlReturn LockXrbm(IDkDevice& device, unsigned int dieId);
    DkSmlReturn ReadXrbmBlock(IDkDevice& device, unsigned int dieId, unsigned long address, unsigned int* values);

    GpuIdLookup m_lookup;
};

}  // namespace dksml
