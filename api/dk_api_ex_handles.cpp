// Compatibility handles and the compatibility device count.
#include <string>

#include "api/dk_api_ex_frame.h"
#include "dksml.h"

using namespace dksml;

namespace {

// Die 0 of the device with this index, as a handle;
// DK_SML_EX_ERROR_INVALID_ARGUMENT when there is none.
DkSmlExReturn HandleOfDevice(uint32_t deviceIndex, DkSmlExDevice* device) {
    const DkDieInfo* die = DkSystemManager::GetInstance().GetDieBySmlId(deviceIndex);
    if (die == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    *device = ToHandle(die);
    return DK_SML_EX_SUCCESS;
}

// Dies of the device; in slice mode the slices stand in for the device.
uint32_t CompatibilityUnitsOf(uint32_t deviceIndex) {
    uint32_t dies = 1;
    (void)dkSmlGetDeviceDieCount(deviceIndex, &dies);
    uint32_t sliceMode = 0;
    if (dkSmlGetSgpuToggle(deviceIndex, &sliceMode) == DK_SML_SUCCESS && sliceMode != 0)
        return dies - 1 + dkSmlGetSgpuCount(deviceIndex);
    return dies;
}

}  // namespace

extern "C" {

DKSML_API DkSmlExReturn dkSmlExDeviceGetCount(uint32_t* deviceCount) {
    if (deviceCount == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return ExGuard([&] {
        uint32_t total = 0;
        const uint32_t devices = dkSmlGetDeviceCount();
        for (uint32_t index = 0; index < devices; ++index) total += CompatibilityUnitsOf(index);
        *deviceCount = total;
        return DK_SML_EX_SUCCESS;
    });
}

DKSML_API DkSmlExReturn dkSmlExVornDeviceGetCount(uint32_t* deviceCount) { return dkSmlExDeviceGetCount(deviceCount); }

DKSML_API DkSmlExReturn dkSmlExGetDeviceHandleByIndex(uint32_t index, DkSmlExDevice* device) {
    if (device == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return ExGuard([&] {
        DkSystemManager::Hold hold;
        const DkDieInfo* die = DkSystemManager::GetInstance().GetDieByVornId(index);
        if (die == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
        *device = ToHandle(die);
        return DK_SML_EX_SUCCESS;
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetHandleByUUID(const char* uuid, DkSmlExDevice* device) {
    if (uuid == nullptr || device == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return ExGuard([&] {
        DkSystemManager::Hold hold;  // the index found and its handle come from one state
        uint32_t deviceIndex = 0;
        if (!DkSystemManager::GetInstance().GetDeviceIdByUuid(uuid, deviceIndex))
            return DK_SML_EX_ERROR_INVALID_ARGUMENT;
        return HandleOfDevice(deviceIndex, device);
    });
}

// Bus ids are accepted with fields of any width ("0:3:0.0").
DKSML_API DkSmlExReturn dkSmlExGetDeviceHandleByPciBusId(const char* pciBusId, DkSmlExDevice* device) {
    if (pciBusId == nullptr || device == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return ExGuard([&] {
        const std::string bdf = GetStandardBdfId(pciBusId);
        if (bdf.empty()) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
        DkSystemManager::Hold hold;  // the index found and its handle come from one state
        uint32_t deviceIndex = 0;
        if (!DkSystemManager::GetInstance().GetDeviceIdByBdf(bdf, deviceIndex)) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
        return HandleOfDevice(deviceIndex, device);
    });
}

}  // extern "C"
