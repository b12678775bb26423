// Firmware-image service: VBIOS upgrade and dump, SR-IOV state.
#pragma once

#include <memory>

namespace dksml {

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

private:
    std::unique_ptr<DkVbiosCheckMmio> m_mmioChecker;
};

}  // namespace dksml
