// The driver's layout nodes ("layout/nodes/N/"): which GPU sits at which bus
// id under which driver GPU id, its properties and UUID. The link records
// are left to the topology tables, which read them when first asked.
#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "driver/dk_dir_list.h"
#include "core/dk_host_root.h"
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr std::string_view c_cpuNodeType = "cpu";
constexpr std::string_view c_sliceNodeType = "sgpu-sub-dev";

// Entries of the directory open on `dirFd` whose names are decimal numbers,
// in numeric order.
std::vector<uint32_t> ListNumberedEntries(int dirFd) {
    std::vector<uint32_t> numbers;
    ForEachDirEntry(dirFd, [&numbers](std::string_view name) {
        unsigned int number = 0;
        if (IsNumber(name) && stoui_nt(name, number)) numbers.push_back(number);
    });
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// "key value" lines; false for a line that is not one. One walk over the
// line (every node's "properties" has a dozen of them).
bool SplitKeyValue(std::string_view line, std::string_view& key, std::string_view& value) {
    std::size_t begin = 0, end = line.size();
    while (begin < end && (IsBlank(line[begin]) || line[begin] == '\r')) ++begin;
    while (end > begin && (IsBlank(line[end - 1]) || line[end - 1] == '\r')) --end;
    std::size_t blank = begin;
    while (blank < end && !IsBlank(line[blank])) ++blank;
    if (blank == end) return false;
    key = line.substr(begin, blank - begin);
    std::size_t start = blank + 1;
    while (start < end && IsBlank(line[start])) ++start;
    value = line.substr(start, end - start);
    return true;
}

}  // namespace

// The files of the layout nodes, read into one scratch text: those of the
// node entered last through its own directory ("gpu_id"), others relative to
// the layout directory ("N/gpu_id").
class DkLayoutReader {
public:
    explicit DkLayoutReader(int layoutFd) : m_layoutFd(layoutFd) {}

    // Opens node `nodeId`'s directory; its files are then one lookup each,
    // and a device adopts the directory instead of opening it from the root.
    void EnterNode(uint32_t nodeId) {
        char name[16];
        std::snprintf(name, sizeof name, "%u", nodeId);
        const int fd = ::openat(m_layoutFd, name, O_PATH | O_DIRECTORY | O_CLOEXEC);
        m_nodeDir = DkDirFd(fd, fd < 0 ? errno : 0);
        m_nodeDirId = nodeId;
    }
    // The entered node's directory, moved out (not open when it did not open).
    DkDirFd TakeNodeDir() { return std::move(m_nodeDir); }

    // The whole file; false when it cannot be read.
    bool Text(uint32_t nodeId, const char* file, std::string_view& text) {
        DkSmlReturn status = Read(nodeId, file);
        if (status != DK_SML_SUCCESS) return false;
        text = m_scratch;
        return true;
    }

    // First line without surrounding blanks; empty when unreadable or empty.
    std::string_view FirstLine(uint32_t nodeId, const char* file) {
        std::string_view text, line;
        if (!Text(nodeId, file, text)) return {};
        DkTextLines lines(text);
        if (!lines.Next(line)) return {};
        return TrimView(line, " \t\r");
    }

    template <typename T>
    bool Number(uint32_t nodeId, const char* file, T& value) {
        std::string_view text;
        if (!Text(nodeId, file, text)) return false;
        DkTextLines lines(text);
        return ReadSysfs(lines, ExtractRawValueStr, value) == DK_SML_SUCCESS;
    }

    // GetGpuId: "gid" where the driver provides it, else "gpu_id"; 0 when
    // unreadable. A driver that lacks "gid" on a GPU node lacks it on every
    // node, so one absent "gid" of a GPU node spares the others the attempt.
    uint32_t GpuId(uint32_t nodeId) {
        unsigned int gpuId = 0;
        if (!m_gidAbsent) {
            const DkSmlReturn status = Read(nodeId, "gid");
            if (status == DK_SML_SUCCESS) {
                DkTextLines lines(m_scratch);
                if (ReadSysfs(lines, ExtractRawValueStr, gpuId) == DK_SML_SUCCESS) return gpuId;
            }
            if (Number(nodeId, "gpu_id", gpuId) && gpuId != 0 && status == DK_SML_ERROR_NOT_SUPPORTED)
                m_gidAbsent = true;
            return gpuId;
        }
        Number(nodeId, "gpu_id", gpuId);
        return gpuId;
    }

private:
    DkSmlReturn Read(uint32_t nodeId, const char* file) {
        if (m_nodeDir.IsOpen() && nodeId == m_nodeDirId) return ReadFileTextAt(m_nodeDir.Get(), file, m_scratch);
        char name[64];
        std::snprintf(name, sizeof name, "%u/%s", nodeId, file);
        return ReadFileTextAt(m_layoutFd, name, m_scratch);
    }

