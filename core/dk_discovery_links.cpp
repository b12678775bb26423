// What discovery learns after the scan: which virtual functions a physical
// function hosts ("gpuvf") and each device's DRM card and render nodes.
#include <unistd.h>
#include <string_view>
#include <vector>

#include "core/dk_device.h"
#include "driver/dk_dir_list.h"
#include "core/dk_host_root.h"
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr const char* c_gpuvfFile = "gpuvf";
constexpr std::string_view c_vfEntryMarker = "VF #";
constexpr std::string_view c_vfBusIdKey = "BusId:";
constexpr std::string_view c_vfStateKey = "VF State:";
constexpr std::string_view c_vfActiveState = "Active";
constexpr const char* c_driByPathDir = "/dev/dri/by-path";
constexpr std::string_view c_driLinkPrefix = "pci-";

struct DkGpuvfEntry {
    uint32_t number = 0;
    std::string bdfId;
    bool active = false;
};

std::string_view TextAfter(std::string_view line, size_t position) {
    return TrimView(line.substr(position), " \t\r");
}

// ParseGpuvfFile: "VF #n" starts an entry; "BusId:" and "VF State:" lines fill it.
std::vector<DkGpuvfEntry> ParseGpuvfFile(std::string_view text) {
    std::vector<DkGpuvfEntry> entries;
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        size_t at = line.find(c_vfEntryMarker);
        if (at != std::string_view::npos) {
            DkGpuvfEntry entry;
            stoui_nt(TextAfter(line, at + c_vfEntryMarker.size()), entry.number);
            entries.push_back(entry);
            continue;
        }
        if (entries.empty()) continue;
        if ((at = line.find(c_vfBusIdKey)) != std::string_view::npos)
            entries.back().bdfId = TextAfter(line, at + c_vfBusIdKey.size());
        else if ((at = line.find(c_vfStateKey)) != std::string_view::npos)
            entries.back().active = TextAfter(line, at + c_vfStateKey.size()) == c_vfActiveState;
    }
    return entries;
}

// "card3" -> 3, "renderD131" -> 131: the number that ends a DRM node name.
bool TrailingNumber(std::string_view name, uint32_t& number) {
    size_t digits = name.find_last_not_of("0123456789");
    std::string_view tail = digits == std::string_view::npos ? name : name.substr(digits + 1);
    unsigned int value = 0;
    if (!IsNumber(tail) || !stoui_nt(tail, value)) return false;
    number = value;
    return true;
}

}  // namespace

void DkSystemManager::ConnectPfAndVfDevice() {
    State& s = *m_state;
    for (uint32_t index = 0; index < s.availableDeviceCount; ++index) {
        auto pfIt = s.devices.find(index);
        if (pfIt == s.devices.end()) break;
        std::shared_ptr<IDkDevice> pf = pfIt->second;
        const std::shared_ptr<const DkDeviceDirs> dirs = pf->GetDeviceDirs();
        std::string text;
        if (!dirs) continue;
        DkDirFd scratch;  // the path is built only for a directory not kept
        const DkDirFd& function =
            dirs->function.IsOpen() ? dirs->function : dirs->function.OrOpenedAt(HostPath(pf->GetDeviceDir()), scratch);
        if (ReadFileTextAt(function.Get(), c_gpuvfFile, text) != DK_SML_SUCCESS) continue;
        std::vector<DkGpuvfEntry> entries = ParseGpuvfFile(text);
        if (entries.empty()) continue;
        pf->SetDeviceVirtualizationMode(DK_SML_VIRTUALIZATION_MODE_PF);
        for (const DkGpuvfEntry& entry : entries) {
            auto vfIndex = s.bdfToDeviceIndex.find(entry.bdfId);
            if (vfIndex == s.bdfToDeviceIndex.end()) continue;
            std::shared_ptr<IDkDevice> vf = s.devices[vfIndex->second];
            if (!vf || !vf->IsVf()) continue;
            pf->AddVirtualizedDevice(entry.number, vf);
            pf->AddVfList(vfIndex->second);
            if (auto* dkVf = dynamic_cast<DkDevice*>(vf.get())) dkVf->SetPfAncestor(pf, entry.number);
        }
    }
}

// A link is named "pci-<bus id>-card" or "pci-<bus id>-render", so each
// device and kind has at most one: the listing's order does not matter and
// is not sorted.
void DkSystemManager::GetRenderIdAndCardId() {
    State& s = *m_state;
    // The links are listed and read relative to their own directory.
    const DkDirFd byPath = CurrentHostRoot()->OpenListing(c_driByPathDir);
    if (!byPath.IsOpen()) return;
    std::string key;  // the bus id, reused: the table is keyed by std::string
    ForEachDirEntry(byPath.Get(), [&](std::string_view name) {
        std::string_view view = name;
        if (view.substr(0, c_driLinkPrefix.size()) != c_driLinkPrefix) return;
        view.remove_prefix(c_driLinkPrefix.size());
        size_t dash = view.rfind('-');
        if (dash == std::string_view::npos) return;
        std::string_view kind = view.substr(dash + 1);
        if (kind != "card" && kind != "render") return;
        key.assign(view.data(), dash);
        auto device = s.bdfToDeviceIndex.find(key);
        if (device == s.bdfToDeviceIndex.end()) return;
        // One readlinkat: the by-path links point straight at the node.
        // `name` is a whole entry name, NUL-terminated in the listing.
        char target[4096];
        const ssize_t length = ::readlinkat(byPath.Get(), name.data(), target, sizeof target);
        uint32_t number = 0;
        if (length <= 0 || static_cast<std::size_t>(length) >= sizeof target ||
            !TrailingNumber(std::string_view(target, static_cast<std::size_t>(length)), number))
            return;
        IDkDevice& dev = *s.devices[device->second];
        if (kind == "card") dev.SetDeviceCardId(number);
        else dev.SetDeviceRenderId(number);
    });
}

}  // namespace dksml
