// Clock frequencies of every functional block of every die, and the
// throttle-reason mask of each die with one series per reason in force.
#include <algorithm>
#include <array>
#include <string>

#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kClock{"dksml_clock_megahertz",
                            "Clock frequency of one domain of a functional block (ip) of the die, in megahertz."};
constexpr MetricSpec kThrottleMask{"dksml_clock_throttle_reasons_mask",
                                   "Throttle-reason mask of the die as the driver reports it (0: not throttled)."};
constexpr MetricSpec kGpuThrottleMask{"dksml_gpu_clock_throttle_reasons_mask",
                                      "Throttle-reason mask of the GPU: the OR of its dies' masks (0: not throttled)."};
constexpr MetricSpec kThrottleReason{
    "dksml_clock_throttle_reason_active",
    "1 for each throttle reason in force on the die; reasons not in force have no series."};

struct ClockField {
    const char* ip;
    DkSmlClockFreq DkSmlClocksFreqForAll::*member;
};

constexpr std::array<ClockField, 13> kClockFields{{
    {"xcore", &DkSmlClocksFreqForAll::xcore},
    {"soc", &DkSmlClocksFreqForAll::soc},
    {"mc", &DkSmlClocksFreqForAll::mc},
    {"mc0", &DkSmlClocksFreqForAll::mc0},
    {"mc1", &DkSmlClocksFreqForAll::mc1},
    {"csc", &DkSmlClocksFreqForAll::csc},
    {"dla", &DkSmlClocksFreqForAll::dla},
    {"vpue", &DkSmlClocksFreqForAll::vpue},
    {"vpud", &DkSmlClocksFreqForAll::vpud},
    {"dnoc", &DkSmlClocksFreqForAll::dnoc},
    {"gpu", &DkSmlClocksFreqForAll::gpu},
    {"ccx", &DkSmlClocksFreqForAll::ccx},
    {"xpu", &DkSmlClocksFreqForAll::xpu},
}};

// The driver passes its "pmdecsrc" mask through without naming the bits, so a
// reason is named after its bit position ("bit0" ... "bit63"). Names the
// driver documents later go into this one function.
std::string ThrottleReasonName(unsigned bit) { return "bit" + std::to_string(bit); }

}  // namespace

void CollectClocks(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            DkSmlClocksFreqForAll clocks{};
            if (!errors.Ok(dkSmlGetClocks(gpu.index, die, &clocks))) continue;
            const LabelList labels = DieLabels(gpu, die);
            for (const ClockField& field : kClockFields) {
                const DkSmlClockFreq& freq = clocks.*field.member;
                const uint32_t count = std::min<uint32_t>(freq.count, DK_SML_CLOCK_MAX_VALUES);
                for (uint32_t d = 0; d < count; ++d)
                    sink.Add(kClock, WithLabels(labels, {{"ip", field.ip}, {"domain", std::to_string(d)}}),
                             freq.freq[d]);
            }
        }
    }
}

void CollectThrottleReasons(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        uint64_t gpuMask = 0;
        bool everyDie = gpu.dieCount > 0;
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            uint64_t mask = 0;
            if (!errors.Ok(dkSmlGetCurrentClocksThrottleReason(gpu.index, die, &mask))) {
                everyDie = false;
                continue;
            }
            gpuMask |= mask;
            const LabelList labels = DieLabels(gpu, die);
            sink.Add(kThrottleMask, labels, static_cast<double>(mask));
            for (unsigned bit = 0; bit < 64; ++bit)
                if (mask & (uint64_t{1} << bit))
                    sink.Add(kThrottleReason, WithLabels(labels, {{"reason", ThrottleReasonName(bit)}}), 1);
        }
        // The GPU's mask is the OR of every die; a die that could not be read leaves it unknown.
        if (everyDie) sink.Add(kGpuThrottleMask, gpu.labels, static_cast<double>(gpuMask));
    }
}

}  // namespace dksml::exporter
