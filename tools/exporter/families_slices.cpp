// Slice GPUs: the slice mode of each GPU and, per slice, its quotas and usage.
#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kMode{"dksml_slice_mode", "1 when the GPU is divided into slice GPUs, else 0."};
constexpr MetricSpec kVramQuota{"dksml_slice_vram_quota", "Memory quota of one slice GPU, as the driver states it."};
constexpr MetricSpec kComputeQuota{"dksml_slice_compute_quota",
                                   "Compute quota of one slice GPU, as the driver states it."};
constexpr MetricSpec kUsage{"dksml_slice_usage_percent", "Usage of one slice GPU, in percent."};

// Slice ids the driver hands out on one GPU.
constexpr uint32_t c_maxSlices = 16;

}  // namespace

void CollectSlices(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        uint32_t on = 0;
        if (!errors.Ok(dkSmlGetSgpuToggle(gpu.index, &on))) continue;
        sink.Add(kMode, gpu.labels, on != 0 ? 1 : 0);
        if (on == 0) continue;
        for (uint32_t id = 0; id < c_maxSlices; ++id) {
            DkSmlSgpuInfo info{};
            if (dkSmlGetSgpuInfo(gpu.index, id, &info) != DK_SML_SUCCESS) continue;  // id not in use
            info.uuid[sizeof info.uuid - 1] = '\0';
            const LabelList labels = WithLabels(gpu.labels, {{"slice", std::to_string(id)}, {"slice_uuid", info.uuid}});
            sink.Add(kVramQuota, labels, info.vramQuota);
            sink.Add(kComputeQuota, labels, info.computeQuota);
            int32_t usage = 0;
            if (errors.Ok(dkSmlGetSgpuUsage(gpu.index, id, &usage)) && usage >= 0) sink.Add(kUsage, labels, usage);
        }
    }
}

}  // namespace dksml::exporter
