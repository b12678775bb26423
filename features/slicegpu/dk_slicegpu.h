// Slice-GPU partitions: the slice-mode switch, creating and removing slices,
// their quotas, alias and scheduling parameters, and their identity, state,
// utilisation and memory. Every operation takes the physical device.
#pragma once

#include <cstdint>
#include <string>

#include "dksml.h"
#include "driver/dk_opcode.h"

namespace dksml {

class IDkDevice;

class DkSliceGpu {
public:
    virtual ~DkSliceGpu() = default;

    virtual DkSmlReturn ShowSgpuToggle(IDkDevice* device, uint32_t* on);
    virtual DkSmlReturn SetSgpuToggle(IDkDevice* device, uint32_t on);
    virtual DkSmlReturn CreateSgpu(IDkDevice* device, uint32_t vramQuota, uint32_t computeQuota, uint32_t* sgpuId);
    virtual DkSmlReturn RemoveSgpu(IDkDevice* device, uint32_t sgpuId);
    virtual DkSmlReturn SetSgpuVramQuota(IDkDevice* device, uint32_t sgpuId, uint32_t quota);
    virtual DkSmlReturn SetSgpuComputeQuota(IDkDevice* device, uint32_t sgpuId, uint32_t quota);
    virtual DkSmlReturn SetSgpuDeviceQueuePriority(IDkDevice* device, uint32_t sgpuId, uint32_t priority);
    virtual DkSmlReturn GetAvailableQuota(IDkDevice* device, DkSmlSgpuAvailableQuota* quota);
    // A count, not a status: 0 when nothing can be read.
    virtual uint32_t GetSgpuCount(IDkDevice* device);
    virtual DkSmlReturn GetSgpuGpuId(IDkDevice* device, uint32_t sgpuId, uint32_t* gpuId);
    virtual DkSmlReturn GetSgpuInfo(IDkDevice* device, uint32_t sgpuId, DkSmlSgpuInfo* info);
    virtual DkSmlReturn GetSgpuState(IDkDevice* device, uint32_t sgpuId, int32_t* state);
    virtual DkSmlReturn GetSgpuUtilization(IDkDevice* device, uint32_t sgpuId, int32_t* usage);
    virtual DkSmlReturn GetSgpuMemory(IDkDevice* device, uint32_t sgpuId, DkSmlSgpuMemoryInfo* memory);
    virtual DkSmlReturn GetTimeslice(IDkDevice* device, uint32_t* timeslice);
    virtual DkSmlReturn SetTimeslice(IDkDevice* device, uint32_t timeslice);
    virtual DkSmlReturn GetSchedClass(IDkDevice* device, DkSmlSchedClass* schedClass);
    virtual DkSmlReturn SetSchedClass(IDkDevice* device, DkSmlSchedClass schedClass);
    virtual DkSmlReturn GetSgpuAlias(IDkDevice* device, uint32_t sgpuId, char* alias, uint32_t* size);
    virtual DkSmlReturn SetSgpuAlias(IDkDevice* device, uint32_t sgpuId, const char* alias);
    virtual DkSmlReturn GetAnnotationsId(IDkDevice* device, uint32_t sgpuId, char* id, uint32_t* size);
    virtual DkSmlReturn GetSchedulingLatency(IDkDevice* device, uint32_t sgpuId, int32_t* values, uint32_t* count);

    // The id the driver gives the next slice: the lowest id without an
    // "sgpu<id>" directory (0 when the directory cannot be listed).
    uint32_t GetExpectedSgpuId(IDkDevice* device);

protected:
    // Called after "create" was written and before the new slice's quota is
    // set: the driver has made the slice directory by then. Tests that run
    // on a static tree override it to play the driver's part.
    virtual void AfterCreateWritten(IDkDevice* /*device*/, uint32_t /*sgpuId*/) {}

private:
    // DK_SML_SUCCESS in slice mode, DK_SML_ERROR_NOT_SUPPORTED in native mode,
    // the read failure otherwise.
    DkSmlReturn CheckSgpuMode(IDkDevice* device);
    // Writes one decimal to a request once the device is in slice mode.
    DkSmlReturn WriteChecked(IDkDevice* device, dravik_smi_opcode op, uint32_t value);
    DkSmlReturn WriteSliceChecked(IDkDevice* device, uint32_t sgpuId, dravik_smi_opcode op, uint32_t value);
};

}  // namespace dksml
