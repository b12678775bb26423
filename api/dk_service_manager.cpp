// The feature registry: creates each feature service once, and hands the
// system manager the builders of the objects it makes in every discovery
// pass from feature code (topology tables, process accounting, board serials).
#include "api/dk_service_manager.h"

#include <utility>

#include "core/dk_system_manager.h"
#include "features/process/dk_process_threshold.h"
#include "features/process/idk_process_management.h"
#include "features/topology/dk_topology.h"

#include "features/temperature/dk_temperature.h"
#include "features/voltage/dk_voltage.h"
#include "features/ras/dk_ras.h"
#include "features/power/dk_power.h"
#include "features/power_internal/dk_power_internal.h"
#include "features/clock/dk_clock.h"
#include "features/version/dk_version.h"
#include "features/utilization/dk_utilization.h"
#include "features/utilization_internal/dk_utilization_internal.h"
#include "features/pcie/dk_pcie.h"
#include "features/links/dk_links.h"
#include "features/didt/dk_didt.h"
#include "features/dpm/dk_dpm.h"
#include "features/log/dk_log.h"
#include "features/pptable/dk_pptable.h"
#include "features/fuse/dk_fuse.h"
#include "features/eeprom/dk_eeprom.h"
#include "features/memory_controller/dk_memory_controller.h"
#include "features/hbm/dk_hbm.h"
#include "features/ecc/dk_ecc.h"
#include "features/device_operation/dk_device_operation.h"
#include "features/device_update/dk_device_update.h"
#include "features/device_force_flash/dk_device_force_flash.h"
#include "features/device_reset/dk_device_reset.h"
#include "features/register/dk_register.h"
#include "features/optical_module/dk_optical_module.h"
#include "features/sdma/dk_sdma.h"
#include "features/slicegpu/dk_slicegpu.h"
#include "features/event/dk_event.h"
#include "features/fan/dk_fan.h"
#include "features/eth/dk_eth.h"
#include "features/cxl/dk_cxl.h"
#include "features/harvest/dk_harvest.h"
#include "features/vpu/dk_vpu.h"

