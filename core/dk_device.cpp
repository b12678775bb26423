#include "core/dk_device.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "core/dk_bdf.h"
#include "core/dk_device_tables.h"
#include "core/dk_file_text.h"
#include "core/dk_host_root.h"
#include "core/dk_pci_ids.h"
#include "driver/dk_driver_data_handler.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr const char* c_cardNameFile = "showcardname";
constexpr const char* c_topologyFile = "showtopology";
constexpr std::string_view c_dieIdKey = "die_id";
constexpr const char* c_vbiosIncompatibleText = "Driver And Vbios Compatibility Check Failed";

// The library's text rule: copy when the caller's size is larger than the
// text; the size always becomes the text length plus one.
DkSmlReturn CopyText(std::string_view text, char* buffer, uint32_t* size) {
    if (size == nullptr || buffer == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    uint32_t capacity = *size;
    *size = static_cast<uint32_t>(text.size() + 1);
    if (capacity <= text.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return DK_SML_SUCCESS;
}

// "key: value" text after the first ':' of the first line that holds `key`.
bool FindValueOfKey(std::string_view text, std::string_view key, std::string_view& value) {
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        if (line.find(key) == std::string_view::npos) continue;
        value = TrimView(ExtractValueStrByColon(line), " \t\r");
        return true;
    }
    return false;
}

// "6.1" -> {6, 1}.
bool ParseIsaVersion(std::string_view text, DkSmlIsaVersion& isa) {
    size_t dot = text.find('.');
    if (dot == std::string_view::npos) return false;
    unsigned int major = 0, minor = 0;
    if (!IsNumber(text.substr(0, dot)) || !IsNumber(text.substr(dot + 1))) return false;
    if (!stoui_nt(text.substr(0, dot), major) || !stoui_nt(text.substr(dot + 1), minor)) return false;
    isa = {major, minor};
    return true;
}

// A register value: the last token of the driver's text, hexadecimal with or
// without "0x" (the dump echoes the address before the value on some drivers).
bool ParseRegisterValue(std::string_view text, unsigned int& value) {
    text = TrimView(text, " \t\r\n");
    size_t start = text.find_last_of(" \t\r\n:");
    std::string_view token = start == std::string_view::npos ? text : text.substr(start + 1);
    token = TrimView(token, " \t");
    if (token.size() > 2 && token[0] == '0' && (token[1] == 'x' || token[1] == 'X')) token.remove_prefix(2);
    if (token.empty() || token.size() > 8) return false;
    for (char c : token)
        if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
    return stoui_nt(token, value, 16);
}

void FillReason(DkSmlDeviceUnavailableReasonInfo* info, uint32_t reason, const char* text) {
    info->reason = reason;
    std::snprintf(info->reasonText, sizeof(info->reasonText), "%s", text);
}

}  // namespace

DkDevice::DkDevice(std::string searchPath, std::shared_ptr<const DkHostRoot> root)
    : m_root(root ? std::move(root) : CurrentHostRoot()), m_searchPath(std::move(searchPath)) {}

void DkDevice::AdoptDirectories(DkDiscoveredDirs&& dirs) { m_adopted = std::move(dirs); }

void DkDevice::OpenDirectories() {
    auto dirs = std::make_shared<DkDeviceDirs>();
    dirs->root = m_root;
    const bool adoptedFunction = m_adopted.function.IsOpen();
    dirs->function = adoptedFunction ? std::move(m_adopted.function) : m_root->OpenDir(m_deviceDir);
    // The die directories through the function's own: one lookup each instead
    // of the whole path and the bus link again.
    dirs->smi0 = adoptedFunction && m_adopted.smi0.IsOpen() ? std::move(m_adopted.smi0)
                                                             : dirs->function.OpenSubdir("smi");
    dirs->smi1 = dirs->function.OpenSubdir("smi1");
    if (!m_nodePath.empty())
        dirs->node = m_adopted.node.IsOpen() ? std::move(m_adopted.node) : m_root->OpenDir(m_nodePath);
    m_adopted = DkDiscoveredDirs{};
    // All opened before any is released, so that each one's presence is known;
    // the die directories first, since every telemetry query reads them.
    for (DkDirFd* dir : {&dirs->smi0, &dirs->smi1, &dirs->node, &dirs->function}) dir->KeepOrRelease();
    m_dirs = std::move(dirs);
}

