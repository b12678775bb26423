// A device that serves canned attribute text per (die, request), records
// every write and every path query, for testing the driver layer and the
// feature services without a driver tree.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/dk_pci_ids.h"
#include "core/idk_device.h"

namespace dksml::test {

struct DriverWrite {
    unsigned int die;
    dravik_smi_opcode op;
    std::string text;
};

class FakeDevice : public IDkDevice {
public:
    FakeDevice() = default;
    FakeDevice(std::string smi0, std::string smi1, std::string node)
        : smiPath(std::move(smi0)), smiPath1(std::move(smi1)), nodePath(std::move(node)) {}

    // Attribute text of one die; a request with no text answers
    // DK_SML_ERROR_NOT_SUPPORTED, as an absent attribute does.
    void Serve(unsigned int die, dravik_smi_opcode op, std::string text) { m_texts[{die, op}] = std::move(text); }
    void Fail(unsigned int die, dravik_smi_opcode op, DkSmlReturn code) { m_failures[{die, op}] = code; }

    uint32_t vendorId = c_makerVendorId;
    DkSmlDeviceBrand brand = DK_SML_BRAND_DKK;
    bool isVf = false;
    uint32_t dieCount = 1;
    std::string smiPath = "/nonexistent/smi/";
    std::string smiPath1;  // die 1 and above; empty means the die-0 path
    std::string nodePath;
    DkSmlReturn writeResult = DK_SML_SUCCESS;

    std::vector<DriverWrite> writes;
    int fetchCount = 0;
    mutable std::vector<unsigned int> smiQueries;
    mutable int nodeQueries = 0;

    // ----- Identity ---------------------------------------------------------
    // Vendor, brand, VF role and die count answer from the fields above; the
    // rest is identity these tests never ask for.
    std::string GetDeviceDir() const override { return {}; }
    uint32_t GetDriverGpuId(unsigned int) const override { return 0; }
    uint32_t GetBdfIdUint() const override { return 0; }
    uint32_t GetDeviceId() const override { return 0; }
    uint32_t GetVendorId() const override { return vendorId; }
    uint32_t GetVendorDeviceId() const override { return 0; }
    uint32_t GetSubsystemDeviceId() const override { return 0; }
    uint32_t GetSubsystemVendorId() const override { return 0; }
    std::string GetBdfId() const override { return {}; }
    const DkSysInfo& GetSysInfo() const override { return m_sysInfo; }
    DkSmlReturn GetPciInfo(DkPciInfoRecord*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    bool IsVf() const override { return isVf; }
    bool IsPf() const override { return !isVf; }
    DkSmlDeviceBrand GetDeviceBrand() const override { return brand; }
    DkSmlReturn GetDeviceInfo(DkSmlDeviceInfo*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    std::string GetDeviceName() const override { return {}; }
    std::string GetDeviceUuid() const override { return {}; }
    DkSmlReturn GetBoardType(uint32_t*, char*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlIsaVersion GetIsaVersion() const override { return {}; }
    uint32_t GetDieCount() const override { return dieCount; }
    uint32_t GetDieId() const override { return 0; }
    std::vector<uint32_t> GetDpcIds() const override { return {}; }
    uint32_t GetApAvailableInfo() const override { return 0; }
    uint32_t GetNumOfVirtualizedDevice() const override { return 0; }
    uint32_t GetVfIndex() const override { return 0; }
    std::vector<uint32_t> GetVirtualDevices() const override { return {}; }
    std::vector<uint32_t> GetVfList() const override { return {}; }
    IDkDevice* GetPfAncestor() const override { return nullptr; }
    DkSmlReturn GetDeviceRealPath(char*, uint32_t*) const override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn GetDeviceState(int32_t*) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn GetDeviceUnavailableReason(DkSmlDeviceUnavailableReasonInfo*) override {
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    DkSmlReturn GetDieUnavailableReason(unsigned int, DkSmlDeviceUnavailableReasonInfo*) override {
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    uint32_t GetRenderId() const override { return 0; }
    uint32_t GetCardId() const override { return 0; }
    uint32_t GetNodeId() const override { return 0; }

    // ----- Model predicates -------------------------------------------------
    bool IsDkqHarvest() const override { return false; }
    bool IsDkq7e() const override { return false; }
    bool IsDkq8() const override { return false; }
    bool IsDkq9() const override { return false; }
    bool IsDkk2() const override { return false; }
    bool IsDkk3() const override { return false; }
    bool IsDkk6() const override { return false; }
    bool IsDkk6u() const override { return false; }
    bool IsDkk6Series() const override { return false; }
    bool IsDkMCM() const override { return false; }

    // ----- Driver access ----------------------------------------------------
    DkSmlReturn FetchDriverData(unsigned int dieId, dravik_smi_opcode op, std::string& text) override {
        ++fetchCount;
        if (auto failure = m_failures.find({dieId, op}); failure != m_failures.end()) return failure->second;
        auto found = m_texts.find({dieId, op});
        if (found == m_texts.end()) return DK_SML_ERROR_NOT_SUPPORTED;
        text = found->second;
        return DK_SML_SUCCESS;
    }
    DkSmlReturn SetDriverData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) override {
        writes.push_back({dieId, op, text});
        return writeResult;
    }
    DkSmlReturn SetRegisterData(unsigned int, unsigned long, unsigned int) override { return DK_SML_ERROR_NOT_SUPPORTED; }
    DkSmlReturn GetRegisterData(unsigned int, unsigned long, unsigned int*) override {
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    std::string GetSmiPath(unsigned int dieId) const override {
        smiQueries.push_back(dieId);
        return dieId == 0 || smiPath1.empty() ? smiPath : smiPath1;
    }
    std::string GetNodePath() const override {
        ++nodeQueries;
        return nodePath;
    }

    // ----- Used by discovery only -------------------------------------------
    DkSmlReturn Initialize() override { return DK_SML_SUCCESS; }
    void SetAttributeWithHandler(const DkSysInfo&, std::shared_ptr<IDkDriverDataHandler>) override {}
    void SetDriverDataHandler(std::shared_ptr<IDkDriverDataHandler>) override {}
    void SetBdfId(const std::string&) override {}
    void SetDeviceId(uint32_t) override {}
    void SetDeviceGpuId(uint32_t) override {}
    void SetDeviceNodeId(uint32_t) override {}
    void SetDeviceRenderId(uint32_t) override {}
    void SetDeviceCardId(uint32_t) override {}
    void SetDeviceUuid(const std::string&) override {}
    void SetDeviceDpcIds(const std::vector<uint32_t>&) override {}
    void SetDeviceNodePath(const std::string&) override {}
    void SetDeviceVirtualizationMode(DkSmlDeviceVirtualizationMode) override {}
    void SetDeviceBrand() override {}
    void SetDieCount() override {}
    DkSmlReturn SetDieId() override { return DK_SML_SUCCESS; }
    void AddVirtualizedDevice(uint32_t, std::shared_ptr<IDkDevice>) override {}
    void AddVfList(uint32_t) override {}

private:
    std::map<std::pair<unsigned int, dravik_smi_opcode>, std::string> m_texts;
    std::map<std::pair<unsigned int, dravik_smi_opcode>, DkSmlReturn> m_failures;
    DkSysInfo m_sysInfo;
};

}  // namespace dksml::test
