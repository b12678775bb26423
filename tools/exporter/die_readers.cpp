#include "die_readers.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "api/dk_service_manager.h"
#include "core/dk_system_manager.h"
#include "features/voltage/dk_voltage.h"

namespace dksml::exporter {

DkSmlReturn ReadVoltageMonitor(uint32_t deviceIndex, uint32_t die, VoltageMonitorRows& rows) noexcept {
    try {
        std::shared_ptr<IDkDevice> device = DkSystemManager::GetInstance().GetDeviceById(deviceIndex);
        if (!device) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        if (die >= device->GetDieCount()) return DK_SML_ERROR_INVALID_DIE_ID;
        std::shared_ptr<DkVoltageMonitor> monitor = DkServiceManager::GetInstance().GetDkVoltageMonitor();
        if (!monitor) return DK_SML_ERROR_FAILURE;
        rows.count = c_voltageMonitorRows;
        DkSmlReturn status = monitor->GetDieVmInfo(device.get(), die, &rows.count, rows.rows.data());
        if (status != DK_SML_ERROR_INSUFFICIENT_SIZE) return status;
        // More rows than the buffer: read all of them once more and keep the first.
        std::vector<DkSmlVmInfo> all(rows.count);
        uint32_t count = rows.count;
        status = monitor->GetDieVmInfo(device.get(), die, &count, all.data());
        if (status != DK_SML_SUCCESS) return status;
        rows.count = std::min<uint32_t>(count, c_voltageMonitorRows);
        std::copy_n(all.begin(), rows.count, rows.rows.begin());
        return DK_SML_SUCCESS;
    } catch (DkSmlReturn code) {
        return code;
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

}  // namespace dksml::exporter
