// The "sgpu" section of a device: slice mode with its slices.
#include <set>
#include <stdexcept>
#include <string>

#include "vhost/vhost_profile.h"

namespace dksml::vhost {
namespace {

using nlohmann::json;

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
    throw std::runtime_error("profile: " + where + ": " + what);
}

void CheckKeys(const json& object, const std::set<std::string>& allowed, const std::string& where) {
    if (!object.is_object()) Fail(where, "must be an object");
    for (const auto& [key, value] : object.items()) {
        if (!allowed.contains(key)) Fail(where, "unknown key \"" + key + "\"");
    }
}

SliceSpec ParseSlice(const json& entry, const std::string& where) {
    CheckKeys(entry, {"id", "gpu_id", "node_id", "vram_quota", "compute_quota", "priority", "online", "minor",
                      "utilization", "active", "meminfo", "alias", "annotations", "unique_id", "overrun"},
              where);
    SliceSpec slice;
    slice.id = entry.at("id").get<uint32_t>();
    if (slice.id > 15) Fail(where, "id must be 0 to 15");
    slice.gpuId = entry.at("gpu_id").get<uint32_t>();
    if (slice.gpuId == 0 || slice.gpuId > 0xffff) Fail(where, "gpu_id must be 1 to 65535");
    slice.nodeId = entry.value("node_id", 0u);
    slice.vramQuota = entry.value("vram_quota", 0u);
    slice.computeQuota = entry.value("compute_quota", 0u);
    slice.priority = entry.value("priority", 0u);
    slice.online = entry.value("online", 1u);
    slice.minor = entry.value("minor", 0u);
    slice.utilization = entry.value("utilization", 0u);
    slice.active = entry.value("active", 1u);
    const std::vector<uint64_t> memory = entry.value("meminfo", std::vector<uint64_t>{0, 0, 0});
    if (memory.size() != 3) Fail(where, "meminfo must hold three numbers");
    for (size_t i = 0; i < 3; ++i) slice.memory[i] = memory[i];
    slice.alias = entry.value("alias", "");
    slice.annotations = entry.value("annotations", "");
    slice.uniqueId = entry.value("unique_id", "");
    slice.overrun = entry.value("overrun", std::vector<uint32_t>{});
    return slice;
}

}  // namespace

SgpuSpec ParseSgpu(const json& section, const std::string& where) {
    CheckKeys(section, {"total_vram_quota", "timeslice", "sched_class", "slices"}, where);
    SgpuSpec sgpu;
    sgpu.totalVramQuota = section.value("total_vram_quota", 65536u);
    sgpu.timeslice = section.value("timeslice", 10u);
    sgpu.schedClass = section.value("sched_class", 0u);
    std::set<uint32_t> ids;
    for (const json& entry : section.value("slices", json::array())) {
        SliceSpec slice = ParseSlice(entry, where + ".slices");
        if (!ids.insert(slice.id).second) Fail(where, "duplicate slice id " + std::to_string(slice.id));
        sgpu.slices.push_back(std::move(slice));
    }
    return sgpu;
}

}  // namespace dksml::vhost
