// Per-device access to the driver's attribute files. A request identifier and
// a die index become a read or write of a file in the device's "/smi/" (die 0)
// or "/smi1/" (any other die) directory; the request table places the few
// files the driver keeps elsewhere (the PCI function's directory, the layout
// nodes, the debug directory, the firmware tables).
//
// The handler knows nothing of devices: it is given a DkDriverDataSource (the
// device's paths and directory descriptors) and names requests through the
// request table. The device layer builds that source (UpdateDeviceProperties
// is defined there, in core/dk_driver_data_source.cpp).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dksml.h"
#include "driver/dk_dir_fd.h"
#include "driver/dk_driver_interface_manager.h"
#include "driver/dk_opcode.h"

namespace dksml {

class IDkDevice;

// Everything a handler reads through, taken from its device.
struct DkDriverDataSource {
    std::string smiPath0;  // ends in "/smi/"
    std::string smiPath1;  // ends in "/smi1/"
    std::string nodePath;  // node root + node number
    std::string functionPath;  // the PCI function's directory
    // Open directories of the paths above; null to have the handler open them.
    std::shared_ptr<const DkDriverDirs> dirs;
    // Directory of a place the device does not keep open (the layout root,
    // the driver's debug directory, the firmware tables), asked at each access
    // so that it follows the host root in force.
    std::string (*placeDir)(DkRequestPlace place) = nullptr;
};

class IDkDriverDataHandler {
public:
    virtual ~IDkDriverDataHandler() = default;
    // Whole text of the request's attribute: DK_SML_ERROR_NOT_SUPPORTED absent,
    // DK_SML_ERROR_SYSFS unopenable; the output is changed only on success.
    // The die selects the directory of smi requests only.
    virtual DkSmlReturn FetchData(unsigned int dieId, dravik_smi_opcode op, std::string& text) = 0;
    // The same for a request whose name holds an index (a slice or node id).
    virtual DkSmlReturn FetchIndexedData(unsigned int index, dravik_smi_opcode op, std::string& text) = 0;
    // Writes `text` + "\n" to a request whose name holds an index; statuses as SetData.
    virtual DkSmlReturn SetIndexedData(unsigned int index, dravik_smi_opcode op, const std::string& text) = 0;
    // Names in the request's directory, "." and ".." left out, in no set
    // order: DK_SML_ERROR_NOT_SUPPORTED absent, DK_SML_ERROR_SYSFS unlistable.
    virtual DkSmlReturn ListData(unsigned int index, dravik_smi_opcode op, std::vector<std::string>& names) = 0;
    // Writes `text` + "\n": DK_SML_ERROR_NOT_SUPPORTED absent,
    // DK_SML_ERROR_SYSFS unopenable, DK_SML_ERROR_SYSFS_WRITE refused by the driver.
    virtual DkSmlReturn SetData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) = 0;
    // The layout node's "active" file as one integer.
    virtual DkSmlReturn FetchNodeDataActive(int& active) = 0;
    // The layout node's "inactive_reason" (index 0) or "inactive_reasonN" file.
    virtual DkSmlReturn FetchNodeDataInactiveReason(unsigned int index, std::string& text) = 0;
    // Copies the device's smi paths and node path (through Attach).
    virtual void UpdateDeviceProperties(IDkDevice* device) = 0;
    virtual DkSmlReturn WriteRegister(unsigned int dieId, unsigned long address, unsigned int value) = 0;
    virtual DkSmlReturn ReadRegister(unsigned int dieId, unsigned long address, std::string& text) = 0;
};

class DkLinuxDriverDataHandler final : public IDkDriverDataHandler {
public:
    DkSmlReturn FetchData(unsigned int dieId, dravik_smi_opcode op, std::string& text) override;
    DkSmlReturn FetchIndexedData(unsigned int index, dravik_smi_opcode op, std::string& text) override;
    DkSmlReturn ListData(unsigned int index, dravik_smi_opcode op, std::vector<std::string>& names) override;
    DkSmlReturn SetIndexedData(unsigned int index, dravik_smi_opcode op, const std::string& text) override;
    DkSmlReturn SetData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) override;
    DkSmlReturn FetchNodeDataActive(int& active) override;
    DkSmlReturn FetchNodeDataInactiveReason(unsigned int index, std::string& text) override;
    void UpdateDeviceProperties(IDkDevice* device) override;
    DkSmlReturn WriteRegister(unsigned int dieId, unsigned long address, unsigned int value) override;
    DkSmlReturn ReadRegister(unsigned int dieId, unsigned long address, std::string& text) override;

    // Takes the paths and directories to read through; opens the directories
    // from the paths when the source has none.
    void Attach(DkDriverDataSource source);

    // Attribute path of a request: smi path of die 0 or 1, then the file name.
    std::string GetDriverInterfaceFile(unsigned int dieId, dravik_smi_opcode op) const;

private:
    std::string RegisterDumpPath() const;
    std::string DebugDir() const;
    // The directory and file name a request addresses: `scratch` holds a
    // directory opened for this access only, `name` the formatted name.
    struct RequestFile {
        DkDirFd scratch;
        int dirFd = -1;
        char name[128];
    };
    // The die's "smi/" (die 0) or "smi1/" directory, opened by path into
    // `scratch` when the device did not keep it.
    const DkDirFd& DieDir(unsigned int dieId, DkDirFd& scratch) const;
    DkSmlReturn Resolve(unsigned int dieId, unsigned int index, dravik_smi_opcode op, RequestFile& file) const;
    // Writes `text` to the request's file by the table's create and newline rules.
    DkSmlReturn WriteRequest(unsigned int dieId, unsigned int index, dravik_smi_opcode op, const std::string& text);

    // The device's directory descriptors (or ones opened from the paths it
    // reports, for devices that keep none): every request is one openat.
    std::shared_ptr<const DkDriverDirs> m_dirs;
    std::string m_smiPath0;  // ends in "/smi/"
    std::string m_smiPath1;  // ends in "/smi1/"
    std::string m_nodePath;  // node root + node number
    std::string m_functionPath;
    std::string (*m_placeDir)(DkRequestPlace place) = nullptr;
};

}  // namespace dksml
