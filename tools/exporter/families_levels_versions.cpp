// Performance levels of every DPM domain of every die, and the versions of
// the GPU's driver, VBIOS, compute stack and firmware units.
#include <array>
#include <string>

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

bool UnitVersion(uint32_t index, DkSmlVersionUnit unit, std::string& version, FamilyErrors& errors) {
    char text[DK_SML_VERSION_LENGTH] = {};
    uint32_t size = sizeof text;
    if (!errors.Ok(dkSmlGetDeviceVersion(index, unit, text, &size))) return false;
    text[sizeof text - 1] = '\0';
    version = text;
    return true;
}

}  // namespace

void CollectPerfLevels(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus)
        for (uint32_t die = 0; die < gpu.dieCount; ++die)
            for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
                const auto domain = static_cast<DkSmlDpmIp>(ip);
                const LabelList labels = WithLabels(DieLabels(gpu, die), {{"ip", kDpmIpNames[ip]}});
                uint32_t level = 0;
                // A domain the die lacks has no current level, and its maximum
                // is refused as an invalid domain: ask only where there is one.
                if (!errors.Ok(dkSmlGetCurrentDieDpmIpPerfLevel(gpu.index, die, domain, &level))) continue;
                sink.Add(kPerfLevel, WithLabels(labels, {{"kind", "current"}}), level);
                if (errors.Ok(dkSmlGetDieDpmIpMaxPerfLevel(gpu.index, die, domain, &level)))
                    sink.Add(kPerfLevel, WithLabels(labels, {{"kind", "max"}}), level);
            }
}

void CollectVersions(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        std::string driver, vbios;
        const bool hasDriver = UnitVersion(gpu.index, DK_SML_VERSION_DRIVER, driver, errors);
        const bool hasVbios = UnitVersion(gpu.index, DK_SML_VERSION_VBIOS, vbios, errors);
        DkSmlVersion record{};
        std::string computeStack;
        if (errors.Ok(dkSmlGetDeviceDieVersion(gpu.index, 0, &record))) {
            record.vornVersion[sizeof record.vornVersion - 1] = '\0';
            computeStack = record.vornVersion;
        }
        if (hasDriver || hasVbios || !computeStack.empty())
            sink.Add(kVersions,
                     WithLabels(gpu.labels, {{"driver", driver}, {"vbios", vbios}, {"compute_stack", computeStack}}), 1);
        for (const FirmwareUnit& unit : kFirmwareUnits) {
            std::string version;
            if (UnitVersion(gpu.index, unit.unit, version, errors))
                sink.Add(kFirmware, WithLabels(gpu.labels, {{"unit", unit.name}, {"version", version}}), 1);
        }
    }
}

}  // namespace dksml::exporter
