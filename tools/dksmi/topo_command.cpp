#include "topo_command.h"

#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include "core/dk_system_manager.h"
#include "dksml.h"
#include "features/topology/dk_cpu_list.h"
#include "features/topology/dk_topology.h"
#include "outcome.h"
#include "topo_render.h"

namespace dksmi {
namespace {

using Json = nlohmann::ordered_json;

// 1024 CPUs and 1024 NUMA nodes: what the library pins with.
constexpr uint32_t kMaskWords = 32;
constexpr uint32_t kNiPeerBase = 10000;

struct GpuRow {
    uint32_t index = 0;
    std::string busId;
    std::vector<uint32_t> levels;      // to every GPU, then every NIC
    std::set<uint32_t> cpus;
    std::set<uint32_t> nodes;
};

struct NicRow {
    std::string busId;
    std::vector<uint32_t> levels;
};

std::set<uint32_t> MaskBits(const uint32_t (&mask)[kMaskWords]) {
    std::set<uint32_t> bits;
    for (uint32_t bit = 0; bit < 32 * kMaskWords; ++bit) {
        if (mask[bit / 32] >> (bit % 32) & 1u) bits.insert(bit);
    }
    return bits;
}

// `level` by reference: it is read only after the call filled it.
uint32_t Level(DkSmlReturn status, const DkSmlGpuTopologyLevel& level) {
    return status == DK_SML_SUCCESS ? static_cast<uint32_t>(level) : DK_SML_TOPOLOGY_UNKNOWN;
}

// GPUs are the physical devices 0..count-1: the topology tables' rows.
void Collect(std::vector<GpuRow>& gpus, std::vector<NicRow>& nics) {
    dksml::DkSystemManager& manager = dksml::DkSystemManager::GetInstance();
    const uint32_t count = manager.GetAvailableDeviceCount();
    std::shared_ptr<dksml::DkTopology> topology = manager.GetTopology();
    const uint32_t nicCount = topology ? topology->GetNiCount() : 0;
    for (uint32_t ni = 0; ni < nicCount; ++ni) {
        NicRow row;
        row.busId = ni < manager.GetNiNodeList().size() ? manager.GetNiNodeList()[ni].bdf : "";
        for (uint32_t peer = 0; peer < count; ++peer) {
            DkSmlGpuTopologyLevel level{};
            row.levels.push_back(Level(topology->GetNiTopology(ni, peer, &level), level));
        }
        for (uint32_t other = 0; other < nicCount; ++other) {
            DkSmlGpuTopologyLevel level{};
            row.levels.push_back(Level(topology->GetNiTopology(ni, kNiPeerBase + other, &level), level));
        }
        nics.push_back(std::move(row));
    }
    for (uint32_t index = 0; index < count; ++index) {
        GpuRow row;
        row.index = index;
        row.busId = manager.GetBdfIdByDeviceId(index);
        for (uint32_t peer = 0; peer < count; ++peer) {
            DkSmlGpuTopologyLevel level{};
            row.levels.push_back(Level(dkSmlGetDeviceTopology(index, peer, &level), level));
        }
        // The NIC matrix is kept per interface; its GPU columns mirror here.
        for (const NicRow& nic : nics) row.levels.push_back(nic.levels[index]);
        uint32_t mask[kMaskWords] = {};
        if (dkSmlGetCpuAffinity(index, kMaskWords, mask) == DK_SML_SUCCESS) row.cpus = MaskBits(mask);
        uint32_t nodes[kMaskWords] = {};
        if (dkSmlGetNodeAffinity(index, kMaskWords, nodes) == DK_SML_SUCCESS) row.nodes = MaskBits(nodes);
        gpus.push_back(std::move(row));
    }
}

std::string Cell(const std::string& text) { return fmt::format("{:<7}", text); }

std::string RenderText(const std::vector<GpuRow>& gpus, const std::vector<NicRow>& nics) {
    std::string out = Cell("");
    for (const GpuRow& gpu : gpus) out += Cell(fmt::format("GPU{}", gpu.index));
    for (size_t n = 0; n < nics.size(); ++n) out += Cell(fmt::format("NIC{}", n));
    out += fmt::format("{:<20}{}\n", "CPU Affinity", "NUMA Affinity");
    for (const GpuRow& gpu : gpus) {
        out += Cell(fmt::format("GPU{}", gpu.index));
        for (uint32_t level : gpu.levels) out += Cell(LevelName(level));
        const std::string cpus = gpu.cpus.empty() ? "N/A" : dksml::FormatCpuList(gpu.cpus);
        const std::string nodes = gpu.nodes.empty() ? "N/A" : fmt::format("{}", fmt::join(gpu.nodes, ","));
        out += fmt::format("{:<20}{}\n", cpus, nodes);
    }
    for (size_t n = 0; n < nics.size(); ++n) {
        out += Cell(fmt::format("NIC{}", n));
        for (uint32_t level : nics[n].levels) out += Cell(LevelName(level));
        out += "\n";
    }
    out += "\n" + LevelLegend();
    if (!nics.empty()) {
        out += "\nNIC Legend:\n";
        for (size_t n = 0; n < nics.size(); ++n) out += fmt::format("  NIC{}: {}\n", n, nics[n].busId);
    }
    return out;
}

std::string RenderJson(const std::vector<GpuRow>& gpus, const std::vector<NicRow>& nics) {
    Json gpuList = Json::array();
    for (const GpuRow& gpu : gpus) {
        Json levels = Json::array();
        for (uint32_t level : gpu.levels) levels.push_back(LevelName(level));
        gpuList.push_back({{"index", gpu.index},
                           {"bus_id", gpu.busId},
                           {"links", levels},
                           {"cpu_affinity", dksml::FormatCpuList(gpu.cpus)},
                           {"numa_affinity", gpu.nodes}});
    }
    Json nicList = Json::array();
    for (const NicRow& nic : nics) {
        Json levels = Json::array();
        for (uint32_t level : nic.levels) levels.push_back(LevelName(level));
        nicList.push_back({{"bus_id", nic.busId}, {"links", levels}});
    }
    return Json{{"schema_version", 1}, {"gpus", gpuList}, {"nics", nicList}}.dump(2) + "\n";
}

}  // namespace

int RunTopo(int argc, char** argv) {
    CLI::App app{"dksmi topo - how the GPUs and network interfaces of this host are connected,\n"
                 "and which CPUs and NUMA nodes are local to each GPU.",
                 "dksmi topo"};
    bool json = false;
    app.add_flag("--json", json, "Print JSON (schema_version 1) instead of the matrix");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? kExitOk : kExitUsage;
    }
    const DkSmlReturn init = dkSmlInit();
    if (init != DK_SML_SUCCESS) {
        std::fprintf(stderr, "dksmi: no usable GPU (status %u)\n", static_cast<unsigned>(init));
        return kExitNoUsableGpu;
    }
    std::vector<GpuRow> gpus;
    std::vector<NicRow> nics;
    Collect(gpus, nics);
    const std::string text = json ? RenderJson(gpus, nics) : RenderText(gpus, nics);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return kExitOk;
}

}  // namespace dksmi
