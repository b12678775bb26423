// Compatibility system queries (versions) and the per-die process list.
#include <cstdio>
#include <cstring>
#include <vector>

#include "api/dk_api_ex_frame.h"
#include "dksml.h"
#include "features/process/idk_process_management.h"
#include "features/version/dk_version.h"

using namespace dksml;

namespace {

constexpr const char c_dksmlVersion[] = "2.3.1";

// "major.minor[...]" as major * 1000 + minor * 10, the compute stack's own
// combined version number; 0 when the text does not start that way.
uint32_t CombinedVersionNumber(const char* text) {
    unsigned int major = 0;
    unsigned int minor = 0;
    if (std::sscanf(text, "%u.%u", &major, &minor) != 2) return 0;
    return major * 1000 + minor * 10;
}

uint64_t MemoryOf(const DkSmlProcessInfo_v3& record) {
    uint64_t total = 0;
    const uint32_t entries = record.gpuCount < DK_SML_PROCESS_MAX_GPUS ? record.gpuCount : DK_SML_PROCESS_MAX_GPUS;
    for (uint32_t i = 0; i < entries; ++i) total += record.gpuInfo[i].memoryUsed;
    return total;
}

}  // namespace

extern "C" {

DKSML_API DkSmlExReturn dkSmlExSystemGetDksmlVersion(char* version, uint32_t length) {
    if (version == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    if (length < sizeof(c_dksmlVersion)) return DK_SML_EX_ERROR_INSUFFICIENT_SIZE;
    std::memcpy(version, c_dksmlVersion, sizeof(c_dksmlVersion));
    return DK_SML_EX_SUCCESS;
}

// The kernel driver version as device 0's driver reports it.
DKSML_API DkSmlExReturn dkSmlExSystemGetDriverVersion(char* version, uint32_t length) {
    if (version == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return ExGuard([&] {
        std::shared_ptr<IDkDevice> device = DkSystemManager::GetInstance().GetDeviceById(0);
        if (!device) return DK_SML_EX_ERROR_UNKNOWN;
        return WithExService(&DkServiceManager::GetDkVersion, [&](DkVersion& service) {
            uint32_t size = length;
            const DkSmlReturn result =
                service.GetDieUnitVersion(device.get(), 0, DK_SML_VERSION_DRIVER, version, &size);
            if (result == DK_SML_ERROR_INSUFFICIENT_SIZE) return DK_SML_EX_ERROR_INSUFFICIENT_SIZE;
            return ExFromNative(result);
        });
    });
}

DKSML_API DkSmlExReturn dkSmlExSystemGetVornDriverVersion(uint32_t* version) {
    if (version == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return ExGuard([&] {
        return WithExService(&DkServiceManager::GetDkVersion, [&](DkVersion& service) {
            char text[32] = {};
            const DkSmlReturn result = service.GetVornVersion(text, sizeof(text));
            if (result == DK_SML_ERROR_NOT_SUPPORTED) return DK_SML_EX_ERROR_NOT_SUPPORTED;
            if (result == DK_SML_ERROR_LOAD_LIBRARY) return DK_SML_EX_ERROR_LIBRARY_NOT_FOUND;
            if (result != DK_SML_SUCCESS) return DK_SML_EX_ERROR_UNKNOWN;
            text[sizeof(text) - 1] = '\0';
            *version = CombinedVersionNumber(text);
            return DK_SML_EX_SUCCESS;
        });
    });
}

// Processes holding memory on the handle's die. The count always becomes the
// number found; DK_SML_EX_ERROR_INSUFFICIENT_SIZE when the caller's capacity
// was smaller.
DKSML_API DkSmlExReturn dkSmlExDeviceGetComputeRunningProcesses(DkSmlExDevice device, uint32_t* infoCount,
                                                                DkSmlExProcessInfo* infos) {
    if (infoCount == nullptr || (infos == nullptr && *infoCount != 0)) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        std::shared_ptr<IDkProcessManagement> processes = DkSystemManager::GetInstance().GetProcessManagement();
        if (!processes) return DK_SML_EX_ERROR_UNKNOWN;
        const uint32_t gpuId = d->GetDriverGpuId(die.dieIndex);
        uint32_t found = 0;
        if (processes->GetProcessInfo_v3(nullptr, 0, &found, gpuId, false) != DK_SML_SUCCESS)
            return DK_SML_EX_ERROR_UNKNOWN;
        std::vector<DkSmlProcessInfo_v3> records(found);
        uint32_t scanned = 0;
        if (processes->GetProcessInfo_v3(records.data(), found, &scanned, gpuId, false) != DK_SML_SUCCESS)
            return DK_SML_EX_ERROR_UNKNOWN;
        if (scanned > found) scanned = found;
        const uint32_t capacity = *infoCount;
        *infoCount = scanned;
        if (capacity < scanned) return DK_SML_EX_ERROR_INSUFFICIENT_SIZE;
        for (uint32_t i = 0; i < scanned; ++i) infos[i] = DkSmlExProcessInfo{records[i].pid, MemoryOf(records[i])};
        return DK_SML_EX_SUCCESS;
    });
}

}  // extern "C"
