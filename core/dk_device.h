// The device object: identity, dies, model and brand of one GPU PCI function,
// and the driver data handler through which every service reads and writes
// the driver's attribute files.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/dk_discovered_dirs.h"
#include "core/dk_host_root.h"
#include "core/idk_device.h"

namespace dksml {

class DkDevice final : public IDkDevice {
public:
    // `searchPath` is the host path the device directory is built under;
    // `root` the host root of the discovery that creates the device (the
    // current one when null).
    explicit DkDevice(std::string searchPath, std::shared_ptr<const DkHostRoot> root = nullptr);

    std::string GetSmiPath(unsigned int dieId) const override;
    std::string GetDeviceDir() const override;
    uint32_t GetDriverGpuId(unsigned int dieId) const override;
    uint32_t GetBdfIdUint() const override;
    uint32_t GetDeviceId() const override;
    uint32_t GetVendorId() const override;
    bool IsVf() const override;
    bool IsPf() const override;
    DkSmlDeviceBrand GetDeviceBrand() const override;
    DkSmlReturn GetDeviceInfo(DkSmlDeviceInfo* info) const override;
    uint32_t GetNumOfVirtualizedDevice() const override;
    uint32_t GetVfIndex() const override;
    std::string GetNodePath() const override;
    std::vector<uint32_t> GetDpcIds() const override;
    IDkDevice* GetPfAncestor() const override;
    bool IsDkqHarvest() const override;
    bool IsDkq7e() const override;
    bool IsDkk2() const override;
    bool IsDkk3() const override;
    bool IsDkMCM() const override;
    DkSmlReturn GetDeviceState(int32_t* state) override;
    uint32_t GetDieCount() const override;
    uint32_t GetDieId() const override;
    DkSmlIsaVersion GetIsaVersion() const override;
    bool IsDkq9() const override;
    bool IsDkk6() const override;
    bool IsDkk6u() const override;
    bool IsDkk6Series() const override;
    bool IsDkq8() const override;
    DkSmlReturn GetBoardType(uint32_t* size, char* text) const override;

    DkSmlReturn FetchDriverData(unsigned int dieId, dravik_smi_opcode op, std::string& text) override;
    DkSmlReturn SetDriverData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) override;
    DkSmlReturn FetchIndexedDriverData(unsigned int index, dravik_smi_opcode op, std::string& text) override;
    DkSmlReturn ListDriverData(unsigned int index, dravik_smi_opcode op, std::vector<std::string>& names) override;
    DkSmlReturn SetIndexedDriverData(unsigned int index, dravik_smi_opcode op, const std::string& text) override;
    DkSmlReturn SetRegisterData(unsigned int dieId, unsigned long address, unsigned int value) override;
    DkSmlReturn GetRegisterData(unsigned int dieId, unsigned long address, unsigned int* value) override;

    const DkSysInfo& GetSysInfo() const override;
    DkSmlReturn Initialize() override;
    uint32_t GetVendorDeviceId() const override;
    void SetDeviceId(uint32_t index) override;
    void SetDeviceGpuId(uint32_t gpuId) override;
    void SetDeviceNodeId(uint32_t nodeId) override;
    void SetDeviceRenderId(uint32_t renderId) override;
    void SetDeviceCardId(uint32_t cardId) override;
    void SetDeviceUuid(const std::string& uuid) override;
    void SetDeviceDpcIds(const std::vector<uint32_t>& dpcIds) override;
    void SetDeviceNodePath(const std::string& nodePath) override;
    void SetDeviceVirtualizationMode(DkSmlDeviceVirtualizationMode mode) override;
    void SetDieCount() override;
    void SetBdfId(const std::string& bdfId) override;
    DkSmlReturn SetDieId() override;
    std::string GetDeviceUuid() const override;
    std::vector<uint32_t> GetVirtualDevices() const override;
    uint32_t GetApAvailableInfo() const override;
    DkSmlReturn GetPciInfo(DkPciInfoRecord* info) const override;
    std::string GetBdfId() const override;
    uint32_t GetSubsystemDeviceId() const override;
    uint32_t GetSubsystemVendorId() const override;
    void AddVirtualizedDevice(uint32_t vfIndex, std::shared_ptr<IDkDevice> vf) override;
    void AddVfList(uint32_t vfDeviceIndex) override;
    std::vector<uint32_t> GetVfList() const override;
    std::string GetDeviceName() const override;
    void SetDeviceBrand() override;
    DkSmlReturn GetDeviceRealPath(char* path, uint32_t* size) const override;
    DkSmlReturn GetDeviceUnavailableReason(DkSmlDeviceUnavailableReasonInfo* info) override;
    DkSmlReturn GetDieUnavailableReason(unsigned int dieId, DkSmlDeviceUnavailableReasonInfo* info) override;
    void SetDriverDataHandler(std::shared_ptr<IDkDriverDataHandler> handler) override;
    void SetAttributeWithHandler(const DkSysInfo& info, std::shared_ptr<IDkDriverDataHandler> handler) override;

