// The call frame shared by the native exports: output pointers are checked
// first (DK_SML_ERROR_INVALID_INPUT), then the device index
// (DK_SML_ERROR_DEVICE_NOT_AVAILABLE), then one service call whose status is
// returned unchanged. Exceptions never cross the C boundary.
#pragma once

#include <exception>
#include <memory>
#include <utility>

#include "api/dk_service_manager.h"
#include "core/dk_system_manager.h"
#include "dksml.h"

namespace dksml {

template <typename... P>
inline bool AnyNull(const P*... pointers) {
    return ((pointers == nullptr) || ...);
}

// Runs `body(IDkDevice*)` for a known device index;
// DK_SML_ERROR_DEVICE_NOT_AVAILABLE otherwise. Any escaping
// exception becomes 1: nothing may unwind into a C caller. The discovery
// state is held for the whole call, so a rediscovery meanwhile frees nothing
// the body uses, and every lookup the body makes answers from the same state.
template <typename Body>
inline DkSmlReturn WithDevice(uint32_t deviceIndex, Body&& body) noexcept {
    try {
        DkSystemManager::Hold hold;
        std::shared_ptr<IDkDevice> device = DkSystemManager::GetInstance().GetDeviceById(deviceIndex);
        if (!device) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        return std::forward<Body>(body)(device.get());
    } catch (DkSmlReturn code) {
        return code;
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

// As WithDevice, and checks a die id against the device's die count
// (DK_SML_ERROR_INVALID_DIE_ID).
template <typename Body>
inline DkSmlReturn WithDeviceDie(uint32_t deviceIndex, uint32_t dieId, Body&& body) noexcept {
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        if (dieId > device->GetDieCount() - 1) return DK_SML_ERROR_INVALID_DIE_ID;
        return body(device);
    });
}

// Runs `body(service, device)` with the service from the registry held for
// the duration of the call.
template <typename Service, typename Body>
inline DkSmlReturn WithService(std::shared_ptr<Service> service, IDkDevice* device, Body&& body) {
    if (!service) return DK_SML_ERROR_FAILURE;
    return std::forward<Body>(body)(*service, device);
}

}  // namespace dksml
