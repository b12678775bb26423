// Process exports: scans of the process-accounting object that discovery
// creates. Until it exists the scans are not available
// (DK_SML_ERROR_NOT_SUPPORTED).
#include <memory>
#include <vector>

#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/process/idk_process_management.h"
#include "features/slicegpu/dk_slicegpu.h"

using namespace dksml;

namespace {

template <typename Body>
DkSmlReturn WithProcesses(Body&& body) noexcept {
    return WithManager([&](DkSystemManager& manager) {
        std::shared_ptr<IDkProcessManagement> processes = manager.GetProcessManagement();
        if (!processes) return DK_SML_ERROR_NOT_SUPPORTED;
        return body(*processes);
    });
}

// The driver's GPU id of a device; 0 when it has none (slice parents, unknown).
uint32_t DriverGpuIdOf(uint32_t deviceIndex) { return DkSystemManager::GetInstance().GetGpuIdByDeviceId(deviceIndex); }

// A slice parent has no GPU id of its own: its processes are those whose
// first GPU entry names the parent, in scan order, up to the capacity.
DkSmlReturn GetSgpuParentProcess(IDkProcessManagement& processes, uint32_t deviceIndex, uint32_t* count,
                                 DkSmlProcessInfo_v3* records) {
    uint32_t total = 0;
    DkSmlReturn result = processes.GetProcessInfo_v3(nullptr, 0, &total, DK_SML_ALL_GPUS, false);
    if (result != DK_SML_SUCCESS) return result;
    std::vector<DkSmlProcessInfo_v3> all(total);
    uint32_t scanned = 0;
    result = processes.GetProcessInfo_v3(all.data(), total, &scanned, DK_SML_ALL_GPUS, false);
    if (result != DK_SML_SUCCESS) return result;
    const uint32_t capacity = *count;
    uint32_t copied = 0;
    for (uint32_t i = 0; i < scanned && i < total && copied < capacity; ++i) {
        if (all[i].gpuCount > 0 && all[i].gpuInfo[0].deviceId == deviceIndex) records[copied++] = all[i];
    }
    *count = copied;
    return DK_SML_SUCCESS;
}

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetNumberOfProcess(uint32_t* count) {
    if (AnyNull(count)) return DK_SML_ERROR_INVALID_INPUT;
    return WithProcesses([&](IDkProcessManagement& p) {
        return p.GetProcessInfo_v3(nullptr, 0, count, DK_SML_ALL_GPUS, false);
    });
}

DKSML_API DkSmlReturn dkSmlGetProcessInfo(uint32_t capacity, DkSmlProcessInfo* infos) {
    if (AnyNull(infos)) return DK_SML_ERROR_INVALID_INPUT;
    uint32_t found = 0;
    return WithProcesses([&](IDkProcessManagement& p) {
        return p.GetProcessInfo(infos, capacity, &found, DK_SML_ALL_GPUS, false);
    });
}

DKSML_API DkSmlReturn dkSmlGetProcessInfo_v2(uint32_t capacity, DkSmlProcessInfo_v2* infos) {
    if (AnyNull(infos)) return DK_SML_ERROR_INVALID_INPUT;
    uint32_t found = 0;
    return WithProcesses([&](IDkProcessManagement& p) {
        return p.GetProcessInfo_v2(infos, capacity, &found, DK_SML_ALL_GPUS, false, false);
    });
}

DKSML_API DkSmlReturn dkSmlGetProcessInfo_v3(uint32_t capacity, DkSmlProcessInfo_v3* infos) {
    if (AnyNull(infos)) return DK_SML_ERROR_INVALID_INPUT;
    uint32_t found = 0;
    return WithProcesses([&](IDkProcessManagement& p) {
        return p.GetProcessInfo_v3(infos, capacity, &found, DK_SML_ALL_GPUS, false);
    });
}

DKSML_API DkSmlReturn dkSmlGetSingleGpuProcess(uint32_t deviceIndex, uint32_t* count, DkSmlProcessInfo* infos) {
    if (AnyNull(count, infos)) return DK_SML_ERROR_INVALID_INPUT;
    const uint32_t gpuId = DriverGpuIdOf(deviceIndex);
    if (gpuId == 0) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    return WithProcesses([&](IDkProcessManagement& p) { return p.GetProcessInfo(infos, *count, count, gpuId, false); });
}

DKSML_API DkSmlReturn dkSmlGetSingleGpuProcess_v2(uint32_t deviceIndex, uint32_t* count,
                                                  DkSmlProcessInfo_v2* infos) {
    if (AnyNull(count, infos)) return DK_SML_ERROR_INVALID_INPUT;
    const uint32_t gpuId = DriverGpuIdOf(deviceIndex);
    if (gpuId == 0) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    return WithProcesses([&](IDkProcessManagement& p) {
        return p.GetProcessInfo_v2(infos, *count, count, gpuId, false, true);
    });
}

DKSML_API DkSmlReturn dkSmlGetSingleGpuProcess_v3(uint32_t deviceIndex, uint32_t* count,
                                                  DkSmlProcessInfo_v3* infos) {
    if (AnyNull(count, infos)) return DK_SML_ERROR_INVALID_INPUT;
    const uint32_t gpuId = DriverGpuIdOf(deviceIndex);
    if (gpuId != 0) {
        return WithProcesses([&](IDkProcessManagement& p) {
            return p.GetProcessInfo_v3(infos, *count, count, gpuId, false);
        });
    }
    // No GPU id of its own: only a parent in slice mode has processes.
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        uint32_t on = 0;
        DkSmlReturn toggle = WithService(DkServiceManager::GetInstance().GetDkSliceGpu(), device,
                                         [&](DkSliceGpu& s, IDkDevice* d) { return s.ShowSgpuToggle(d, &on); });
        if (toggle != DK_SML_SUCCESS || on == 0) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        return WithProcesses([&](IDkProcessManagement& p) {
            return GetSgpuParentProcess(p, deviceIndex, count, infos);
        });
    });
}

}  // extern "C"
