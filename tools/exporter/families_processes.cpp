// Processes per GPU: their number and memory, and with --per-process one
// series per process (pid and name labels).
#include <cstring>
#include <vector>

#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kCount{"dksml_processes", "Number of processes using the GPU."};
constexpr MetricSpec kMemory{"dksml_processes_memory_bytes", "Device memory the GPU's processes use, in bytes."};
constexpr MetricSpec kProcessMemory{"dksml_process_memory_bytes",
                                    "Device memory one process uses on the GPU, in bytes (--per-process)."};

// Room for the processes of one GPU on a first read. The library clears and
// converts as many records as it is given room for, so a small start keeps a
// scrape cheap; a GPU with more processes is read again with room for all.
constexpr uint32_t c_processCapacity = 8;

}  // namespace

void CollectProcesses(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    std::vector<DkSmlProcessInfo> infos(c_processCapacity);
    for (const GpuTarget& gpu : context.gpus) {
        uint32_t count = static_cast<uint32_t>(infos.size());
        DkSmlReturn status = dkSmlGetSingleGpuProcess(gpu.index, &count, infos.data());
        // The library counts every process but fills only the records it has room for.
        if (status == DK_SML_ERROR_INSUFFICIENT_SIZE || (status == DK_SML_SUCCESS && count > infos.size())) {
            infos.resize(count);
            count = static_cast<uint32_t>(infos.size());
            status = dkSmlGetSingleGpuProcess(gpu.index, &count, infos.data());
        }
        if (!errors.Ok(status)) continue;
        count = std::min<uint32_t>(count, static_cast<uint32_t>(infos.size()));
        double bytes = 0;
        for (uint32_t p = 0; p < count; ++p) {
            DkSmlProcessInfo& info = infos[p];
            double processBytes = 0;
            for (uint32_t g = 0; g < std::min<uint32_t>(info.gpuCount, DK_SML_PROCESS_MAX_GPUS); ++g)
                if (info.gpuInfo[g].deviceId == gpu.index) processBytes += static_cast<double>(info.gpuInfo[g].memoryUsed);
            bytes += processBytes;
            if (!context.perProcess) continue;
            const std::string name(info.processName, strnlen(info.processName, sizeof info.processName));
            sink.Add(kProcessMemory, WithLabels(gpu.labels, {{"pid", std::to_string(info.pid)}, {"name", name}}),
                     processBytes);
        }
        sink.Add(kCount, gpu.labels, count);
        sink.Add(kMemory, gpu.labels, bytes);
    }
}

}  // namespace dksml::exporter