    uint32_t GetRenderId() const override;
    uint32_t GetCardId() const override;
    uint32_t GetNodeId() const override;
    std::shared_ptr<const DkDeviceDirs> GetDeviceDirs() const override;

    // Driver GPU id of die 1 on a two-die device (die 0 uses SetDeviceGpuId).
    void SetSecondDieGpuId(uint32_t gpuId);
    // The physical function hosting this virtual function and the number the
    // physical function lists it under ("VF #n").
    void SetPfAncestor(std::weak_ptr<IDkDevice> pf, uint32_t vfIndex);
    // The layout node's "ap_mask" property (available compute units).
    void SetApMask(uint64_t apMask);
    // Directories discovery opened already; the next opening of the
    // device's directories uses those that are open instead of opening them
    // again from the root.
    void AdoptDirectories(DkDiscoveredDirs&& dirs);

private:
    void SetDeviceName();
    void ReadIsaVersion();
    void ReadBoardType();
    // Opens the device, smi and node directories once, relative to the root.
    void OpenDirectories();
    // A file of die 0's "smi/" directory, through the kept descriptor or by path.
    DkSmlReturn ReadSmiFile(const char* name, std::string& text) const;

    std::shared_ptr<const DkHostRoot> m_root;
    std::shared_ptr<const DkDeviceDirs> m_dirs;  // shared with the handler
    DkDiscoveredDirs m_adopted;                   // until OpenDirectories takes them
    std::string m_searchPath;
    std::string m_deviceDir;       // host path: search path + "/" + bus id
    DkSysInfo m_sysInfo;
    uint32_t m_bdfIdUint = 0;
    uint32_t m_index = UINT32_MAX;
    uint32_t m_gpuId = 0;
    uint32_t m_secondDieGpuId = 0;
    uint32_t m_nodeId = 0;
    std::string m_uuid;
    uint32_t m_renderId = 0;
    uint32_t m_cardId = 0;
    std::string m_nodePath;        // host path; empty without a layout node
    std::vector<uint32_t> m_dpcIds;
    uint64_t m_apMask = 0;
    DkSmlDeviceVirtualizationMode m_virtualizationMode = DK_SML_VIRTUALIZATION_MODE_NONE;
    std::vector<uint32_t> m_vfList;
    std::map<uint32_t, std::shared_ptr<IDkDevice>> m_virtualDevices;  // VF number -> VF
    std::weak_ptr<IDkDevice> m_pfAncestor;  // weak: the physical function owns its VFs
    uint32_t m_vfIndex = 0;
    uint32_t m_dieCount = 1;
    uint32_t m_dieId = 0;
    DkSmlIsaVersion m_isaVersion{};
    DkSmlDeviceBrand m_brand = DK_SML_BRAND_UNKNOWN;
    uint32_t m_boardType = 0;
    std::string m_name;
    std::shared_ptr<IDkDriverDataHandler> m_handler;
};

}  // namespace dksml