    int m_layoutFd;
    DkDirFd m_nodeDir;
    uint32_t m_nodeDirId = 0;
    bool m_gidAbsent = false;
    std::string m_scratch;
};

namespace {

// GetGpuProperty: the four properties the library uses; other keys are ignored.
void GetGpuProperty(DkLayoutReader& reader, uint32_t nodeId, DkGpuNodeInfo& node) {
    std::string_view text;
    if (!reader.Text(nodeId, "properties", text)) return;
    DkTextLines lines(text);
    std::string_view line, key, value;
    // The key first: a node has a few dozen properties, and only these
    // four values are parsed.
    while (lines.Next(line)) {
        if (!SplitKeyValue(line, key, value)) continue;
        const bool used = key == "topology_id" || key == "is_vf" || key == "drm_render_minor" || key == "ap_mask";
        unsigned long number = 0;
        if (!used || !stoul_nt(value, number)) continue;
        if (key == "topology_id") node.topologyId = static_cast<uint32_t>(number);
        else if (key == "is_vf") node.isVf = static_cast<uint32_t>(number);
        else if (key == "drm_render_minor") node.drmRenderMinor = static_cast<uint32_t>(number);
        else node.apMask = number;
    }
}

// GetGpuBdfId: the "location" line; a bus id needs both ':' and '.'.
bool GetGpuBdfId(DkLayoutReader& reader, uint32_t nodeId, std::string& bdfId) {
    const std::string_view location = reader.FirstLine(nodeId, "location");
    if (location.find(':') == std::string_view::npos || location.find('.') == std::string_view::npos) return false;
    bdfId = location;
    return true;
}

}  // namespace

void DkSystemManager::ParseLayoutNodeInfo() {
    State& s = *m_state;
    s.cpuNodeCount = 0;
    const DkDirFd layoutDir = CurrentHostRoot()->OpenListing(s.layoutPath);
    if (!layoutDir.IsOpen()) return;
    DkLayoutReader reader(layoutDir.Get());
    const std::vector<uint32_t> nodeIds = ListNumberedEntries(layoutDir.Get());
    m_nodeDirs.reserve(nodeIds.size());
    for (uint32_t nodeId : nodeIds) {
        reader.EnterNode(nodeId);
        const uint32_t gpuId = reader.GpuId(nodeId);
        // The type is read once and handed on: a GPU node needs it too.
        const std::string type(reader.FirstLine(nodeId, "type"));
        if (gpuId == 0 && type == c_cpuNodeType) {
            ++s.cpuNodeCount;
            continue;
        }
        ParseGpuNode(reader, nodeId, gpuId, type);
    }
}

void DkSystemManager::ParseGpuNode(DkLayoutReader& reader, uint32_t nodeId, uint32_t gpuId, const std::string& type) {
    State& s = *m_state;
    DkGpuNodeInfo node;
    node.nodeId = nodeId;
    node.gpuId = gpuId;
    GetGpuProperty(reader, nodeId, node);
    if (!GetGpuBdfId(reader, nodeId, node.bdfId)) return;
    s.gpuBdfIdMap[gpuId] = node.bdfId;

    if (type == c_sliceNodeType) {
        unsigned int localId = 0;
        if (reader.Number(nodeId, "local_id", localId)) s.sgpuIdMap[gpuId] = localId;
        return;
    }
    // Nodes come in numeric order: the first node of a bus id is die 0, a
    // second one is the device's second die.
    if (s.gpuNodeMap.count(node.bdfId) != 0) {
        s.secondDieGpuIds.emplace(node.bdfId, gpuId);
        return;
    }
    reader.Number(nodeId, "active", node.active);
    node.uuid = reader.FirstLine(nodeId, "unique_id");
    s.gpuNodeMap.emplace(node.bdfId, std::move(node));
    m_nodeDirs.emplace_back(nodeId, reader.TakeNodeDir());
}

// Nodes were entered in ascending order, so the list is sorted by node id.
DkDirFd DkSystemManager::TakeNodeDir(uint32_t nodeId) {
    auto it = std::lower_bound(m_nodeDirs.begin(), m_nodeDirs.end(), nodeId,
                               [](const std::pair<uint32_t, DkDirFd>& entry, uint32_t id) { return entry.first < id; });
    if (it == m_nodeDirs.end() || it->first != nodeId) return {};
    return std::move(it->second);
}

}  // namespace dksml
