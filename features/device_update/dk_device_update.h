// Firmware-image service: VBIOS upgrade and dump, SR-IOV state. Upgrades work
// on a device-information record so that limited devices can be flashed too.
#pragma once

#include <cstdint>
#include <memory>

#include "dksml.h"

namespace dksml {

class IDkDevice;

// Checks that a virtual-function firmware image fits the MMIO window.
class DkVbiosCheckMmio {
public:
    virtual ~DkVbiosCheckMmio() = default;
};

class DkDeviceUpdate {
public:
    explicit DkDeviceUpdate(std::unique_ptr<DkVbiosCheckMmio> mmioChecker)
        : m_mmioChecker(std::move(mmioChecker)) {}
    virtual ~DkDeviceUpdate() = default;

    virtual DkSmlReturn VbiosUpgrade(const DkSmlDeviceInfo& info, uint32_t dieCount, const char* imagePath);
    virtual DkSmlReturn DumpVbios(IDkDevice* device, const char* outputPath);
    virtual DkSmlReturn GetSriovState(IDkDevice* device, uint32_t* state);

private:
    std::unique_ptr<DkVbiosCheckMmio> m_mmioChecker;
};

}  // namespace dksml
