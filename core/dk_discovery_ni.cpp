#include "core/dk_discovery_ni.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <string_view>

#include "core/dk_file_text.h"
#include "core/dk_host_root.h"
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_dir_list.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr const char* c_nicVendorEnv = "DK_SMI_NIC_VENDOR";

}  // namespace

uint32_t GetNicEnvVendorId() {
    const char* value = secure_getenv(c_nicVendorEnv);
    unsigned int vendorId = 0;
    if (value == nullptr || !stoui_nt(TrimView(value, " \t"), vendorId, 0)) return 0;
    return vendorId;
}

bool CheckIsRoceEnabled(const DkPciEntry& entry) {
    unsigned int enabled = 0;
    return ReadFirstNumberAt(entry.dirFd, entry.File("roce_enable").c_str(), enabled, 10) && enabled == 1;
}

bool CheckIsInfinibandEnabled(const DkPciEntry& entry) {
    // Most functions have no "infiniband": a stat answers that more cheaply
    // than a failing open (no file is set up), and only a present one is listed.
    const auto name = entry.File("infiniband");
    struct stat st {};
    if (::fstatat(entry.dirFd, name.c_str(), &st, 0) != 0) return false;
    const int fd = ::openat(entry.dirFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return false;
    bool hasPort = false;
    ForEachDirEntry(fd, [&hasPort](std::string_view) { hasPort = true; });
    ::close(fd);
    return hasPort;
}

bool CheckIsTargetNi(const DkPciEntry& entry, uint32_t vendorId, uint32_t nicVendorId) {
    if (nicVendorId == 0 || vendorId != nicVendorId) return false;
    return CheckIsRoceEnabled(entry) || CheckIsInfinibandEnabled(entry);
}

void DkSystemManager::ParseTargetNiNodeInfo(const std::string& deviceDir, const std::string& bdfId) {
    DkNiNodeInfo node;
    node.index = static_cast<uint32_t>(m_state->niNodeList.size());
    node.bdf = bdfId;
    // "-1" on a machine without NUMA: the interface then counts as node 0.
    int numaNode = 0;
    if (ReadSysfs(HostPath(deviceDir) + "/numa_node", ExtractRawValueStr, numaNode) == DK_SML_SUCCESS &&
        numaNode > 0)
        node.numaNode = static_cast<uint32_t>(numaNode);
    m_state->niNodeList.push_back(std::move(node));
}

}  // namespace dksml
