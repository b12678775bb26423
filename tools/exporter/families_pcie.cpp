// PCIe link (current and best), slot and throughput; interconnect state,
// port states and link bandwidth.
#include <algorithm>

#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kSpeed{"dksml_pcie_link_speed_gigatransfers_per_second",
                            "PCIe link speed in GT/s (state=\"current\" or \"max\", the best the slot carries)."};
constexpr MetricSpec kWidth{"dksml_pcie_link_width_lanes",
                            "PCIe link width in lanes (state=\"current\" or \"max\")."};
constexpr MetricSpec kThroughput{"dksml_pcie_throughput",
                                 "PCIe throughput counter of the GPU, as the driver reports it (direction=rx|tx)."};
constexpr MetricSpec kSlot{"dksml_pcie_slot", "Physical slot number of the GPU."};
constexpr MetricSpec kLinkState{"dksml_interconnect_state", "Interconnect state of the GPU (code; state_text label)."};
constexpr MetricSpec kPortState{"dksml_interconnect_port_state", "State of one interconnect port, as the driver reports it."};
constexpr MetricSpec kBandwidth{
    "dksml_interconnect_bandwidth",
    "One of the two bandwidth values the driver reports for a link (direction, value=0|1), as it reports it."};

constexpr uint32_t c_maxLinks = DK_SML_DRAVIK_LINK_MAX_PORTS;

}  // namespace

void CollectPcie(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        for (const auto& [state, read] : {std::pair{"current", &dkSmlGetPcieInfo},
                                          std::pair{"max", &dkSmlGetPcieMaxLinkInfo}}) {
            DkSmlPcieInfo info{};
            if (!errors.Ok(read(gpu.index, &info))) continue;
            const LabelList labels = WithLabels(gpu.labels, {{"state", state}});
            sink.Add(kSpeed, labels, info.speed);
            sink.Add(kWidth, labels, info.width);
        }
        uint32_t slot = 0;
        if (errors.Ok(dkSmlGetDeviceSlot(gpu.index, &slot))) sink.Add(kSlot, gpu.labels, slot);
        DkSmlPcieThroughput throughput{};
        if (errors.Ok(dkSmlGetPcieThroughput(gpu.index, &throughput))) {
            sink.Add(kThroughput, WithLabels(gpu.labels, {{"direction", "rx"}}), throughput.rx);
            sink.Add(kThroughput, WithLabels(gpu.labels, {{"direction", "tx"}}), throughput.tx);
        }
    }
}

void CollectInterconnect(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        uint32_t state = 0;
        char text[128] = {};
        uint32_t size = sizeof text;
        if (errors.Ok(dkSmlGetDravikLinkState(gpu.index, &state, text, &size))) {
            text[sizeof text - 1] = '\0';
            sink.Add(kLinkState, WithLabels(gpu.labels, {{"state_text", text}}), state);
        }
        uint32_t states[c_maxLinks] = {};
        uint32_t count = c_maxLinks;
        if (errors.Ok(dkSmlGetDravikLinkPortState(gpu.index, &count, states)))
            for (uint32_t port = 0; port < std::min(count, c_maxLinks); ++port)
                sink.Add(kPortState, WithLabels(gpu.labels, {{"port", std::to_string(port)}}), states[port]);
        for (const auto& [direction, type] : {std::pair{"inbound", DK_SML_DRAVIK_LINK_INBOUND},
                                              std::pair{"outbound", DK_SML_DRAVIK_LINK_OUTBOUND}}) {
            DkSmlDravikLinkBandwidth links[c_maxLinks] = {};
            count = c_maxLinks;
            if (!errors.Ok(dkSmlGetDravikLinkBandwidth(gpu.index, type, &count, links))) continue;
            for (uint32_t link = 0; link < std::min(count, c_maxLinks); ++link)
                for (uint32_t v = 0; v < 2; ++v)
                    sink.Add(kBandwidth,
                             WithLabels(gpu.labels, {{"link", std::to_string(link)},
                                                     {"direction", direction},
                                                     {"value", std::to_string(v)}}),
                             links[link].values[v]);
        }
    }
}

}  // namespace dksml::exporter
