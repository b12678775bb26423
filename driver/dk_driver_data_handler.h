// Per-device access to the driver's attribute files. A request identifier and
// a die index become a read or write of a file in the device's "/smi/" (die 0)
// or "/smi1/" (any other die) directory.
#pragma once

#include <memory>
#include <string>

#include "core/dk_host_root.h"
#include "dksml.h"
#include "driver/dk_opcode.h"

namespace dksml {

class IDkDevice;

class IDkDriverDataHandler {
public:
    virtual ~IDkDriverDataHandler() = default;
    // Whole text of the request's attribute: 3 absent, 4 unopenable; the
    // output is changed only on success.
    virtual DkSmlReturn FetchData(unsigned int dieId, dravik_smi_opcode op, std::string& text) = 0;
    // Writes `text` + "\n": 3 absent, 4 unopenable, 5 refused by the driver.
    virtual DkSmlReturn SetData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) = 0;
    // The layout node's "active" file as one integer.
    virtual DkSmlReturn FetchNodeDataActive(int& active) = 0;
    // The layout node's "inactive_reason" (index 0) or "inactive_reasonN" file.
    virtual DkSmlReturn FetchNodeDataInactiveReason(unsigned int index, std::string& text) = 0;
    // Copies the device's smi paths and node path.
    virtual void UpdateDeviceProperties(IDkDevice* device) = 0;
    virtual DkSmlReturn WriteRegister(unsigned int dieId, unsigned long address, unsigned int value) = 0;
    virtual DkSmlReturn ReadRegister(unsigned int dieId, unsigned long address, std::string& text) = 0;
};

class DkLinuxDriverDataHandler final : public IDkDriverDataHandler {
public:
    DkSmlReturn FetchData(unsigned int dieId, dravik_smi_opcode op, std::string& text) override;
    DkSmlReturn SetData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) override;
    DkSmlReturn FetchNodeDataActive(int& active) override;
    DkSmlReturn FetchNodeDataInactiveReason(unsigned int index, std::string& text) override;
    void UpdateDeviceProperties(IDkDevice* device) override;
    DkSmlReturn WriteRegister(unsigned int dieId, unsigned long address, unsigned int value) override;
    DkSmlReturn ReadRegister(unsigned int dieId, unsigned long address, std::string& text) override;

    // Attribute path of a request: smi path of die 0 or 1, then the file name.
    std::string GetDriverInterfaceFile(unsigned int dieId, dravik_smi_opcode op) const;

private:
    // The device's directory descriptors (or ones opened from the paths it
    // reports, for devices that keep none): every request is one openat.
    std::shared_ptr<const DkDeviceDirs> m_dirs;
    std::string m_smiPath0;  // ends in "/smi/"
    std::string m_smiPath1;  // ends in "/smi1/"
    std::string m_nodePath;  // node root + node number
};

}  // namespace dksml