DkSmlReturn DkDevice::ReadSmiFile(const char* name, std::string& text) const {
    if (m_dirs->smi0.IsOpen()) return ReadFileTextAt(m_dirs->smi0.Get(), name, text);  // no path to build
    DkDirFd scratch;
    return ReadFileTextAt(m_dirs->smi0.OrOpenedAt(GetSmiPath(0), scratch).Get(), name, text);
}

std::shared_ptr<const DkDeviceDirs> DkDevice::GetDeviceDirs() const { return m_dirs; }

// ----- paths and identity ----------------------------------------------------

std::string DkDevice::GetSmiPath(unsigned int dieId) const {
    return m_root->Path(m_deviceDir) + (dieId == 0 ? "/smi/" : "/smi1/");
}

std::string DkDevice::GetDeviceDir() const { return m_deviceDir; }

std::string DkDevice::GetNodePath() const { return m_nodePath.empty() ? std::string{} : m_root->Path(m_nodePath); }

// Drivers that publish one layout node per device give both dies its GPU id.
uint32_t DkDevice::GetDriverGpuId(unsigned int dieId) const {
    return dieId == 0 || m_secondDieGpuId == 0 ? m_gpuId : m_secondDieGpuId;
}
uint32_t DkDevice::GetBdfIdUint() const { return m_bdfIdUint; }
uint32_t DkDevice::GetDeviceId() const { return m_index; }
uint32_t DkDevice::GetVendorId() const { return m_sysInfo.vendorId; }
uint32_t DkDevice::GetVendorDeviceId() const { return m_sysInfo.deviceId; }
uint32_t DkDevice::GetSubsystemDeviceId() const { return m_sysInfo.subsystemDeviceId; }
uint32_t DkDevice::GetSubsystemVendorId() const { return m_sysInfo.subsystemVendorId; }
const DkSysInfo& DkDevice::GetSysInfo() const { return m_sysInfo; }
std::string DkDevice::GetBdfId() const { return m_sysInfo.bdfId; }
std::string DkDevice::GetDeviceUuid() const { return m_uuid; }
std::string DkDevice::GetDeviceName() const { return m_name; }
uint32_t DkDevice::GetRenderId() const { return m_renderId; }
uint32_t DkDevice::GetCardId() const { return m_cardId; }
uint32_t DkDevice::GetNodeId() const { return m_nodeId; }
std::vector<uint32_t> DkDevice::GetDpcIds() const { return m_dpcIds; }
// The available compute units: the low word of the layout node's "ap_mask".
uint32_t DkDevice::GetApAvailableInfo() const { return static_cast<uint32_t>(m_apMask); }

bool DkDevice::IsVf() const { return m_virtualizationMode == DK_SML_VIRTUALIZATION_MODE_VF; }
bool DkDevice::IsPf() const { return m_virtualizationMode == DK_SML_VIRTUALIZATION_MODE_PF; }

void DkDevice::SetDeviceId(uint32_t index) { m_index = index; }
void DkDevice::SetDeviceGpuId(uint32_t gpuId) { m_gpuId = gpuId; }
void DkDevice::SetSecondDieGpuId(uint32_t gpuId) { m_secondDieGpuId = gpuId; }
void DkDevice::SetDeviceNodeId(uint32_t nodeId) { m_nodeId = nodeId; }
void DkDevice::SetDeviceRenderId(uint32_t renderId) { m_renderId = renderId; }
void DkDevice::SetDeviceCardId(uint32_t cardId) { m_cardId = cardId; }
void DkDevice::SetDeviceUuid(const std::string& uuid) { m_uuid = uuid; }
void DkDevice::SetDeviceDpcIds(const std::vector<uint32_t>& dpcIds) { m_dpcIds = dpcIds; }
void DkDevice::SetDeviceNodePath(const std::string& nodePath) { m_nodePath = nodePath; }
void DkDevice::SetApMask(uint64_t apMask) { m_apMask = apMask; }
void DkDevice::SetDeviceVirtualizationMode(DkSmlDeviceVirtualizationMode mode) { m_virtualizationMode = mode; }

