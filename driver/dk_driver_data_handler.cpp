// The Linux driver data handler: request number and die -> attribute file.
#include "driver/dk_driver_data_handler.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include <charconv>
#include <cstring>
#include <string_view>

#include "driver/dk_dir_list.h"
#include "driver/dk_driver_interface_manager.h"
#include "driver/dk_read_session.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

// Lower-case hexadecimal, zero-filled to at least 8 digits (never truncated).
void AppendHex8(std::string& out, unsigned long value) {
    char buf[32];
    const auto res = std::to_chars(buf, buf + sizeof buf, value, 16);
    const std::size_t digits = static_cast<std::size_t>(res.ptr - buf);
    if (digits < 8) out.append(8 - digits, '0');
    out.append(buf, digits);
}

// Whole text of `name` in an opened directory: DK_SML_ERROR_NOT_SUPPORTED when
// it (or the directory) is absent, DK_SML_ERROR_SYSFS when it cannot be read. An empty name addresses the directory
// itself, which is never readable.
DkSmlReturn FetchAt(const DkDirFd& dir, const char* name, std::string& text) {
    if (!dir.IsOpen()) return dir.OpenErrno() == ENOENT || dir.OpenErrno() == ENOTDIR ? DK_SML_ERROR_NOT_SUPPORTED
                                                                                        : DK_SML_ERROR_SYSFS;
    return ReadFileTextAt(dir.Get(), name[0] == '\0' ? "." : name, text);
}

// The request's name with "%u" replaced by the decimal index ("." for an
// empty name); false when it does not fit.
bool FormatName(std::string_view pattern, unsigned int index, char (&name)[128]) {
    if (pattern.empty()) pattern = ".";
    char digits[16];
    std::string_view number;
    const std::size_t at = pattern.find("%u");
    if (at != std::string_view::npos) {
        const auto res = std::to_chars(digits, digits + sizeof digits, index);
        number = std::string_view(digits, static_cast<std::size_t>(res.ptr - digits));
    }
    const std::string_view head = pattern.substr(0, at);
    const std::string_view tail = at == std::string_view::npos ? std::string_view() : pattern.substr(at + 2);
    if (head.size() + number.size() + tail.size() >= sizeof name) return false;
    char* out = name;
    for (const std::string_view part : {head, number, tail}) {
        if (part.empty()) continue;  // an empty view may hold no pointer
        std::memcpy(out, part.data(), part.size());
        out += part.size();
    }
    *out = '\0';
    return true;
}

// Path of a place the handler opens at each access ("" when it has none).
DkDirFd OpenPlaceDir(const std::string& path) {
    if (path.empty()) return DkDirFd(-1, ENOENT);
    return DkDirFd::OpenPath(path);
}

