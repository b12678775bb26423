#include "slice_set.h"

#include <fmt/format.h>

#include "dksml.h"

namespace dksmi {
namespace {

Outcome Refuse(int code, std::string message) { return Outcome{code, std::move(message)}; }

// The library's answer in the operator's words.
Outcome FromStatus(DkSmlReturn status, const SliceSetRequest& request, const std::string& done) {
    switch (status) {
        case DK_SML_SUCCESS: return Outcome{kExitOk, done};
        case DK_SML_ERROR_DEVICE_NOT_AVAILABLE:
            return Refuse(kExitNoSuchDevice, fmt::format("no device with index {}", request.device));
        case DK_SML_ERROR_NOT_SUPPORTED:
            return Refuse(kExitFailure, fmt::format("device {} has no slice mode, is a virtual function, or is not "
                                                    "in slice mode (turn it on first)", request.device));
        case DK_SML_ERROR_PERMISSION: return Refuse(kExitFailure, "the driver refused the change (permission)");
        case DK_SML_ERROR_SYSFS:
        case DK_SML_ERROR_SYSFS_WRITE:
            return Refuse(kExitFailure, fmt::format("the driver did not accept the change (status {}: {})",
                                                    static_cast<uint32_t>(status), dkSmlGetErrorString(status)));
        default:
            return Refuse(kExitFailure, fmt::format("failed with status {}: {}", static_cast<uint32_t>(status),
                                                    dkSmlGetErrorString(status)));
    }
}

}  // namespace

Outcome RunSliceSet(const SliceSetRequest& r, unsigned euid) {
    if (euid != 0) return Refuse(kExitUsage, "changing slices needs root");
    switch (r.action) {
        case SliceAction::Toggle:
            return FromStatus(dkSmlSetSgpuToggle(r.device, r.on ? 1 : 0), r,
                              fmt::format("device {}: slice mode {}", r.device, r.on ? "on" : "off"));
        case SliceAction::Create: {
            if (r.vramQuota == 0 || r.computeQuota == 0)
                return Refuse(kExitUsage, "a slice needs a video-memory quota and a compute quota above 0");
            uint32_t id = 0;
            const DkSmlReturn status = dkSmlCreateSgpu(r.device, r.vramQuota, r.computeQuota, &id);
            return FromStatus(status, r, fmt::format("device {}: created slice {}", r.device, id));
        }
        case SliceAction::Remove:
            return FromStatus(dkSmlRemoveSgpu(r.device, r.slice), r,
                              fmt::format("device {}: removed slice {}", r.device, r.slice));
        case SliceAction::Alias:
            return FromStatus(dkSmlSetSgpuAlias(r.device, r.slice, r.alias.c_str()), r,
                              fmt::format("device {}: slice {} is now \"{}\"", r.device, r.slice, r.alias));
    }
    return Refuse(kExitUsage, "unknown slice operation");
}

}  // namespace dksmi
