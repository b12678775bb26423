// The device's power mode: no exported function returns it, so it is read
// through the power service, with the exports' guards.
#include "power_collect.h"

#include <memory>

#include "api/dk_service_manager.h"
#include "core/dk_system_manager.h"
#include "features/power/dk_power.h"

namespace dksmi {

DkSmlReturn ReadDevicePowerMode(uint32_t deviceIndex, uint32_t& mode) noexcept {
    try {
        std::shared_ptr<dksml::IDkDevice> device = dksml::DkSystemManager::GetInstance().GetDeviceById(deviceIndex);
        if (!device) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        std::shared_ptr<dksml::DkPower> power = dksml::DkServiceManager::GetInstance().GetDkPower();
        if (!power) return DK_SML_ERROR_FAILURE;
        return power->GetPowerMode(device.get(), &mode);
    } catch (DkSmlReturn code) {
        return code;
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

}  // namespace dksmi
