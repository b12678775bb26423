#include "die_readers.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "api/dk_api_service_call.h"
#include "features/voltage/dk_voltage.h"

namespace dksml::exporter {

DkSmlReturn ReadVoltageMonitor(uint32_t deviceIndex, uint32_t die, VoltageMonitorRows& rows) noexcept {
    return CallDieService(deviceIndex, die, &DkServiceManager::GetDkVoltageMonitor,
                          [&](DkVoltageMonitor& monitor, IDkDevice* device) {
                              rows.count = c_voltageMonitorRows;
                              DkSmlReturn status = monitor.GetDieVmInfo(device, die, &rows.count, rows.rows.data());
                              if (status != DK_SML_ERROR_INSUFFICIENT_SIZE) return status;
                              // More rows than the buffer: read all of them once more and keep the first.
                              std::vector<DkSmlVmInfo> all(rows.count);
                              uint32_t count = rows.count;
                              status = monitor.GetDieVmInfo(device, die, &count, all.data());
                              if (status != DK_SML_SUCCESS) return status;
                              rows.count = std::min<uint32_t>(count, c_voltageMonitorRows);
                              std::copy_n(all.begin(), rows.count, rows.rows.begin());
                              return DK_SML_SUCCESS;
                          });
}

DkSmlReturn ReadDieDpmLevels(uint32_t deviceIndex, uint32_t die, DkDpmDieLevels& levels) noexcept {
    return CallDieService(deviceIndex, die, &DkServiceManager::GetDkDpm,
                          [&](DkDpm& dpm, IDkDevice* device) { return dpm.GetDieDpmLevels(device, die, &levels); });
}

DkSmlReturn ReadDiePmbusRails(uint32_t deviceIndex, uint32_t die, DkDiePmbusRails& rails) noexcept {
    return CallDieService(deviceIndex, die, &DkServiceManager::GetDkPower,
                          [&](DkPower& power, IDkDevice* device) { return power.GetDiePmbusRails(device, die, &rails); });
}

DkSmlReturn ReadDieUsages(uint32_t deviceIndex, uint32_t die, DkDieUsage& usage) noexcept {
    return CallDieService(deviceIndex, die, &DkServiceManager::GetDkUtilization,
                          [&](DkUtilization& utilization, IDkDevice* device) {
                              return utilization.GetDieUsages(device, die, &usage);
                          });
}

DkSmlReturn ReadDieVersionTexts(uint32_t deviceIndex, uint32_t die, DkDieVersionTexts& texts) noexcept {
    return CallDieService(deviceIndex, die, &DkServiceManager::GetDkVersion,
                          [&](DkVersion& version, IDkDevice* device) {
                              return version.GetDieVersionTexts(device, die, &texts);
                          });
}

DkSmlReturn StackVersions::Get(uint32_t deviceIndex, std::string& version) noexcept {
    return CallService(deviceIndex, &DkServiceManager::GetDkVersion, [&](DkVersion& service, IDkDevice* device) {
        auto found = m_byBrand.find(device->GetDeviceBrand());
        if (found == m_byBrand.end()) {
            char text[DK_SML_VERSION_LENGTH] = {};
            const DkSmlReturn status = service.GetStackVersion(device, text, sizeof text);
            text[sizeof text - 1] = '\0';
            found = m_byBrand.emplace(device->GetDeviceBrand(), std::pair{status, std::string(text)}).first;
        }
        version = found->second.second;
        return found->second.first;
    });
}

}  // namespace dksml::exporter
