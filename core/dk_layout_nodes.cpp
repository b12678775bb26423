// The driver's layout nodes ("layout/nodes/N/"): which GPU sits at which bus
// id under which driver GPU id, its properties and UUID. The link records
// are left to the topology tables, which read them when first asked.
#include <algorithm>
#include <dirent.h>
#include <string_view>
#include <vector>

#include "core/dk_file_text.h"
#include "core/dk_host_root.h"
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr std::string_view c_cpuNodeType = "cpu";
constexpr std::string_view c_sliceNodeType = "sgpu-sub-dev";

template <typename T>
bool ReadNumberFile(const std::string& path, T& value) {
    return ReadSysfs(path, ExtractRawValueStr, value) == DK_SML_SUCCESS;
}

// Entries of a directory whose names are decimal numbers, in numeric order.
std::vector<uint32_t> ListNumberedEntries(const std::string& dirPath) {
    std::vector<uint32_t> numbers;
    DIR* dir = opendir(dirPath.c_str());
    if (dir == nullptr) return numbers;
    while (const dirent* entry = readdir(dir)) {
        std::string_view name = entry->d_name;
        unsigned int number = 0;
        if (IsNumber(name) && stoui_nt(name, number)) numbers.push_back(number);
    }
    closedir(dir);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

// "key value" lines; false for a line that is not one.
bool SplitKeyValue(std::string_view line, std::string_view& key, std::string_view& value) {
    line = TrimView(line, " \t\r");
    size_t blank = line.find_first_of(" \t");
    if (blank == std::string_view::npos) return false;
    key = line.substr(0, blank);
    value = TrimView(line.substr(blank + 1), " \t");
    return true;
}

// GetGpuId: "gid" where the driver provides it, else "gpu_id"; 0 when unreadable.
uint32_t GetGpuId(const std::string& nodeDir) {
    unsigned int gpuId = 0;
    if (!ReadNumberFile(nodeDir + "gid", gpuId)) ReadNumberFile(nodeDir + "gpu_id", gpuId);
    return gpuId;
}

// GetGpuProperty: the four properties the library uses; other keys are ignored.
void GetGpuProperty(const std::string& nodeDir, DkGpuNodeInfo& node) {
    std::string text;
    if (ReadFileText(nodeDir + "properties", text) != DK_SML_SUCCESS) return;
    DkTextLines lines(text);
    std::string_view line, key, value;
    while (lines.Next(line)) {
        if (!SplitKeyValue(line, key, value)) continue;
        unsigned long number = 0;
        if (!stoul_nt(value, number)) continue;
        if (key == "topology_id") node.topologyId = static_cast<uint32_t>(number);
        else if (key == "is_vf") node.isVf = static_cast<uint32_t>(number);
        else if (key == "drm_render_minor") node.drmRenderMinor = static_cast<uint32_t>(number);
        else if (key == "ap_mask") node.apMask = number;
    }
}

// GetGpuBdfId: the "location" line; a bus id needs both ':' and '.'.
bool GetGpuBdfId(const std::string& nodeDir, std::string& bdfId) {
    std::string location = ReadFirstLine(nodeDir + "location");
    if (location.find(':') == std::string::npos || location.find('.') == std::string::npos) return false;
    bdfId = location;
    return true;
}

std::string GetGpuUuid(const std::string& nodeDir) { return ReadFirstLine(nodeDir + "unique_id"); }

}  // namespace

void DkSystemManager::ParseLayoutNodeInfo() {
    State& s = *m_state;
    s.cpuNodeCount = 0;
    const std::string layoutDir = HostPath(s.layoutPath);
    for (uint32_t nodeId : ListNumberedEntries(layoutDir)) {
        const std::string nodeDir = layoutDir + std::to_string(nodeId) + "/";
        uint32_t gpuId = GetGpuId(nodeDir);
        if (gpuId == 0 && ReadFirstLine(nodeDir + "type") == c_cpuNodeType) {
            ++s.cpuNodeCount;
            continue;
        }
        ParseGpuNode(nodeDir, nodeId, gpuId);
    }
}

void DkSystemManager::ParseGpuNode(const std::string& nodeDir, uint32_t nodeId, uint32_t gpuId) {
    State& s = *m_state;
    DkGpuNodeInfo node;
    node.nodeId = nodeId;
    node.gpuId = gpuId;
    GetGpuProperty(nodeDir, node);
    if (!GetGpuBdfId(nodeDir, node.bdfId)) return;
    s.gpuBdfIdMap[gpuId] = node.bdfId;

    if (ReadFirstLine(nodeDir + "type") == c_sliceNodeType) {
        unsigned int localId = 0;
        if (ReadNumberFile(nodeDir + "local_id", localId)) s.sgpuIdMap[gpuId] = localId;
        return;
    }
    // Nodes come in numeric order: the first node of a bus id is die 0, a
    // second one is the device's second die.
    if (s.gpuNodeMap.count(node.bdfId) != 0) {
        s.secondDieGpuIds.emplace(node.bdfId, gpuId);
        return;
    }
    ReadNumberFile(nodeDir + "active", node.active);
    node.uuid = GetGpuUuid(nodeDir);
    s.gpuNodeMap.emplace(node.bdfId, std::move(node));
}

}  // namespace dksml
