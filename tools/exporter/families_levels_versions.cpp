// Performance levels of every DPM domain of every die, and the versions of
// the GPU's driver, VBIOS, compute stack and firmware units: each from one
// record per die.
#include <array>
#include <string>

#include "die_readers.h"
#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kPerfLevel{"dksml_perf_level",
                                "Performance level of one DPM domain (ip) of the die (kind=current|max)."};
constexpr MetricSpec kVersions{"dksml_gpu_version_info",
                               "Driver, VBIOS and compute-stack versions of the GPU (value is always 1)."};
constexpr MetricSpec kFirmware{"dksml_firmware_version_info",
                               "Version of one firmware unit of the GPU (value is always 1)."};

// The driver's names of the DPM domains, by domain value.
constexpr std::array<const char*, DK_SML_DPM_IP_COUNT> kDpmIpNames{
    "dla", "xcore", "mc", "soc", "dnoc", "vpue", "vpud", "hbm", "g2d", "hbmpower", "ccx", "npu", "dma", "csc", "eth"};

struct FirmwareUnit {
    DkSmlVersionUnit unit;
    const char* name;
};
constexpr FirmwareUnit kFirmwareUnits[] = {
    {DK_SML_VERSION_FW_SMP0, "SMP0"}, {DK_SML_VERSION_FW_SMP1, "SMP1"}, {DK_SML_VERSION_FW_CCX0, "CCX0"},
    {DK_SML_VERSION_FW_CCX1, "CCX1"}, {DK_SML_VERSION_FW_CCX2, "CCX2"}, {DK_SML_VERSION_FW_CCX3, "CCX3"},
    {DK_SML_VERSION_FW_MCU, "MCU"},   {DK_SML_VERSION_FW_VR0, "VR0"},   {DK_SML_VERSION_FW_VR1, "VR1"},
};

}  // namespace

void CollectPerfLevels(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus)
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            DkDpmDieLevels levels{};
            const DkSmlReturn read = ReadDieDpmLevels(gpu.index, die, levels);
            for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
                const LabelList labels = WithLabels(DieLabels(gpu, die), {{"ip", kDpmIpNames[ip]}});
                // A domain the die lacks has no current level, and its maximum
                // is refused as an invalid domain: take it only where there is one.
                if (!errors.Ok(Either(read, levels.currentStatus[ip]))) continue;
                sink.Add(kPerfLevel, WithLabels(labels, {{"kind", "current"}}), levels.current[ip]);
                if (errors.Ok(levels.maxStatus[ip]))
                    sink.Add(kPerfLevel, WithLabels(labels, {{"kind", "max"}}), levels.max[ip]);
            }
        }
}

void CollectVersions(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    StackVersions stacks;
    for (const GpuTarget& gpu : context.gpus) {
        DkDieVersionTexts texts{};
        const DkSmlReturn read = ReadDieVersionTexts(gpu.index, 0, texts);
        auto unitVersion = [&](DkSmlVersionUnit unit, std::string& version) {
            if (!errors.Ok(Either(read, texts.unitStatus[unit]))) return false;
            char* text = texts.unit[unit];
            text[DK_SML_VERSION_LENGTH - 1] = '\0';
            version = text;
            return true;
        };
        std::string driver, vbios;
        const bool hasDriver = unitVersion(DK_SML_VERSION_DRIVER, driver);
        const bool hasVbios = unitVersion(DK_SML_VERSION_VBIOS, vbios);
        // The record answers only when every part of it does, the stack's version last.
        std::string computeStack, stack;
        DkSmlReturn record = Either(read, texts.recordStatus);
        if (record == DK_SML_SUCCESS) record = stacks.Get(gpu.index, stack);
        if (errors.Ok(record)) computeStack = stack;
        if (hasDriver || hasVbios || !computeStack.empty())
            sink.Add(kVersions,
                     WithLabels(gpu.labels, {{"driver", driver}, {"vbios", vbios}, {"compute_stack", computeStack}}), 1);
        for (const FirmwareUnit& unit : kFirmwareUnits) {
            std::string version;
            if (unitVersion(unit.unit, version))
                sink.Add(kFirmware, WithLabels(gpu.labels, {{"unit", unit.name}, {"version", version}}), 1);
        }
    }
}

}  // namespace dksml::exporter
