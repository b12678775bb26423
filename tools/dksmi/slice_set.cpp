#include "slice_set.h"

#include <charconv>
#include <optional>

#include <fmt/format.h>

#include "dksml.h"
#include "names.h"

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
            return Refuse(kExitRefused, fmt::format("device {} has no slice mode, is a virtual function, or is not "
                                                    "in slice mode (turn it on first)", request.device));
        case DK_SML_ERROR_PERMISSION: return Refuse(kExitRefused, "the driver refused the change (permission)");
        case DK_SML_ERROR_SYSFS:
        case DK_SML_ERROR_SYSFS_WRITE:
            return Refuse(kExitRefused, fmt::format("the driver did not accept the change (status {}: {})",
                                                    static_cast<uint32_t>(status), dkSmlGetErrorString(status)));
        default:
            return Refuse(kExitRefused, fmt::format("failed with status {}: {}", static_cast<uint32_t>(status),
                                                    dkSmlGetErrorString(status)));
    }
}

std::string ModeBefore(uint32_t device) {
    uint32_t on = 0;
    if (dkSmlGetSgpuToggle(device, &on) != DK_SML_SUCCESS) return "N/A";
    return on != 0 ? "on" : "off";
}

// The alias as the library copies it: a first call learns the size.
std::string AliasBefore(uint32_t device, uint32_t slice) {
    std::string alias(64, '\0');
    for (int attempt = 0; attempt < 2; ++attempt) {
        uint32_t size = static_cast<uint32_t>(alias.size());
        const DkSmlReturn status = dkSmlGetSgpuAlias(device, slice, alias.data(), &size);
        if (status == DK_SML_SUCCESS) return "\"" + std::string(alias.c_str()) + "\"";
        if (status != DK_SML_ERROR_INSUFFICIENT_SIZE) break;
        alias.assign(size, '\0');
    }
    return "N/A";
}

SliceSetRequest Request(SliceAction action, uint32_t index) {
    SliceSetRequest request;
    request.action = action;
    request.device = index;
    return request;
}

// "ID=TEXT": a decimal slice id, then the alias (which may be empty).
std::optional<SliceSetRequest> ParseAlias(const std::string& text, uint32_t index) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) return std::nullopt;
    SliceSetRequest request = Request(SliceAction::Alias, index);
    const auto [end, error] = std::from_chars(text.data(), text.data() + equals, request.slice);
    if (error != std::errc() || end != text.data() + equals) return std::nullopt;
    request.alias = text.substr(equals + 1);
    return request;
}

}  // namespace

void AddSliceSetOptions(CLI::App& set, SliceSettings& s) {
    set.add_option("--slice-mode", s.mode, "Turn slice mode on or off")->check(CLI::IsMember({"on", "off"}));
    CLI::Option* create = set.add_flag("--create-slice", s.create, "Create a slice with the two quotas below");
    set.add_option("--vram-quota", s.vramQuota, "Video-memory quota of the new slice")->needs(create);
    set.add_option("--compute-quota", s.computeQuota, "Compute quota of the new slice")->needs(create);
    set.add_option("--remove-slice", s.remove, "Remove the slice with this id")->type_name("ID");
    set.add_option("--slice-alias", s.alias, "Set a slice's alias")->type_name("ID=TEXT");
}

SliceRequests ToSliceRequests(const SliceSettings& s, uint32_t index) {
    SliceRequests out;
    if (!s.mode.empty()) {
        SliceSetRequest toggle = Request(SliceAction::Toggle, index);
        toggle.on = s.mode == "on";
        out.requests.push_back(toggle);
    }
    if (s.create) {
        SliceSetRequest create = Request(SliceAction::Create, index);
        create.vramQuota = s.vramQuota;
        create.computeQuota = s.computeQuota;
        out.requests.push_back(create);
    }
    for (const std::string& text : s.alias) {
        const std::optional<SliceSetRequest> alias = ParseAlias(text, index);
        if (!alias) {
            out.usageError = fmt::format("--slice-alias expects ID=TEXT with a decimal slice id, not \"{}\"", text);
            return out;
        }
        out.requests.push_back(*alias);
    }
    for (uint32_t slice : s.remove) {
        SliceSetRequest remove = Request(SliceAction::Remove, index);
        remove.slice = slice;
        out.requests.push_back(remove);
    }
    return out;
}

Outcome RunSliceSet(const SliceSetRequest& r, unsigned euid) {
    if (euid != 0) {
        return Refuse(kExitRefused, fmt::format("permission denied: changing slices needs root ({}, code {})",
                                                StatusText(DK_SML_ERROR_PERMISSION),
                                                static_cast<int>(DK_SML_ERROR_PERMISSION)));
    }
    switch (r.action) {
        case SliceAction::Toggle: {
            const std::string before = ModeBefore(r.device);
            return FromStatus(dkSmlSetSgpuToggle(r.device, r.on ? 1 : 0), r,
                              fmt::format("slice mode: {} -> {}", before, r.on ? "on" : "off"));
        }
        case SliceAction::Create: {
            if (r.vramQuota == 0 || r.computeQuota == 0)
                return Refuse(kExitUsage, "a slice needs a video-memory quota and a compute quota above 0");
            uint32_t id = 0;
            const DkSmlReturn status = dkSmlCreateSgpu(r.device, r.vramQuota, r.computeQuota, &id);
            return FromStatus(status, r, fmt::format("created slice {} (video-memory quota {}, compute quota {})", id,
                                                     r.vramQuota, r.computeQuota));
        }
        case SliceAction::Remove:
            return FromStatus(dkSmlRemoveSgpu(r.device, r.slice), r, fmt::format("removed slice {}", r.slice));
        case SliceAction::Alias: {
            const std::string before = AliasBefore(r.device, r.slice);
            return FromStatus(dkSmlSetSgpuAlias(r.device, r.slice, r.alias.c_str()), r,
                              fmt::format("slice {} alias: {} -> \"{}\"", r.slice, before, r.alias));
        }
    }
    return Refuse(kExitUsage, "unknown slice operation");
}

}  // namespace dksmi
