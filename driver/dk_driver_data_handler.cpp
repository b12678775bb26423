// The Linux driver data handler: request number and die -> attribute file.
#include "driver/dk_driver_data_handler.h"

#include <unistd.h>

#include <charconv>
#include <cstring>

#include "core/dk_host_root.h"
#include "core/idk_device.h"
#include "driver/dk_driver_interface_manager.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

// (ROOT_PATH_REG_DUMP, used as given, or the host's debugfs directory) + "/reg_dump".
std::string RegisterDumpPath() {
    return GetEnv("ROOT_PATH_REG_DUMP", "/reg_dump", HostPath("/sys/kernel/debug/dkcd"));
}

// Lower-case hexadecimal, zero-filled to at least 8 digits (never truncated).
void AppendHex8(std::string& out, unsigned long value) {
    char buf[32];
    const auto res = std::to_chars(buf, buf + sizeof buf, value, 16);
    const std::size_t digits = static_cast<std::size_t>(res.ptr - buf);
    if (digits < 8) out.append(8 - digits, '0');
    out.append(buf, digits);
}

// Whole text of an existing file: 3 when absent, 4 when it cannot be read.
// The existence test is only made when the open fails, so the common path
// costs one open, the reads and one close.
DkSmlReturn FetchWholeFile(const std::string& path, std::string& text) {
    const DkSmlReturn ret = ReadFileText(path, text);
    if (ret == DK_SML_SUCCESS) return ret;
    return CheckIfFileExist(path) ? DK_SML_ERROR_SYSFS : DK_SML_ERROR_NOT_SUPPORTED;
}

}  // namespace

std::string DkLinuxDriverDataHandler::GetDriverInterfaceFile(unsigned int dieId, dravik_smi_opcode op) const {
    const std::string& dir = dieId == 0 ? m_smiPath0 : m_smiPath1;
    const std::string& name = DkDriverInterfaceManager::GetDriverInterfaceRef(op);
    std::string path;
    path.reserve(dir.size() + name.size());
    path.append(dir).append(name);
    return path;
}

DkSmlReturn DkLinuxDriverDataHandler::FetchData(unsigned int dieId, dravik_smi_opcode op, std::string& text) {
    // Hot path: build the path in a stack buffer when it fits (no allocation).
    const std::string& dir = dieId == 0 ? m_smiPath0 : m_smiPath1;
    const std::string& name = DkDriverInterfaceManager::GetDriverInterfaceRef(op);
    char path[512];
    if (dir.size() + name.size() < sizeof path && dir.find('\0') == std::string::npos) {
        std::memcpy(path, dir.data(), dir.size());
        std::memcpy(path + dir.size(), name.data(), name.size());
        path[dir.size() + name.size()] = '\0';
        const DkSmlReturn ret = ReadFileText(path, text);
        if (ret == DK_SML_SUCCESS) return ret;
        return CheckIfFileExist(path) ? DK_SML_ERROR_SYSFS : DK_SML_ERROR_NOT_SUPPORTED;
    }
    return FetchWholeFile(GetDriverInterfaceFile(dieId, op), text);
}

DkSmlReturn DkLinuxDriverDataHandler::SetData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) {
    const std::string path = GetDriverInterfaceFile(dieId, op);
    if (!CheckIfFileExist(path)) return DK_SML_ERROR_NOT_SUPPORTED;
    return WriteSysfs(path, text);
}

DkSmlReturn DkLinuxDriverDataHandler::FetchNodeDataActive(int& active) {
    int value = 0;
    const DkSmlReturn ret = ReadSysfs(m_nodePath + "/active", ExtractRawValueStr, value);
    if (ret == DK_SML_SUCCESS) active = value;
    return ret;
}

DkSmlReturn DkLinuxDriverDataHandler::FetchNodeDataInactiveReason(unsigned int index, std::string& text) {
    std::string path = m_nodePath + "/inactive_reason";
    if (index != 0) path += std::to_string(index);
    return FetchWholeFile(path, text);
}

void DkLinuxDriverDataHandler::UpdateDeviceProperties(IDkDevice* device) {
    if (device == nullptr) return;
    // The device builds these from HostPath already: no root is added here.
    m_smiPath0 = device->GetSmiPath(0);
    m_smiPath1 = device->GetSmiPath(1);
    m_nodePath = device->GetNodePath();
}

DkSmlReturn DkLinuxDriverDataHandler::WriteRegister(unsigned int /*dieId*/, unsigned long address, unsigned int value) {
    // The driver's command format: value then address, no separator.
    std::string line = "0x";
    AppendHex8(line, value);
    AppendHex8(line, address);
    return WriteSysfs(RegisterDumpPath(), line);
}

DkSmlReturn DkLinuxDriverDataHandler::ReadRegister(unsigned int /*dieId*/, unsigned long address, std::string& text) {
    const std::string path = RegisterDumpPath();
    std::string line = "0x";
    AppendHex8(line, address);
    const DkSmlReturn ret = WriteSysfs(path, line);
    if (ret != DK_SML_SUCCESS) return ret;
    return ReadFileText(path, text) == DK_SML_SUCCESS ? DK_SML_SUCCESS : DK_SML_ERROR_SYSFS;
}

}  // namespace dksml
