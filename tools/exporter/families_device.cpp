// Identity of every GPU function, and the functions found but not served.
#include <cstdio>
#include <vector>

#include "../dksmi/names.h"
#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kGpuInfo{"dksml_gpu_info",
                              "GPU identity: name, brand, PCI bus id, UUID and SR-IOV role (value is always 1)."};
constexpr MetricSpec kGpuDies{"dksml_gpu_dies", "Number of dies of the GPU."};
constexpr MetricSpec kLimitedReason{
    "dksml_limited_device_reason",
    "GPU function found on the bus but not served by the library; the value is the unavailable-reason code."};

dksmi::DeviceRole RoleOf(DkSmlDeviceVirtualizationMode mode) {
    switch (mode) {
        case DK_SML_VIRTUALIZATION_MODE_PF: return dksmi::DeviceRole::PhysicalFunction;
        case DK_SML_VIRTUALIZATION_MODE_VF: return dksmi::DeviceRole::VirtualFunction;
        default: return dksmi::DeviceRole::Physical;
    }
}

std::string Hex4(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04x", value);
    return text;
}

std::vector<uint32_t> LimitedIndices(FamilyErrors& errors) {
    std::vector<uint32_t> indices(16);
    for (int attempt = 0; attempt < 2; ++attempt) {
        uint32_t count = static_cast<uint32_t>(indices.size());
        const DkSmlReturn status = dkSmlGetAllLimitedDevices(&count, indices.data());
        if (status == DK_SML_SUCCESS) {
            indices.resize(std::min<size_t>(count, indices.size()));
            return indices;
        }
        if (status != DK_SML_ERROR_INSUFFICIENT_SIZE) {
            errors.Ok(status);
            return {};
        }
        indices.resize(count);
    }
    errors.Count();
    return {};
}

}  // namespace

void CollectDeviceInfo(const ScrapeContext& context, MetricSink& sink, FamilyErrors&) {
    for (const GpuTarget& gpu : context.gpus) {
        sink.Add(kGpuInfo,
                 WithLabels(gpu.labels, {{"name", gpu.info.deviceName},
                                         {"brand", dksmi::BrandName(gpu.info.brand)},
                                         {"role", dksmi::RoleKey(RoleOf(gpu.info.virtualizationMode))}}),
                 1);
        sink.Add(kGpuDies, gpu.labels, gpu.dieCount);
    }
}

void CollectLimitedDevices(const ScrapeContext&, MetricSink& sink, FamilyErrors& errors) {
    for (uint32_t index : LimitedIndices(errors)) {
        DkSmlLimitedDeviceInfo info{};
        if (!errors.Ok(dkSmlGetLimitedDeviceInfo(index, &info))) continue;
        DkSmlDeviceUnavailableReasonInfo reason{};
        reason.reason = info.unavailableReason;
        if (!errors.Ok(dkSmlGetDeviceUnavailableReason(index, &reason))) reason.reasonText[0] = '\0';
        reason.reasonText[sizeof reason.reasonText - 1] = '\0';
        info.bdfId[sizeof info.bdfId - 1] = '\0';
        sink.Add(kLimitedReason,
                 {{"gpu", std::to_string(index)},
                  {"bus_id", info.bdfId},
                  {"vendor_id", Hex4(info.vendorId)},
                  {"device_id", Hex4(info.deviceId)},
                  {"virtual_function", info.isVf ? "true" : "false"},
                  {"reason", reason.reasonText}},
                 reason.reason);
    }
}

}  // namespace dksml::exporter