namespace dksml {
namespace {

std::shared_ptr<IDkProcessManagement> BuildProcessManagement(DkSmlDeviceBrand brand) {
    return DkProcessManagementFactory::CreateProcessManagement(GetProcessMemoryThreshold(brand));
}

// A private EEPROM service: grouping runs inside discovery, before the
// registry's services are handed out for the pass.
DkSmlReturn ReadBoardSerial(IDkDevice& device, char* serial, uint32_t* size) {
    DkEeprom eeprom;
    return eeprom.GetBoardSerial(&device, serial, size);
}

// Installed while the library loads, before any export (and so any
// discovery pass) can run; this file is linked wherever the registry is.
[[maybe_unused]] const bool c_passBuildersInstalled = [] {
    SetPassBuilders({CreateTopology, BuildProcessManagement, ReadBoardSerial});
    return true;
}();

}  // namespace

DkServiceManager& DkServiceManager::GetInstance() {
    static DkServiceManager instance;
    return instance;
}

DkServiceManager::DkServiceManager() = default;
DkServiceManager::~DkServiceManager() = default;

// Getters read the pointers without a lock: they are written once, before
// m_ready is set, and never again.
void DkServiceManager::Initialize() {
    std::call_once(m_created, [this] { CreateServices(); });
}

void DkServiceManager::CreateServices() {
    m_temperature = std::make_shared<DkTemperature>();
    m_voltageMonitor = std::make_shared<DkVoltageMonitor>();
    m_ras = std::make_shared<DkRas>();
    m_power = std::make_shared<DkPower>();
    m_powerInternal = std::make_shared<DkPowerInternal>();
    m_clock = std::make_shared<DkClock>();
    m_version = std::make_shared<DkVersion>();
    m_utilization = std::make_shared<DkUtilization>();
    m_utilizationInternal = std::make_shared<DkUtilizationInternal>();
    m_pcie = std::make_shared<DkPcie>();
    m_dravLink = std::make_shared<DkDravLink>();
    m_didt = std::make_shared<DkDidt>();
    m_dpm = std::make_shared<DkDpm>();
    m_log = std::make_shared<DkLog>();
    m_pptable = std::make_shared<DkPptable>();
    m_fuse = std::make_shared<DkFuse>();
    m_eeprom = std::make_shared<DkEeprom>();
    m_memoryController = std::make_shared<DkMemoryController>();
    m_hbm = std::make_shared<DkHbm>();
    m_ecc = std::make_shared<DkEcc>();
    m_deviceOperation = std::make_shared<DkDeviceOperation>();
    // The MMIO checker moves into the firmware-update service.
    m_vbiosCheckMmio = std::make_unique<DkVbiosCheckMmio>();
    m_deviceUpdate = std::make_shared<DkDeviceUpdate>(std::move(m_vbiosCheckMmio));
    m_deviceForceFlash = std::make_shared<DkDeviceForceFlash>();
    m_deviceReset = std::make_shared<DkDeviceReset>();
    m_register = std::make_shared<DkRegister>();
    m_opticalModule = std::make_shared<DkOpticalModule>();
    m_sdma = std::make_shared<DkSdma>();
    m_sliceGpu = std::make_shared<DkSliceGpu>();
    m_event = std::make_shared<DkEvent>();
    m_fan = std::make_shared<DkFan>();
    m_eth = std::make_shared<DkEth>();
    m_cxl = std::make_shared<DkCxl>();
    m_harvest = std::make_shared<DkHarvest>();
    m_vpu = std::make_shared<DkVpu>();
    m_ready.store(true, std::memory_order_release);
}

std::shared_ptr<DkTemperature> DkServiceManager::GetDkTemperature() const { return Ready() ? m_temperature : nullptr; }
std::shared_ptr<DkVoltageMonitor> DkServiceManager::GetDkVoltageMonitor() const { return Ready() ? m_voltageMonitor : nullptr; }
std::shared_ptr<DkRas> DkServiceManager::GetDkRas() const { return Ready() ? m_ras : nullptr; }
std::shared_ptr<DkPower> DkServiceManager::GetDkPower() const { return Ready() ? m_power : nullptr; }
std::shared_ptr<DkPowerInternal> DkServiceManager::GetDkPowerInternal() const { return Ready() ? m_powerInternal : nullptr; }
std::shared_ptr<DkClock> DkServiceManager::GetDkClock() const { return Ready() ? m_clock : nullptr; }
std::shared_ptr<DkVersion> DkServiceManager::GetDkVersion() const { return Ready() ? m_version : nullptr; }
std::shared_ptr<DkUtilization> DkServiceManager::GetDkUtilization() const { return Ready() ? m_utilization : nullptr; }
std::shared_ptr<DkUtilizationInternal> DkServiceManager::GetDkUtilInternal() const { return Ready() ? m_utilizationInternal : nullptr; }
std::shared_ptr<DkPcie> DkServiceManager::GetDkPcie() const { return Ready() ? m_pcie : nullptr; }
std::shared_ptr<DkDravLink> DkServiceManager::GetDkDravLink() const { return Ready() ? m_dravLink : nullptr; }
std::shared_ptr<DkDidt> DkServiceManager::GetDkDidt() const { return Ready() ? m_didt : nullptr; }
std::shared_ptr<DkDpm> DkServiceManager::GetDkDpm() const { return Ready() ? m_dpm : nullptr; }
std::shared_ptr<DkLog> DkServiceManager::GetDkLog() const { return Ready() ? m_log : nullptr; }
std::shared_ptr<DkPptable> DkServiceManager::GetDkPptable() const { return Ready() ? m_pptable : nullptr; }
std::shared_ptr<DkFuse> DkServiceManager::GetDkFuse() const { return Ready() ? m_fuse : nullptr; }
std::shared_ptr<DkEeprom> DkServiceManager::GetDkEeprom() const { return Ready() ? m_eeprom : nullptr; }
std::shared_ptr<DkMemoryController> DkServiceManager::GetDkMemoryController() const { return Ready() ? m_memoryController : nullptr; }
std::shared_ptr<DkHbm> DkServiceManager::GetDkHbm() const { return Ready() ? m_hbm : nullptr; }
std::shared_ptr<DkEcc> DkServiceManager::GetDkEcc() const { return Ready() ? m_ecc : nullptr; }
std::shared_ptr<DkDeviceOperation> DkServiceManager::GetDkDeviceOperation() const { return Ready() ? m_deviceOperation : nullptr; }
std::shared_ptr<DkDeviceUpdate> DkServiceManager::GetDkDeviceUpdate() const { return Ready() ? m_deviceUpdate : nullptr; }
std::shared_ptr<DkDeviceForceFlash> DkServiceManager::GetDkDeviceForceFlash() const { return Ready() ? m_deviceForceFlash : nullptr; }
std::shared_ptr<DkDeviceReset> DkServiceManager::GetDkDeviceReset() const { return Ready() ? m_deviceReset : nullptr; }
std::shared_ptr<DkRegister> DkServiceManager::GetDkRegister() const { return Ready() ? m_register : nullptr; }
std::shared_ptr<DkOpticalModule> DkServiceManager::GetDkOpticalModule() const { return Ready() ? m_opticalModule : nullptr; }
std::shared_ptr<DkSdma> DkServiceManager::GetDkSdma() const { return Ready() ? m_sdma : nullptr; }
std::shared_ptr<DkSliceGpu> DkServiceManager::GetDkSliceGpu() const { return Ready() ? m_sliceGpu : nullptr; }
std::shared_ptr<DkEvent> DkServiceManager::GetDkEvent() const { return Ready() ? m_event : nullptr; }
std::shared_ptr<DkFan> DkServiceManager::GetDkFan() const { return Ready() ? m_fan : nullptr; }
std::shared_ptr<DkEth> DkServiceManager::GetDkEth() const { return Ready() ? m_eth : nullptr; }
std::shared_ptr<DkCxl> DkServiceManager::GetDkCxl() const { return Ready() ? m_cxl : nullptr; }
std::shared_ptr<DkHarvest> DkServiceManager::GetDkHarvest() const { return Ready() ? m_harvest : nullptr; }
std::shared_ptr<DkVpu> DkServiceManager::GetDkVpu() const { return Ready() ? m_vpu : nullptr; }

}  // namespace dksml
