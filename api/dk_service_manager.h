// Registry of the feature services: one instance of each per process,
// created by the first Initialize() (the first dkSmlInit) and never replaced,
// so that any number of threads may initialise and query at once. Services
// hold no discovery results: each call is given the device it works on.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

namespace dksml {

class DkTemperature;
class DkVoltageMonitor;
class DkRas;
class DkPower;
class DkPowerInternal;
class DkClock;
class DkVersion;
class DkUtilization;
class DkUtilizationInternal;
class DkPcie;
class DkDravLink;
class DkDidt;
class DkDpm;
class DkLog;
class DkPptable;
class DkFuse;
class DkEeprom;
class DkMemoryController;
class DkHbm;
class DkEcc;
class DkDeviceOperation;
class DkDeviceUpdate;
class DkDeviceForceFlash;
class DkDeviceReset;
class DkRegister;
class DkOpticalModule;
class DkSdma;
class DkSliceGpu;
class DkEvent;
class DkFan;
class DkEth;
class DkCxl;
class DkHarvest;
class DkVpu;
class DkVbiosCheckMmio;

class DkServiceManager {
public:
    static DkServiceManager& GetInstance();

    virtual void Initialize();
    virtual std::shared_ptr<DkTemperature> GetDkTemperature() const;
    virtual std::shared_ptr<DkVoltageMonitor> GetDkVoltageMonitor() const;
    virtual std::shared_ptr<DkRas> GetDkRas() const;
    virtual std::shared_ptr<DkPower> GetDkPower() const;
    virtual std::shared_ptr<DkPowerInternal> GetDkPowerInternal() const;
    virtual std::shared_ptr<DkClock> GetDkClock() const;
    virtual std::shared_ptr<DkVersion> GetDkVersion() const;
    virtual std::shared_ptr<DkUtilization> GetDkUtilization() const;
    virtual std::shared_ptr<DkUtilizationInternal> GetDkUtilInternal() const;
    virtual std::shared_ptr<DkPcie> GetDkPcie() const;
    virtual std::shared_ptr<DkDravLink> GetDkDravLink() const;
    virtual std::shared_ptr<DkDidt> GetDkDidt() const;
    virtual std::shared_ptr<DkDpm> GetDkDpm() const;
    virtual std::shared_ptr<DkLog> GetDkLog() const;
    virtual std::shared_ptr<DkPptable> GetDkPptable() const;
    virtual std::shared_ptr<DkFuse> GetDkFuse() const;
    virtual std::shared_ptr<DkEeprom> GetDkEeprom() const;
    virtual std::shared_ptr<DkMemoryController> GetDkMemoryController() const;
    virtual std::shared_ptr<DkHbm> GetDkHbm() const;
    virtual std::shared_ptr<DkEcc> GetDkEcc() const;
    virtual std::shared_ptr<DkDeviceOperation> GetDkDeviceOperation() const;
    virtual std::shared_ptr<DkDeviceUpdate> GetDkDeviceUpdate() const;
    virtual std::shared_ptr<DkDeviceForceFlash> GetDkDeviceForceFlash() const;
    virtual std::shared_ptr<DkDeviceReset> GetDkDeviceReset() const;
    virtual std::shared_ptr<DkRegister> GetDkRegister() const;
    virtual std::shared_ptr<DkOpticalModule> GetDkOpticalModule() const;
    virtual std::shared_ptr<DkSdma> GetDkSdma() const;
    virtual std::shared_ptr<DkSliceGpu> GetDkSliceGpu() const;
    virtual std::shared_ptr<DkEvent> GetDkEvent() const;
    virtual std::shared_ptr<DkFan> GetDkFan() const;
    virtual std::shared_ptr<DkEth> GetDkEth() const;
    virtual std::shared_ptr<DkCxl> GetDkCxl() const;
    virtual std::shared_ptr<DkHarvest> GetDkHarvest() const;
    virtual std::shared_ptr<DkVpu> GetDkVpu() const;

    DkServiceManager(const DkServiceManager&) = delete;
    DkServiceManager& operator=(const DkServiceManager&) = delete;

protected:
    DkServiceManager();
    virtual ~DkServiceManager();

private:
    void CreateServices();
    bool Ready() const { return m_ready.load(std::memory_order_acquire); }

    std::once_flag m_created;
    std::atomic<bool> m_ready{false};  // a query racing the first dkSmlInit sees no service, not a torn one
    std::shared_ptr<DkTemperature> m_temperature;
    std::shared_ptr<DkVoltageMonitor> m_voltageMonitor;
    std::shared_ptr<DkRas> m_ras;
    std::shared_ptr<DkPower> m_power;
    std::shared_ptr<DkPowerInternal> m_powerInternal;
    std::shared_ptr<DkClock> m_clock;
    std::shared_ptr<DkVersion> m_version;
    std::shared_ptr<DkUtilization> m_utilization;
    std::shared_ptr<DkUtilizationInternal> m_utilizationInternal;
    std::shared_ptr<DkPcie> m_pcie;
    std::shared_ptr<DkDravLink> m_dravLink;
    std::shared_ptr<DkDidt> m_didt;
    std::shared_ptr<DkDpm> m_dpm;
    std::shared_ptr<DkLog> m_log;
    std::shared_ptr<DkPptable> m_pptable;
    std::shared_ptr<DkFuse> m_fuse;
    std::shared_ptr<DkEeprom> m_eeprom;
    std::shared_ptr<DkMemoryController> m_memoryController;
    std::shared_ptr<DkHbm> m_hbm;
    std::shared_ptr<DkEcc> m_ecc;
    std::shared_ptr<DkDeviceOperation> m_deviceOperation;
    std::shared_ptr<DkDeviceUpdate> m_deviceUpdate;
    std::shared_ptr<DkDeviceForceFlash> m_deviceForceFlash;
    std::shared_ptr<DkDeviceReset> m_deviceReset;
    std::shared_ptr<DkRegister> m_register;
    std::shared_ptr<DkOpticalModule> m_opticalModule;
    std::shared_ptr<DkSdma> m_sdma;
    std::shared_ptr<DkSliceGpu> m_sliceGpu;
    std::shared_ptr<DkEvent> m_event;
    std::shared_ptr<DkFan> m_fan;
    std::shared_ptr<DkEth> m_eth;
    std::shared_ptr<DkCxl> m_cxl;
    std::shared_ptr<DkHarvest> m_harvest;
    std::shared_ptr<DkVpu> m_vpu;
    std::unique_ptr<DkVbiosCheckMmio> m_vbiosCheckMmio;
};

}  // namespace dksml
