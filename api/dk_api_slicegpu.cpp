// Slice-GPU exports: one DkSliceGpu operation each on the physical device.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/slicegpu/dk_slicegpu.h"

using namespace dksml;

namespace {

constexpr auto c_sliceGpu = &DkServiceManager::GetDkSliceGpu;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetSgpuToggle(uint32_t deviceIndex, uint32_t* on) {
    if (AnyNull(on)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu, [&](DkSliceGpu& s, IDkDevice* d) { return s.ShowSgpuToggle(d, on); });
}

DKSML_API DkSmlReturn dkSmlSetSgpuToggle(uint32_t deviceIndex, uint32_t on) {
    return CallService(deviceIndex, c_sliceGpu, [&](DkSliceGpu& s, IDkDevice* d) { return s.SetSgpuToggle(d, on); });
}

DKSML_API DkSmlReturn dkSmlCreateSgpu(uint32_t deviceIndex, uint32_t vramQuota, uint32_t computeQuota,
                                      uint32_t* sgpuId) {
    if (AnyNull(sgpuId)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu, [&](DkSliceGpu& s, IDkDevice* d) {
        return s.CreateSgpu(d, vramQuota, computeQuota, sgpuId);
    });
}

DKSML_API DkSmlReturn dkSmlRemoveSgpu(uint32_t deviceIndex, uint32_t sgpuId) {
    return CallService(deviceIndex, c_sliceGpu, [&](DkSliceGpu& s, IDkDevice* d) { return s.RemoveSgpu(d, sgpuId); });
}

// A count, not a status: an unknown device has no slices.
DKSML_API uint32_t dkSmlGetSgpuCount(uint32_t deviceIndex) {
    uint32_t count = 0;
    (void)CallService(deviceIndex, c_sliceGpu, [&](DkSliceGpu& s, IDkDevice* d) {
        count = s.GetSgpuCount(d);
        return DK_SML_SUCCESS;
    });
    return count;
}

DKSML_API DkSmlReturn dkSmlGetSgpuInfo(uint32_t deviceIndex, uint32_t sgpuId, DkSmlSgpuInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetSgpuInfo(d, sgpuId, info); });
}

DKSML_API DkSmlReturn dkSmlSetSgpuDeviceQueuePriority(uint32_t deviceIndex, uint32_t sgpuId, uint32_t priority) {
    return CallService(deviceIndex, c_sliceGpu, [&](DkSliceGpu& s, IDkDevice* d) {
        return s.SetSgpuDeviceQueuePriority(d, sgpuId, priority);
    });
}

DKSML_API DkSmlReturn dkSmlGetSgpuState(uint32_t deviceIndex, uint32_t sgpuId, int32_t* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetSgpuState(d, sgpuId, state); });
}

DKSML_API DkSmlReturn dkSmlSetSgpuVramQuota(uint32_t deviceIndex, uint32_t sgpuId, uint32_t quota) {
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.SetSgpuVramQuota(d, sgpuId, quota); });
}

DKSML_API DkSmlReturn dkSmlSetSgpuComputeQuota(uint32_t deviceIndex, uint32_t sgpuId, uint32_t quota) {
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.SetSgpuComputeQuota(d, sgpuId, quota); });
}

DKSML_API DkSmlReturn dkSmlGetSgpuAvailableQuota(uint32_t deviceIndex, DkSmlSgpuAvailableQuota* quota) {
    if (AnyNull(quota)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetAvailableQuota(d, quota); });
}

DKSML_API DkSmlReturn dkSmlGetSgpuUsage(uint32_t deviceIndex, uint32_t sgpuId, int32_t* usage) {
    if (AnyNull(usage)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetSgpuUtilization(d, sgpuId, usage); });
}

DKSML_API DkSmlReturn dkSmlGetSgpuMemory(uint32_t deviceIndex, uint32_t sgpuId, DkSmlSgpuMemoryInfo* memory) {
    if (AnyNull(memory)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetSgpuMemory(d, sgpuId, memory); });
}

DKSML_API DkSmlReturn dkSmlGetDeviceTimeslice(uint32_t deviceIndex, uint32_t* timeslice) {
    if (AnyNull(timeslice)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetTimeslice(d, timeslice); });
}

DKSML_API DkSmlReturn dkSmlSetDeviceTimeslice(uint32_t deviceIndex, uint32_t timeslice) {
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.SetTimeslice(d, timeslice); });
}

DKSML_API DkSmlReturn dkSmlGetDeviceSchedClass(uint32_t deviceIndex, DkSmlSchedClass* schedClass) {
    if (AnyNull(schedClass)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetSchedClass(d, schedClass); });
}

DKSML_API DkSmlReturn dkSmlSetDeviceSchedClass(uint32_t deviceIndex, DkSmlSchedClass schedClass) {
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.SetSchedClass(d, schedClass); });
}

DKSML_API DkSmlReturn dkSmlGetSgpuAlias(uint32_t deviceIndex, uint32_t sgpuId, char* alias, uint32_t* size) {
    if (AnyNull(alias, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetSgpuAlias(d, sgpuId, alias, size); });
}

DKSML_API DkSmlReturn dkSmlSetSgpuAlias(uint32_t deviceIndex, uint32_t sgpuId, const char* alias) {
    if (AnyNull(alias)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.SetSgpuAlias(d, sgpuId, alias); });
}

DKSML_API DkSmlReturn dkSmlGetSgpuAnnotationsId(uint32_t deviceIndex, uint32_t sgpuId, char* id, uint32_t* size) {
    if (AnyNull(id, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_sliceGpu,
                       [&](DkSliceGpu& s, IDkDevice* d) { return s.GetAnnotationsId(d, sgpuId, id, size); });
}

}  // extern "C"
