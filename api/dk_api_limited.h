// Exports that also serve limited devices (found but not set up): they run
// on the device object when there is one, else on a temporary device object
// built from the limited record's bus id.
#pragma once

#include <memory>
#include <string>

#include "api/dk_api_service_call.h"

namespace dksml {

// `body(IDkDevice*)` on the device, or on a mock of the limited device.
template <typename Body>
inline DkSmlReturn WithDeviceOrLimitedMock(uint32_t deviceIndex, Body&& body) noexcept {
    return WithManager([&](DkSystemManager& manager) {
        std::shared_ptr<IDkDevice> device = manager.GetDeviceById(deviceIndex);
        if (device) return body(device.get());
        DkSmlLimitedDeviceInfo limited{};
        DkSmlReturn result = manager.GetLimitedDeviceInfo(deviceIndex, &limited);
        if (result != DK_SML_SUCCESS) return result;
        std::shared_ptr<IDkDevice> mock = manager.MockDevice(g_dkDeviceSearchPath + "/" + limited.bdfId);
        if (!mock) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        return body(mock.get());
    });
}

// The device-information record of a device or of a limited device.
inline DkSmlReturn GetDeviceOrLimitedInfo(DkSystemManager& manager, uint32_t deviceIndex, DkSmlDeviceInfo& info) {
    info = DkSmlDeviceInfo{};
    std::shared_ptr<IDkDevice> device = manager.GetDeviceById(deviceIndex);
    if (device) {
        info.deviceIndex = deviceIndex;
        return device->GetDeviceInfo(&info);
    }
    DkSmlLimitedDeviceInfo limited{};
    DkSmlReturn result = manager.GetLimitedDeviceInfo(deviceIndex, &limited);
    if (result != DK_SML_SUCCESS) return result;
    info.deviceIndex = limited.deviceIndex;
    static_assert(sizeof(info.bdfId) == sizeof(limited.bdfId));
    for (std::size_t i = 0; i < sizeof(info.bdfId); ++i) info.bdfId[i] = limited.bdfId[i];
    info.bdfId[sizeof(info.bdfId) - 1] = '\0';
    return DK_SML_SUCCESS;
}

}  // namespace dksml
