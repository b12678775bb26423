// Engine usage of every die and the memory pools of every die.
#include <array>

#include "die_readers.h"
#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kUsage{"dksml_engine_usage_percent", "Usage of one engine type of the die, in percent."};
constexpr MetricSpec kMemoryTotal{"dksml_memory_total_bytes", "Size of one memory pool of the die, in bytes."};
constexpr MetricSpec kMemoryUsed{"dksml_memory_used_bytes", "Used part of one memory pool of the die, in bytes."};

struct Engine {
    const char* name;
    DkSmlUsageIp ip;
};
constexpr std::array<Engine, 5> kEngines{{{"dla", DK_SML_USAGE_IP_DLA},
                                          {"vpue", DK_SML_USAGE_IP_VPUE},
                                          {"vpud", DK_SML_USAGE_IP_VPUD},
                                          {"g2d", DK_SML_USAGE_IP_G2D},
                                          {"xcore", DK_SML_USAGE_IP_XCORE}}};

// Pool 0 the device memory, 1 its CPU-visible part, 2 the host memory the die maps.
constexpr std::array<const char*, DK_SML_MEMORY_POOLS> kPools{"vram", "visible_vram", "gtt"};

}  // namespace

void CollectUsage(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus)
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            DkDieUsage usage{};
            const DkSmlReturn read = ReadDieUsages(gpu.index, die, usage);
            for (const Engine& engine : kEngines) {
                const int32_t percent = usage.percent[engine.ip];
                if (errors.Ok(Either(read, usage.status[engine.ip])) && percent >= 0)
                    sink.Add(kUsage, WithLabels(DieLabels(gpu, die), {{"engine", engine.name}}), percent);
            }
        }
}

void CollectMemory(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus)
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            DkSmlMemoryInfo info{};
            if (!errors.Ok(dkSmlGetDieMemoryInfo(gpu.index, die, &info))) continue;
            for (size_t p = 0; p < kPools.size(); ++p) {
                const LabelList labels = WithLabels(DieLabels(gpu, die), {{"pool", kPools[p]}});
                sink.Add(kMemoryTotal, labels, static_cast<double>(info.pool[p].total) * 1024.0);
                sink.Add(kMemoryUsed, labels, static_cast<double>(info.pool[p].used) * 1024.0);
            }
        }
}

}  // namespace dksml::exporter
