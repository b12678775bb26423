// Device identity and the limited-device list: answered by the system
// manager and the device object itself, without a feature service.
#include <vector>

#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/topology/dk_topology.h"

using namespace dksml;

extern "C" {

DKSML_API DkSmlReturn dkSmlGetAllLimitedDevices(uint32_t* count, uint32_t* deviceIndices) {
    if (AnyNull(count, deviceIndices)) return DK_SML_ERROR_INVALID_INPUT;
    return WithManager([&](DkSystemManager& manager) { return manager.GetAllLimitedDevices(count, deviceIndices); });
}

DKSML_API DkSmlReturn dkSmlGetLimitedDeviceInfo(uint32_t deviceIndex, DkSmlLimitedDeviceInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return WithManager([&](DkSystemManager& manager) { return manager.GetLimitedDeviceInfo(deviceIndex, info); });
}

DKSML_API DkSmlReturn dkSmlGetDeviceBoardId(uint32_t deviceIndex, uint32_t* boardId) {
    if (AnyNull(boardId)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice*) {
        *boardId = DkSystemManager::GetInstance().GetDeviceBoardId(deviceIndex);
        return DK_SML_SUCCESS;
    });
}

DKSML_API DkSmlReturn dkSmlGetDeviceInfo(uint32_t deviceIndex, DkSmlDeviceInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        info->deviceIndex = deviceIndex;
        return device->GetDeviceInfo(info);
    });
}

DKSML_API DkSmlReturn dkSmlGetVirtualDevicesByPhysicalId(uint32_t deviceIndex, uint32_t* count,
                                                        uint32_t* vfIndices) {
    if (AnyNull(count, vfIndices)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        const std::vector<uint32_t> vfs = device->GetVirtualDevices();
        const uint32_t capacity = *count;
        *count = static_cast<uint32_t>(vfs.size());
        if (capacity < vfs.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
        for (std::size_t i = 0; i < vfs.size(); ++i) vfIndices[i] = vfs[i];
        return DK_SML_SUCCESS;
    });
}

DKSML_API DkSmlReturn dkSmlGetDeviceRealPath(uint32_t deviceIndex, char* path, uint32_t* size) {
    if (AnyNull(path, size)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice* device) { return device->GetDeviceRealPath(path, size); });
}

// A device that could not be set up still has a state: the limited list answers.
DKSML_API DkSmlReturn dkSmlGetDeviceState(uint32_t deviceIndex, int32_t* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return WithManager([&](DkSystemManager& manager) {
        std::shared_ptr<IDkDevice> device = manager.GetDeviceById(deviceIndex);
        if (!device) return manager.GetLimitedDeviceState(deviceIndex, state);
        return device->GetDeviceState(state);
    });
}

DKSML_API DkSmlReturn dkSmlGetDeviceIsaVersion(uint32_t deviceIndex, DkSmlIsaVersion* isa) {
    if (AnyNull(isa)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        *isa = device->GetIsaVersion();
        return DK_SML_SUCCESS;
    });
}

DKSML_API DkSmlReturn dkSmlGetDeviceUnavailableReason(uint32_t deviceIndex,
                                                      DkSmlDeviceUnavailableReasonInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return WithManager([&](DkSystemManager& manager) {
        std::shared_ptr<IDkDevice> device = manager.GetDeviceById(deviceIndex);
        if (!device) return manager.GetLimitedDeviceUnavailableReason(deviceIndex, info);
        return device->GetDeviceUnavailableReason(info);
    });
}

DKSML_API DkSmlReturn dkSmlGetDeviceDieCount(uint32_t deviceIndex, uint32_t* dieCount) {
    if (AnyNull(dieCount)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        *dieCount = device->GetDieCount();
        return DK_SML_SUCCESS;
    });
}

DKSML_API DkSmlReturn dkSmlGetLocalAndRemoteUuid(uint32_t deviceIndex, DkSmlUuidPair* pair) {
    if (AnyNull(pair)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice*) {
        return WithTopology([&](DkTopology& topology) { return topology.GetLocalAndRemoteUuid(deviceIndex, pair); });
    });
}

DKSML_API DkSmlReturn dkSmlGetLocalAndMultipleRemoteUuid(uint32_t deviceIndex, uint32_t* count,
                                                         DkSmlUuidPair* pairs) {
    if (AnyNull(count, pairs)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice*) {
        return WithTopology([&](DkTopology& topology) {
            return topology.GetLocalAndMultipleRemoteUuid(deviceIndex, count, pairs);
        });
    });
}

}  // extern "C"