// Scratch text for the node files: reused, so repeated state queries do not allocate.
std::string& NodeScratch() {
    thread_local std::string text;
    return text;
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

const DkDirFd& DkLinuxDriverDataHandler::DieDir(unsigned int dieId, DkDirFd& scratch) const {
    return dieId == 0 ? m_dirs->smi0.OrOpenedAt(m_smiPath0, scratch) : m_dirs->smi1.OrOpenedAt(m_smiPath1, scratch);
}

DkSmlReturn DkLinuxDriverDataHandler::FetchData(unsigned int dieId, dravik_smi_opcode op, std::string& text) {
    if (!m_dirs) return DK_SML_ERROR_NOT_SUPPORTED;
    DkReadSession* session = DkReadSession::Current();
    if (DkDriverInterfaceManager::GetRequestPlace(op) == DkRequestPlace::Smi) {  // the hot path: no formatting
        const char* name = DkDriverInterfaceManager::GetDriverInterfaceRef(op).c_str();
        const auto read = [&](std::string& out) {
            DkDirFd scratch;
            return FetchAt(DieDir(dieId, scratch), name, out);
        };
        if (session != nullptr) return session->Fetch(m_dirs, dieId == 0 ? 0 : 1, op, text, read);
        return read(text);
    }
    const auto read = [&](std::string& out) {
        RequestFile file;
        const DkSmlReturn resolved = Resolve(dieId, 0, op, file);
        return resolved != DK_SML_SUCCESS ? resolved : ReadFileTextAt(file.dirFd, file.name, out);
    };
    // Records outside the die directories do not depend on the die.
    if (session != nullptr) return session->Fetch(m_dirs, 0, op, text, read);
    return read(text);
}

DkSmlReturn DkLinuxDriverDataHandler::FetchIndexedData(unsigned int index, dravik_smi_opcode op, std::string& text) {
    RequestFile file;
    const DkSmlReturn resolved = Resolve(0, index, op, file);
    return resolved != DK_SML_SUCCESS ? resolved : ReadFileTextAt(file.dirFd, file.name, text);
}

DkSmlReturn DkLinuxDriverDataHandler::ListData(unsigned int index, dravik_smi_opcode op,
                                               std::vector<std::string>& names) {
    RequestFile file;
    const DkSmlReturn resolved = Resolve(0, index, op, file);
    return resolved != DK_SML_SUCCESS ? resolved : ListDirectoryAt(file.dirFd, file.name, names);
}

DkSmlReturn DkLinuxDriverDataHandler::SetData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) {
    if (!m_dirs) return DK_SML_ERROR_NOT_SUPPORTED;
    DkReadSession::ForgetCurrent();  // the driver may answer differently after a write
    if (DkDriverInterfaceManager::GetRequestPlace(op) == DkRequestPlace::Smi) {
        DkDirFd scratch;
        const DkDirFd& dir = DieDir(dieId, scratch);
        const std::string& name = DkDriverInterfaceManager::GetDriverInterfaceRef(op);
        if (!dir.IsOpen()) return DK_SML_ERROR_NOT_SUPPORTED;
        return WriteFileTextAt(dir.Get(), name.empty() ? "." : name.c_str(), text,
                               DkDriverInterfaceManager::CreatesOnWrite(op),
                               !DkDriverInterfaceManager::WritesVerbatim(op));
    }
    return WriteRequest(dieId, 0, op, text);
}

DkSmlReturn DkLinuxDriverDataHandler::SetIndexedData(unsigned int index, dravik_smi_opcode op,
                                                     const std::string& text) {
    DkReadSession::ForgetCurrent();
    return WriteRequest(0, index, op, text);
}

DkSmlReturn DkLinuxDriverDataHandler::WriteRequest(unsigned int dieId, unsigned int index, dravik_smi_opcode op,
                                                   const std::string& text) {
    RequestFile file;
    const DkSmlReturn resolved = Resolve(dieId, index, op, file);
    if (resolved != DK_SML_SUCCESS) return resolved;
    return WriteFileTextAt(file.dirFd, file.name, text, DkDriverInterfaceManager::CreatesOnWrite(op),
                           !DkDriverInterfaceManager::WritesVerbatim(op));
}

