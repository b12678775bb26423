// One discovered GPU PCI function (a physical device or a virtual function).
// Feature services reach the driver only through FetchDriverData /
// SetDriverData with a die index and a request number.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "dksml.h"
#include "driver/dk_opcode.h"

namespace dksml {

class IDkDriverDataHandler;
struct DkDeviceDirs;

// What discovery learns about a GPU before the device object exists.
struct DkSysInfo {
    std::string bdfId;
    uint32_t vendorId = 0;
    uint32_t deviceId = 0;
    uint32_t subsystemVendorId = 0;
    uint32_t subsystemDeviceId = 0;
    bool isVf = false;
};

// Compatibility-family PCI record, filled by GetPciInfo.
struct DkPciInfoRecord {
    std::string bdfId;
    uint32_t domain = 0, bus = 0, device = 0, function = 0;
    uint32_t vendorId = 0, deviceId = 0, subsystemVendorId = 0, subsystemDeviceId = 0;
};

// The declarations are grouped by who may use them. Features use identity,
// model predicates and driver access; the discovery-only section is for the
// system manager and the device factory, which build the object.
class IDkDevice {
public:
    virtual ~IDkDevice() = default;

    // ----- Identity ----------------------------------------------------------
    virtual std::string GetDeviceDir() const = 0;                   // search path + "/" + bus id
    virtual uint32_t GetDriverGpuId(unsigned int dieId) const = 0;
    virtual uint32_t GetBdfIdUint() const = 0;                      // bus<<8 | dev<<3 | fn (+domain<<16)
    virtual uint32_t GetDeviceId() const = 0;                       // the library's device index
    virtual uint32_t GetVendorId() const = 0;                       // PCI vendor id
    virtual uint32_t GetVendorDeviceId() const = 0;                 // PCI device id
    virtual uint32_t GetSubsystemDeviceId() const = 0;
    virtual uint32_t GetSubsystemVendorId() const = 0;
    virtual std::string GetBdfId() const = 0;
    virtual const DkSysInfo& GetSysInfo() const = 0;
    virtual DkSmlReturn GetPciInfo(DkPciInfoRecord* info) const = 0;
    virtual bool IsVf() const = 0;
    virtual bool IsPf() const = 0;
    virtual DkSmlDeviceBrand GetDeviceBrand() const = 0;
    virtual DkSmlReturn GetDeviceInfo(DkSmlDeviceInfo* info) const = 0;
    virtual std::string GetDeviceName() const = 0;
    virtual std::string GetDeviceUuid() const = 0;
    virtual DkSmlReturn GetBoardType(uint32_t* size, char* text) const = 0;
    virtual DkSmlIsaVersion GetIsaVersion() const = 0;
    virtual uint32_t GetDieCount() const = 0;
    virtual uint32_t GetDieId() const = 0;
    virtual std::vector<uint32_t> GetDpcIds() const = 0;
    virtual uint32_t GetApAvailableInfo() const = 0;
    virtual uint32_t GetNumOfVirtualizedDevice() const = 0;
    virtual uint32_t GetVfIndex() const = 0;
    virtual std::vector<uint32_t> GetVirtualDevices() const = 0;    // VF device indices
    virtual std::vector<uint32_t> GetVfList() const = 0;
    virtual IDkDevice* GetPfAncestor() const = 0;                   // nullptr when none
    virtual DkSmlReturn GetDeviceRealPath(char* path, uint32_t* size) const = 0;
    virtual DkSmlReturn GetDeviceState(int32_t* state) = 0;
    virtual DkSmlReturn GetDeviceUnavailableReason(DkSmlDeviceUnavailableReasonInfo* info) = 0;
    virtual DkSmlReturn GetDieUnavailableReason(unsigned int dieId, DkSmlDeviceUnavailableReasonInfo* info) = 0;
    // Extra identity used by the compatibility family and tools.
    virtual uint32_t GetRenderId() const = 0;
    virtual uint32_t GetCardId() const = 0;
    virtual uint32_t GetNodeId() const = 0;