void DkDevice::SetBdfId(const std::string& bdfId) {
    m_sysInfo.bdfId = bdfId;
    m_deviceDir = m_searchPath + "/" + bdfId;
    DkBdf bdf;
    m_bdfIdUint = ParseBdf(bdfId, bdf) ? BdfToUint(bdf) : 0;
}

DkSmlReturn DkDevice::GetPciInfo(DkPciInfoRecord* info) const {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkBdf bdf;
    if (!ParseBdf(m_sysInfo.bdfId, bdf)) return DK_SML_ERROR_FAILURE;
    info->bdfId = m_sysInfo.bdfId;
    info->domain = bdf.domain;
    info->bus = bdf.bus;
    info->device = bdf.device;
    info->function = bdf.function;
    info->vendorId = m_sysInfo.vendorId;
    info->deviceId = m_sysInfo.deviceId;
    info->subsystemVendorId = m_sysInfo.subsystemVendorId;
    info->subsystemDeviceId = m_sysInfo.subsystemDeviceId;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDevice::GetDeviceInfo(DkSmlDeviceInfo* info) const {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (m_sysInfo.bdfId.empty()) return DK_SML_ERROR_NO_DEVICE;
    info->deviceIndex = m_index;
    std::snprintf(info->bdfId, sizeof(info->bdfId), "%s", m_sysInfo.bdfId.c_str());
    info->gpuId = m_gpuId;
    info->nodeId = m_nodeId;
    std::snprintf(info->uuid, sizeof(info->uuid), "%s", m_uuid.c_str());
    info->brand = m_brand;
    info->virtualizationMode = m_virtualizationMode;
    std::snprintf(info->deviceName, sizeof(info->deviceName), "%s", m_name.c_str());
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDevice::GetDeviceRealPath(char* path, uint32_t* size) const {
    if (path == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    // One readlinkat of the bus link: sysfs links point at real directories.
    char real[4096];
    const std::size_t length = m_root->ResolveLink(m_deviceDir, real, sizeof real);
    if (length == 0) return DK_SML_ERROR_SYSFS;
    return CopyText(std::string_view(real, length), path, size);
}

// ----- virtual functions -----------------------------------------------------

uint32_t DkDevice::GetNumOfVirtualizedDevice() const { return static_cast<uint32_t>(m_virtualDevices.size()); }
uint32_t DkDevice::GetVfIndex() const { return m_vfIndex; }

std::vector<uint32_t> DkDevice::GetVirtualDevices() const {
    std::vector<uint32_t> indices;
    indices.reserve(m_virtualDevices.size());
    for (const auto& [number, vf] : m_virtualDevices)
        if (vf) indices.push_back(vf->GetDeviceId());
    return indices;
}

void DkDevice::AddVirtualizedDevice(uint32_t vfIndex, std::shared_ptr<IDkDevice> vf) {
    m_virtualDevices[vfIndex] = std::move(vf);
}

void DkDevice::AddVfList(uint32_t vfDeviceIndex) { m_vfList.push_back(vfDeviceIndex); }
std::vector<uint32_t> DkDevice::GetVfList() const { return m_vfList; }

void DkDevice::SetPfAncestor(std::weak_ptr<IDkDevice> pf, uint32_t vfIndex) {
    m_pfAncestor = std::move(pf);
    m_vfIndex = vfIndex;
}

IDkDevice* DkDevice::GetPfAncestor() const { return m_pfAncestor.lock().get(); }

// ----- dies ------------------------------------------------------------------

void DkDevice::SetDieCount() {
    if (!m_dirs) OpenDirectories();
    m_dieCount = m_dirs->smi1.IsPresent() ? 2 : 1;
}
uint32_t DkDevice::GetDieCount() const { return m_dieCount; }
uint32_t DkDevice::GetDieId() const { return m_dieId; }

DkSmlReturn DkDevice::SetDieId() {
    if (IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    if (!m_dirs) OpenDirectories();
    std::string text;
    if (ReadSmiFile(c_topologyFile, text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    std::string_view value;
    unsigned int dieId = 0;
    if (!FindValueOfKey(text, c_dieIdKey, value) || !stoui_nt(value, dieId)) return DK_SML_ERROR_SYSFS;
    m_dieId = dieId;
    return DK_SML_SUCCESS;
}

// ----- model, brand, name ----------------------------------------------------

DkSmlIsaVersion DkDevice::GetIsaVersion() const { return m_isaVersion; }
DkSmlDeviceBrand DkDevice::GetDeviceBrand() const { return m_brand; }

bool DkDevice::IsDkqHarvest() const { return IsModel(DkModel::DkqHarvest, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkq7e() const { return IsModel(DkModel::Dkq7e, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkq8() const { return IsModel(DkModel::Dkq8, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkq9() const { return IsModel(DkModel::Dkq9, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkk2() const { return IsModel(DkModel::Dkk2, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkk3() const { return IsModel(DkModel::Dkk3, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkk6() const { return IsModel(DkModel::Dkk6, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkk6u() const { return IsModel(DkModel::Dkk6u, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkk6Series() const { return IsModel(DkModel::Dkk6Series, m_sysInfo.deviceId, m_isaVersion); }
bool DkDevice::IsDkMCM() const { return IsModel(DkModel::DkMcm, m_sysInfo.deviceId, m_isaVersion); }

void DkDevice::ReadIsaVersion() {
    std::string text;
    std::string_view value;
    if (FetchDriverData(0, DRAVIK_SMI_SHOWISAVERSION, text) != DK_SML_SUCCESS) return;
    if (FindValueOfKey(text, "isa version", value)) ParseIsaVersion(value, m_isaVersion);
}

void DkDevice::ReadBoardType() {
    std::string text;
    std::string_view value;
    if (FetchDriverData(0, DRAVIK_SMI_SHOWBOARDTYPE, text) != DK_SML_SUCCESS) return;
    if (!FindValueOfKey(text, "board type", value)) return;
    bool hex = value.size() > 2 && value[0] == '0' && (value[1] == 'x' || value[1] == 'X');
    unsigned int boardType = 0;
    if (stoui_nt(hex ? value.substr(2) : value, boardType, hex ? 16 : 10)) m_boardType = boardType;
}

void DkDevice::SetDeviceBrand() {
    if (IsXSeriesIsaVersion(m_isaVersion)) {
        m_brand = DK_SML_BRAND_DKK_X;
    } else if (auto byIsa = GetBrandByIsaVersion(m_isaVersion)) {
        m_brand = *byIsa;
    } else if (auto byId = GetBrandByPciDeviceId(m_sysInfo.deviceId)) {
        m_brand = *byId;
    } else {
        m_brand = DK_SML_BRAND_UNKNOWN;
    }
}

// An OEM build names its boards itself, so the site override does not apply
// there. An empty first line counts as no name.
void DkDevice::SetDeviceName() {
    if (!c_vendorFlag) {
        m_name = m_root->SiteChipName();
        if (!m_name.empty()) return;
    }
    if (!m_dirs) OpenDirectories();
    std::string text;
    std::string_view line;
    if (ReadSmiFile(c_cardNameFile, text) == DK_SML_SUCCESS && DkTextLines(text).Next(line))
        m_name = TrimView(line, " \t\r");
    else
        m_name.clear();
    if (!m_name.empty()) return;
    m_name = GetBoardNameByPciDeviceId(m_sysInfo.deviceId);
}

DkSmlReturn DkDevice::GetBoardType(uint32_t* size, char* text) const {
    return CopyText(IntToHexString(static_cast<int>(m_boardType)), text, size);
}

// ----- state and reasons -----------------------------------------------------

DkSmlReturn DkDevice::GetDeviceState(int32_t* state) {
    if (state == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (IsPf()) {
        *state = 1;
        return DK_SML_SUCCESS;
    }
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    if (m_nodePath.empty()) return DK_SML_ERROR_NOT_SUPPORTED;  // no layout node to ask
    int active = 0;
    DkSmlReturn result = m_handler->FetchNodeDataActive(active);
    if (result == DK_SML_SUCCESS) *state = active;
    return result;
}

DkSmlReturn DkDevice::GetDeviceUnavailableReason(DkSmlDeviceUnavailableReasonInfo* info) {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    FillReason(info, DK_SML_AVAILABLE, "");
    return DK_SML_SUCCESS;
}

// A die of a served device is unavailable only when its layout node reports
// it inactive: the driver then found the device but refused to bring it up,
// which it does when the VBIOS does not match the driver.
DkSmlReturn DkDevice::GetDieUnavailableReason(unsigned int dieId, DkSmlDeviceUnavailableReasonInfo* info) {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (dieId >= m_dieCount) return DK_SML_ERROR_INVALID_DIE_ID;
    int32_t state = 0;
    DkSmlReturn result = GetDeviceState(&state);
    if (result != DK_SML_SUCCESS) return result;
    if (state == 0) FillReason(info, DK_SML_UNAVAILABLE_VBIOS_INCOMPATIBLE, c_vbiosIncompatibleText);
    else FillReason(info, DK_SML_AVAILABLE, "");
    return DK_SML_SUCCESS;
}

// ----- driver access ---------------------------------------------------------

void DkDevice::SetDriverDataHandler(std::shared_ptr<IDkDriverDataHandler> handler) {
    OpenDirectories();  // the bus id and node path are known by now
    m_handler = std::move(handler);
    if (m_handler) m_handler->UpdateDeviceProperties(this);
}

void DkDevice::SetAttributeWithHandler(const DkSysInfo& info, std::shared_ptr<IDkDriverDataHandler> handler) {
    m_sysInfo = info;
    SetBdfId(info.bdfId);
    if (info.isVf) m_virtualizationMode = DK_SML_VIRTUALIZATION_MODE_VF;
    SetDriverDataHandler(std::move(handler));
    Initialize();
}

// Everything the device learns from its own files; safe to run again.
DkSmlReturn DkDevice::Initialize() {
    SetDieCount();
    SetDieId();  // a virtual function or a missing "showtopology" keeps die id 0
    ReadIsaVersion();
    ReadBoardType();
    SetDeviceBrand();
    SetDeviceName();
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDevice::FetchDriverData(unsigned int dieId, dravik_smi_opcode op, std::string& text) {
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    return m_handler->FetchData(dieId, op, text);
}

DkSmlReturn DkDevice::FetchIndexedDriverData(unsigned int index, dravik_smi_opcode op, std::string& text) {
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    return m_handler->FetchIndexedData(index, op, text);
}

DkSmlReturn DkDevice::SetIndexedDriverData(unsigned int index, dravik_smi_opcode op, const std::string& text) {
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    return m_handler->SetIndexedData(index, op, text);
}

DkSmlReturn DkDevice::ListDriverData(unsigned int index, dravik_smi_opcode op, std::vector<std::string>& names) {
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    return m_handler->ListData(index, op, names);
}

DkSmlReturn DkDevice::SetDriverData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) {
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    return m_handler->SetData(dieId, op, text);
}

DkSmlReturn DkDevice::SetRegisterData(unsigned int dieId, unsigned long address, unsigned int value) {
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    return m_handler->WriteRegister(dieId, address, value);
}

DkSmlReturn DkDevice::GetRegisterData(unsigned int dieId, unsigned long address, unsigned int* value) {
    if (value == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (!m_handler) return DK_SML_ERROR_FAILURE;
    std::string text;
    DkSmlReturn result = m_handler->ReadRegister(dieId, address, text);
    if (result != DK_SML_SUCCESS) return result;
    unsigned int parsed = 0;
    if (!ParseRegisterValue(text, parsed)) return DK_SML_ERROR_SYSFS;
    *value = parsed;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
