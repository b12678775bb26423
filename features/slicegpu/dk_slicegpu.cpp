#include "features/slicegpu/dk_slicegpu.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkSliceGpu::ShowSgpuToggle(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::SetSgpuToggle(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::CreateSgpu(IDkDevice*, uint32_t, uint32_t, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::RemoveSgpu(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::SetSgpuVramQuota(IDkDevice*, uint32_t, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::SetSgpuComputeQuota(IDkDevice*, uint32_t, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::SetSgpuDeviceQueuePriority(IDkDevice*, uint32_t, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetAvailableQuota(IDkDevice*, DkSmlSgpuAvailableQuota*) { return DK_SML_ERROR_NOT_SUPPORTED; }
uint32_t DkSliceGpu::GetSgpuCount(IDkDevice*) { return 0; }
DkSmlReturn DkSliceGpu::GetSgpuGpuId(IDkDevice*, uint32_t, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetSgpuInfo(IDkDevice*, uint32_t, DkSmlSgpuInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetSgpuState(IDkDevice*, uint32_t, int32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetSgpuUtilization(IDkDevice*, uint32_t, int32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetSgpuMemory(IDkDevice*, uint32_t, DkSmlSgpuMemoryInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetTimeslice(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::SetTimeslice(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetSchedClass(IDkDevice*, DkSmlSchedClass*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::SetSchedClass(IDkDevice*, DkSmlSchedClass) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetSgpuAlias(IDkDevice*, uint32_t, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::SetSgpuAlias(IDkDevice*, uint32_t, const char*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetAnnotationsId(IDkDevice*, uint32_t, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkSliceGpu::GetSchedulingLatency(IDkDevice*, uint32_t, int32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