    // ----- Model predicates --------------------------------------------------
    virtual bool IsDkqHarvest() const = 0;
    virtual bool IsDkq7e() const = 0;
    virtual bool IsDkq8() const = 0;
    virtual bool IsDkq9() const = 0;
    virtual bool IsDkk2() const = 0;
    virtual bool IsDkk3() const = 0;
    virtual bool IsDkk6() const = 0;
    virtual bool IsDkk6u() const = 0;
    virtual bool IsDkk6Series() const = 0;
    virtual bool IsDkMCM() const = 0;

    // ----- Driver access -----------------------------------------------------
    // Features read and write the driver's attributes through these; the paths
    // remain for the fixed-name files that are not requests.
    virtual DkSmlReturn FetchDriverData(unsigned int dieId, dravik_smi_opcode op, std::string& text) = 0;
    virtual DkSmlReturn SetDriverData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) = 0;
    // Requests whose file name holds an index (a slice id, a layout node id),
    // and the names in a request's directory; see IDkDriverDataHandler.
    virtual DkSmlReturn FetchIndexedDriverData(unsigned int /*index*/, dravik_smi_opcode /*op*/, std::string& /*text*/) {
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    virtual DkSmlReturn SetIndexedDriverData(unsigned int /*index*/, dravik_smi_opcode /*op*/,
                                             const std::string& /*text*/) {
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    virtual DkSmlReturn ListDriverData(unsigned int /*index*/, dravik_smi_opcode /*op*/,
                                       std::vector<std::string>& /*names*/) {
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    virtual DkSmlReturn SetRegisterData(unsigned int dieId, unsigned long address, unsigned int value) = 0;
    virtual DkSmlReturn GetRegisterData(unsigned int dieId, unsigned long address, unsigned int* value) = 0;
    virtual std::string GetSmiPath(unsigned int dieId) const = 0;   // ".../smi/" or ".../smi1/"
    virtual std::string GetNodePath() const = 0;
    // The root and directory descriptors the device was discovered with;
    // null for devices that keep none (the handler then opens their paths).
    virtual std::shared_ptr<const DkDeviceDirs> GetDeviceDirs() const { return nullptr; }

    // ----- Used by discovery only --------------------------------------------
    virtual DkSmlReturn Initialize() = 0;                           // reads ids, dies, ISA, brand, name
    virtual void SetAttributeWithHandler(const DkSysInfo& info, std::shared_ptr<IDkDriverDataHandler> handler) = 0;
    virtual void SetDriverDataHandler(std::shared_ptr<IDkDriverDataHandler> handler) = 0;
    virtual void SetBdfId(const std::string& bdfId) = 0;
    virtual void SetDeviceId(uint32_t index) = 0;
    virtual void SetDeviceGpuId(uint32_t gpuId) = 0;
    virtual void SetDeviceNodeId(uint32_t nodeId) = 0;
    virtual void SetDeviceRenderId(uint32_t renderId) = 0;
    virtual void SetDeviceCardId(uint32_t cardId) = 0;
    virtual void SetDeviceUuid(const std::string& uuid) = 0;
    virtual void SetDeviceDpcIds(const std::vector<uint32_t>& dpcIds) = 0;
    virtual void SetDeviceNodePath(const std::string& nodePath) = 0;
    virtual void SetDeviceVirtualizationMode(DkSmlDeviceVirtualizationMode mode) = 0;
    virtual void SetDeviceBrand() = 0;
    virtual void SetDieCount() = 0;
    virtual DkSmlReturn SetDieId() = 0;
    virtual void AddVirtualizedDevice(uint32_t vfIndex, std::shared_ptr<IDkDevice> vf) = 0;
    virtual void AddVfList(uint32_t vfDeviceIndex) = 0;
};

}  // namespace dksml
