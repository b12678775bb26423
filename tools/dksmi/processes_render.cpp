#include "processes_render.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

namespace dksmi {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kNotAvailable = "N/A";

std::string Mebibytes(uint64_t bytes) { return fmt::format("{} MiB", bytes >> 20); }

std::string FormatRows(const std::vector<std::string>& headers, const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths(headers.size());
    for (size_t c = 0; c < headers.size(); ++c) {
        widths[c] = headers[c].size();
        for (const auto& row : rows) widths[c] = std::max(widths[c], row[c].size());
    }
    std::string out;
    auto line = [&](const std::vector<std::string>& cells) {
        for (size_t c = 0; c < cells.size(); ++c)
            out += c + 1 < cells.size() ? fmt::format("{:<{}}  ", cells[c], widths[c]) : cells[c];
        out += "\n";
    };
    line(headers);
    for (const auto& row : rows) line(row);
    return out;
}

std::string SliceText(int32_t sliceId) { return sliceId < 0 ? "-" : std::to_string(sliceId); }

}  // namespace

std::string RenderProcesses(const Snapshot& snapshot, ProcessOrder order) {
    if (!snapshot.processes) return "Processes: the process scan is not available\n";
    if (snapshot.processes->empty()) return "Processes: none\n";
    std::vector<const ProcessReport*> sorted;
    for (const ProcessReport& process : *snapshot.processes) sorted.push_back(&process);
    std::stable_sort(sorted.begin(), sorted.end(), [order](const ProcessReport* a, const ProcessReport* b) {
        return order == ProcessOrder::Memory ? a->TotalMemory() > b->TotalMemory() : a->pid < b->pid;
    });
    std::vector<std::vector<std::string>> rows;
    for (const ProcessReport* process : sorted) {
        for (const ProcessGpuUse& use : process->gpus) {
            rows.push_back({std::to_string(process->pid),
                            process->namespacePid ? std::to_string(*process->namespacePid) : kNotAvailable,
                            process->name, std::to_string(use.deviceIndex), use.busId, SliceText(use.sliceId),
                            std::to_string(use.vramTag), Mebibytes(use.memory)});
        }
    }
    return FormatRows({"PID", "NSPID", "NAME", "GPU", "BUS ID", "SLICE", "DOMAIN", "MEMORY"}, rows);
}

std::string SliceLine(const SliceReport& slice) {
    std::string memory = kNotAvailable;
    if (slice.memory)
        memory = fmt::format("{} / {}", Mebibytes(slice.memory->values[1]), Mebibytes(slice.memory->values[0]));
    return fmt::format("vram quota {}, compute quota {}, state {}, utilisation {}, memory {}{}{}", slice.vramQuota,
                       slice.computeQuota, slice.state ? std::to_string(*slice.state) : kNotAvailable,
                       slice.utilization ? fmt::format("{} %", *slice.utilization) : kNotAvailable, memory,
                       slice.alias.empty() ? "" : ", alias " + slice.alias,
                       slice.uuid.empty() ? "" : ", " + slice.uuid);
}

Json SlicesJson(const DeviceReport& device) {
    Json slices = Json::array();
    for (const SliceReport& slice : device.slices) {
        Json memory = nullptr;
        if (slice.memory)
            memory = Json{{"total", slice.memory->values[0]}, {"used", slice.memory->values[1]},
                          {"free", slice.memory->values[2]}};
        slices.push_back(Json{
            {"id", slice.id},
            {"uuid", slice.uuid.empty() ? Json(nullptr) : Json(slice.uuid)},
            {"alias", slice.alias},
            {"vram_quota", slice.vramQuota},
            {"compute_quota", slice.computeQuota},
            {"state", slice.state ? Json(*slice.state) : Json(nullptr)},
            {"utilization_percent", slice.utilization ? Json(*slice.utilization) : Json(nullptr)},
            {"memory", memory},
        });
    }
    return slices;
}

Json ProcessesJson(const Snapshot& snapshot) {
    if (!snapshot.processes) return nullptr;
    Json processes = Json::array();
    for (const ProcessReport& process : *snapshot.processes) {
        Json gpus = Json::array();
        for (const ProcessGpuUse& use : process.gpus)
            gpus.push_back(Json{{"device_index", use.deviceIndex},
                                {"bus_id", use.busId},
                                {"slice_id", use.sliceId < 0 ? Json(nullptr) : Json(use.sliceId)},
                                {"memory_domain", use.vramTag},
                                {"memory_bytes", use.memory}});
        processes.push_back(Json{{"pid", process.pid},
                                 {"namespace_pid", process.namespacePid ? Json(*process.namespacePid) : Json(nullptr)},
                                 {"name", process.name},
                                 {"gpus", gpus}});
    }
    return processes;
}

}  // namespace dksmi