// An absent directory answers DK_SML_ERROR_NOT_SUPPORTED, one that cannot be
// opened DK_SML_ERROR_SYSFS, as for the file itself. An empty name addresses
// the directory ("."), which is never readable as text.
DkSmlReturn DkLinuxDriverDataHandler::Resolve(unsigned int dieId, unsigned int index, dravik_smi_opcode op,
                                              RequestFile& file) const {
    if (!m_dirs) return DK_SML_ERROR_NOT_SUPPORTED;
    DkDirFd& scratch = file.scratch;
    const DkDirFd* dir = &scratch;
    switch (DkDriverInterfaceManager::GetRequestPlace(op)) {
        case DkRequestPlace::Smi: dir = &DieDir(dieId, scratch); break;
        case DkRequestPlace::Function: dir = &m_dirs->function.OrOpenedAt(m_functionPath, scratch); break;
        case DkRequestPlace::Node: dir = &m_dirs->node.OrOpenedAt(m_nodePath, scratch); break;
        case DkRequestPlace::Debug: scratch = OpenPlaceDir(DebugDir()); break;
        case DkRequestPlace::LayoutNodes:
        case DkRequestPlace::Firmware:
            scratch = OpenPlaceDir(m_placeDir != nullptr ? m_placeDir(DkDriverInterfaceManager::GetRequestPlace(op))
                                                         : std::string());
            break;
    }
    if (!dir->IsOpen()) return dir->OpenErrno() == ENOENT || dir->OpenErrno() == ENOTDIR ? DK_SML_ERROR_NOT_SUPPORTED
                                                                                          : DK_SML_ERROR_SYSFS;
    if (!FormatName(DkDriverInterfaceManager::GetDriverInterfaceRef(op), index, file.name)) return DK_SML_ERROR_SYSFS;
    file.dirFd = dir->Get();
    return DK_SML_SUCCESS;
}

DkSmlReturn DkLinuxDriverDataHandler::FetchNodeDataActive(int& active) {
    if (!m_dirs) return DK_SML_ERROR_SYSFS;
    std::string& text = NodeScratch();
    DkDirFd scratch;
    if (FetchAt(m_dirs->node.OrOpenedAt(m_nodePath, scratch), "active", text) != DK_SML_SUCCESS)
        return DK_SML_ERROR_SYSFS;
    DkTextLines lines(text);
    int value = 0;
    const DkSmlReturn ret = ReadSysfs(lines, ExtractRawValueStr, value);
    if (ret == DK_SML_SUCCESS) active = value;
    return ret;
}

DkSmlReturn DkLinuxDriverDataHandler::FetchNodeDataInactiveReason(unsigned int index, std::string& text) {
    if (!m_dirs) return DK_SML_ERROR_NOT_SUPPORTED;
    char name[32] = "inactive_reason";
    if (index != 0) std::snprintf(name, sizeof name, "inactive_reason%u", index);
    DkDirFd scratch;
    return FetchAt(m_dirs->node.OrOpenedAt(m_nodePath, scratch), name, text);
}

// The driver's debug directory + "/reg_dump".
std::string DkLinuxDriverDataHandler::RegisterDumpPath() const { return DebugDir() + "/reg_dump"; }

// ROOT_PATH_REG_DUMP, used as given, or the driver's debug directory.
std::string DkLinuxDriverDataHandler::DebugDir() const {
    return GetEnv("ROOT_PATH_REG_DUMP", "", m_placeDir != nullptr ? m_placeDir(DkRequestPlace::Debug) : std::string());
}

void DkLinuxDriverDataHandler::Attach(DkDriverDataSource source) {
    // The device builds these from its host root already: no root is added here.
    m_smiPath0 = std::move(source.smiPath0);
    m_smiPath1 = std::move(source.smiPath1);
    m_nodePath = std::move(source.nodePath);
    m_functionPath = std::move(source.functionPath);
    m_placeDir = source.placeDir;
    m_dirs = std::move(source.dirs);
    if (m_dirs) return;
    auto dirs = std::make_shared<DkDriverDirs>();
    dirs->smi0 = DkDirFd::OpenPath(m_smiPath0);
    dirs->smi1 = DkDirFd::OpenPath(m_smiPath1);
    dirs->node = DkDirFd::OpenPath(m_nodePath);
    dirs->function = DkDirFd::OpenPath(m_functionPath);
    m_dirs = std::move(dirs);
}

DkSmlReturn DkLinuxDriverDataHandler::WriteRegister(unsigned int /*dieId*/, unsigned long address, unsigned int value) {
    // The driver's command format: value then address, no separator.
    std::string line = "0x";
    AppendHex8(line, value);
    AppendHex8(line, address);
    DkReadSession::ForgetCurrent();
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
