// Which PCI functions are the maker's GPUs: the accepted vendor ids and the
// identity files of one PCI function.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include <string_view>

#include "core/dk_file_text.h"
#include "core/dk_host_root.h"
#include "core/dk_pci_entry.h"
#include "core/dk_pci_ids.h"
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr const char* c_vendorIdOverridePath = "/opt/smi/etc/vendorid";
constexpr uint32_t c_noDevice = UINT32_MAX;
// The kernel's driver for the maker's virtual functions.
constexpr std::string_view c_vfDriverName = "DKGVM";

// First line of a file as a number in base 0 ("0x1e27", "7719"); 0 when unreadable.
uint32_t ReadIdFile(const std::string& path) {
    unsigned int value = 0;
    return ReadFirstNumber(path, value, 0) ? value : 0;
}

// The same for one of a PCI function's id files, relative to the scan's directory.
uint32_t ReadIdFile(const DkPciEntry& entry, const char* file) {
    unsigned int value = 0;
    return ReadFirstNumberAt(entry.dirFd, entry.File(file).c_str(), value, 0) ? value : 0;
}

}  // namespace

void DkSystemManager::InitVendorId() {
    State& s = *m_state;
    s.acceptedVendorIds.clear();
    if (c_vendorFlag) {
        s.acceptedVendorIds.insert(c_oemVendorId);
        return;
    }
    uint32_t overrideId = ReadIdFile(HostPath(c_vendorIdOverridePath));
    if (overrideId != 0) {
        s.acceptedVendorIds.insert(overrideId);
        return;
    }
    s.acceptedVendorIds.insert(c_makerVendorId);
    s.acceptedVendorIds.insert(c_makerPartnerVendorId);
}

// Identity of the PCI function `entry` (every file is read relative to the
// scan's directory, so the search path itself is not needed).
// False when it is no GPU function that the library serves; `info` then
// still carries its ids. With `functionDir`, the function's own directory is
// opened once the vendor is accepted and the other files are read through
// it: "device" instead of "<bus id>/device", so the bus link is followed
// once rather than per file. The caller keeps it (a device adopts it).
bool DkSystemManager::GetDkDeviceInfo(const DkPciEntry& entry, const std::string& /*searchPath*/,
                                      DkSysInfo& info, DkDirFd* functionDir) const {
    // The vendor decides first: most PCI functions of a host are not GPUs,
    // and their other id files are never needed.
    info.vendorId = ReadIdFile(entry, "vendor");
    // Also asked for limited devices by readers: the held state, not the pass's.
    const auto& accepted = ReadState().acceptedVendorIds;
    const bool oemCandidate = c_vendorFlag && info.vendorId == c_oemVendorId;
    if (accepted.count(info.vendorId) == 0 && !oemCandidate) {
        info.deviceId = c_noDevice;
        return false;
    }
    DkPciEntry function = entry;
    if (functionDir != nullptr) {
        const int fd = ::openat(entry.dirFd, entry.Self().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        *functionDir = DkDirFd(fd, fd < 0 ? errno : 0);
        if (fd >= 0) function = DkPciEntry{fd, {}};
    }
    info.deviceId = ReadIdFile(function, "device");
    const bool served = accepted.count(info.vendorId) != 0 || (oemCandidate && info.deviceId == c_oemDeviceId);
    if (!served || info.deviceId == 0) {
        info.deviceId = c_noDevice;
        return false;
    }
    info.subsystemVendorId = ReadIdFile(function, "subsystem_vendor");
    info.subsystemDeviceId = ReadIdFile(function, "subsystem_device");
    // The "driver" link names the bound driver in its last component: one
    // readlinkat relative to the scan's directory. No link, no driver.
    char driver[4096];
    const ssize_t length = ::readlinkat(function.dirFd, function.File("driver").c_str(), driver, sizeof driver);
    info.isVf = length > 0 && static_cast<std::size_t>(length) < sizeof driver &&
                std::string_view(driver, static_cast<std::size_t>(length)).find(c_vfDriverName) != std::string_view::npos;
    return true;
}

}  // namespace dksml
