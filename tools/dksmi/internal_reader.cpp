#include "internal_reader.h"

#include <memory>

#include "api/dk_service_manager.h"
#include "core/dk_system_manager.h"
#include "features/temperature/dk_temperature.h"
#include "features/version/dk_version.h"
#include "features/voltage/dk_voltage.h"

namespace dksmi {
namespace {

// The same guard the exports apply: known device, die in range, and no
// exception escaping into the tool.
template <typename Service, typename Body>
DkSmlReturn WithDieService(std::shared_ptr<Service> service, uint32_t deviceIndex, uint32_t die,
                           Body&& body) noexcept {
    try {
        std::shared_ptr<dksml::IDkDevice> device = dksml::DkSystemManager::GetInstance().GetDeviceById(deviceIndex);
        if (!device) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        if (die >= device->GetDieCount()) return DK_SML_ERROR_INVALID_DIE_ID;
        if (!service) return DK_SML_ERROR_FAILURE;
        return body(*service, device.get());
    } catch (DkSmlReturn code) {
        return code;
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

}  // namespace

DkSmlReturn ReadDieTemperatureRecord(uint32_t deviceIndex, uint32_t die, DkSmlTemperature& record) {
    return WithDieService(dksml::DkServiceManager::GetInstance().GetDkTemperature(), deviceIndex, die,
                          [&](dksml::DkTemperature& temperature, dksml::IDkDevice* device) {
                              temperature.InitTemperature(&record);
                              return temperature.GetDieTemperature(device, die, &record);
                          });
}

DkSmlReturn ReadDieSensorTable(uint32_t deviceIndex, uint32_t die, DkSmlTemperatureSensorForAll& table) {
    table = DkSmlTemperatureSensorForAll{};
    return WithDieService(dksml::DkServiceManager::GetInstance().GetDkTemperature(), deviceIndex, die,
                          [&](dksml::DkTemperature& temperature, dksml::IDkDevice* device) {
                              return temperature.GetDieTemperatureSensor(device, die, &table);
                          });
}

DkSmlReturn ReadDieVoltageMonitor(uint32_t deviceIndex, uint32_t die, std::vector<DkSmlVmInfo>& rows) {
    return WithDieService(dksml::DkServiceManager::GetInstance().GetDkVoltageMonitor(), deviceIndex, die,
                          [&](dksml::DkVoltageMonitor& monitor, dksml::IDkDevice* device) {
                              // First ask for the row count with an empty array, then read.
                              DkSmlVmInfo probe{};
                              uint32_t count = 0;
                              DkSmlReturn status = monitor.GetDieVmInfo(device, die, &count, &probe);
                              if (status != DK_SML_SUCCESS && status != DK_SML_ERROR_INSUFFICIENT_SIZE)
                                  return status;
                              rows.assign(count, DkSmlVmInfo{});
                              if (count == 0) return DK_SML_SUCCESS;
                              status = monitor.GetDieVmInfo(device, die, &count, rows.data());
                              rows.resize(status == DK_SML_SUCCESS ? count : 0);
                              return status;
                          });
}

DkSmlReturn ReadDieVersionTexts(uint32_t deviceIndex, uint32_t die, dksml::DkDieVersionTexts& texts) {
    return WithDieService(dksml::DkServiceManager::GetInstance().GetDkVersion(), deviceIndex, die,
                          [&](dksml::DkVersion& version, dksml::IDkDevice* device) {
                              return version.GetDieVersionTexts(device, die, &texts);
                          });
}

DkSmlReturn ReadDriverVersion(uint32_t deviceIndex, char* buffer, uint32_t size) {
    return WithDieService(dksml::DkServiceManager::GetInstance().GetDkVersion(), deviceIndex, 0,
                          [&](dksml::DkVersion& version, dksml::IDkDevice* device) {
                              return version.GetDieUnitVersion(device, 0, DK_SML_VERSION_DRIVER, buffer, &size);
                          });
}

DkSmlReturn ReadStackVersion(uint32_t deviceIndex, char* buffer, uint32_t size) {
    return WithDieService(dksml::DkServiceManager::GetInstance().GetDkVersion(), deviceIndex, 0,
                          [&](dksml::DkVersion& version, dksml::IDkDevice* device) {
                              return version.GetStackVersion(device, buffer, size);
                          });
}

}  // namespace dksmi
