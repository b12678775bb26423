// A stand-in IDkDevice for the driver access layer tests and benchmarks: it
// answers only the three path queries of UpdateDeviceProperties.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/idk_device.h"

namespace dksml::test {

// A device that only answers the three path queries of UpdateDeviceProperties
// and records which ones were asked.
class FakeDevice final : public IDkDevice {
public:
    FakeDevice(std::string smi0, std::string smi1, std::string node)
        : m_smi0(std::move(smi0)), m_smi1(std::move(smi1)), m_node(std::move(node)) {}

    std::string GetSmiPath(unsigned int dieId) const override {
        m_smiQueries.push_back(dieId);
        return dieId == 0 ? m_smi0 : m_smi1;
    }
    std::string GetNodePath() const override {
        ++m_nodeQueries;
        return m_node;
    }

    mutable std::vector<unsigned int> m_smiQueries;
    mutable int m_nodeQueries = 0;

    // Everything else is unused by the handler.
    std::string GetDeviceDir() const override { return {}; }
    uint32_t GetDriverGpuId(unsigned int) const override { return {}; }
    uint32_t GetBdfIdUint() const override { return {}; }
    uint32_t GetDeviceId() const override { return {}; }
    uint32_t GetVendorId() const override { return {}; }
    bool IsVf() const override { return false; }
    bool IsPf() const override { return false; }
    DkSmlDeviceBrand GetDeviceBrand() const override { return {}; }
    DkSmlReturn GetDeviceInfo(DkSmlDeviceInfo*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    uint32_t GetNumOfVirtualizedDevice() const override { return {}; }
    uint32_t GetVfIndex() const override { return {}; }
    std::vector<uint32_t> GetDpcIds() const override { return {}; }
    IDkDevice* GetPfAncestor() const override { return nullptr; }
    bool IsDkqHarvest() const override { return false; }
    bool IsDkq7e() const override { return false; }
    bool IsDkk2() const override { return false; }
    bool IsDkk3() const override { return false; }
    bool IsDkMCM() const override { return false; }
    DkSmlReturn GetDeviceState(int32_t*) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    uint32_t GetDieCount() const override { return {}; }
    uint32_t GetDieId() const override { return {}; }
    DkSmlIsaVersion GetIsaVersion() const override { return {}; }
    bool IsDkq9() const override { return false; }
    bool IsDkk6() const override { return false; }
    bool IsDkk6u() const override { return false; }
    bool IsDkk6Series() const override { return false; }
    bool IsDkq8() const override { return false; }
    DkSmlReturn GetBoardType(uint32_t*, char*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn FetchDriverData(unsigned int, dravik_smi_opcode, std::string&) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn SetDriverData(unsigned int, dravik_smi_opcode, const std::string&) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn SetRegisterData(unsigned int, unsigned long, unsigned int) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn GetRegisterData(unsigned int, unsigned long, unsigned int*) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    const DkSysInfo& GetSysInfo() const override { return m_sysInfo; }
    DkSmlReturn Initialize() override { return DK_SML_ERROR_NOT_SUPPORTED; }
    uint32_t GetVendorDeviceId() const override { return {}; }
    void SetDeviceId(uint32_t) override {}
    void SetDeviceGpuId(uint32_t) override {}
    void SetDeviceNodeId(uint32_t) override {}
    void SetDeviceRenderId(uint32_t) override {}
    void SetDeviceCardId(uint32_t) override {}
    void SetDeviceUuid(const std::string&) override {}
    void SetDeviceDpcIds(const std::vector<uint32_t>&) override {}
    void SetDeviceNodePath(const std::string&) override {}
    void SetDeviceVirtualizationMode(DkSmlDeviceVirtualizationMode) override {}
    void SetDieCount() override {}
    void SetBdfId(const std::string&) override {}
    DkSmlReturn SetDieId() override { return DK_SML_ERROR_NOT_SUPPORTED; }
    std::string GetDeviceUuid() const override { return {}; }
    std::vector<uint32_t> GetVirtualDevices() const override { return {}; }
    uint32_t GetApAvailableInfo() const override { return {}; }
    DkSmlReturn GetPciInfo(DkPciInfoRecord*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    std::string GetBdfId() const override { return {}; }
    uint32_t GetSubsystemDeviceId() const override { return {}; }
    uint32_t GetSubsystemVendorId() const override { return {}; }
    void AddVirtualizedDevice(uint32_t, std::shared_ptr<IDkDevice>) override {}
    void AddVfList(uint32_t) override {}
    std::vector<uint32_t> GetVfList() const override { return {}; }
    std::string GetDeviceName() const override { return {}; }
    void SetDeviceBrand() override {}
    DkSmlReturn GetDeviceRealPath(char*, uint32_t*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn GetDeviceUnavailableReason(DkSmlDeviceUnavailableReasonInfo*) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn GetDieUnavailableReason(unsigned int, DkSmlDeviceUnavailableReasonInfo*) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    void SetDriverDataHandler(std::shared_ptr<IDkDriverDataHandler>) override {}
    void SetAttributeWithHandler(const DkSysInfo&, std::shared_ptr<IDkDriverDataHandler>) override {}
    uint32_t GetRenderId() const override { return {}; }
    uint32_t GetCardId() const override { return {}; }
    uint32_t GetNodeId() const override { return {}; }

private:
    std::string m_smi0, m_smi1, m_node;
    DkSysInfo m_sysInfo;
};

}  // namespace dksml::test
