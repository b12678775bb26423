// Slice mode: for a device in slice mode its "model" file, its "sgpu" directory, one "sgpu<id>" directory per slice and one
// layout node of type "sgpu-sub-dev" per slice. In slice mode the parent's own
// layout node carries GPU id 0: only the slices have driver GPU ids.
#include <algorithm>
#include <string>

#include "vhost/vhost_fs.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* c_nodesDir = "/sys/class/dravik/dkcd/layout/nodes/";
constexpr uint32_t c_maxSlices = 16;

std::string Line(uint64_t value) { return std::to_string(value) + "\n"; }

uint32_t SliceNodeId(const DeviceSpec& device, const SliceSpec& slice) {
    return slice.nodeId != 0 ? slice.nodeId : 1000 + device.nodeId * c_maxSlices + slice.id;
}

void WriteSlice(const fs::path& root, const DeviceSpec& device, const std::string& sgpuDir, const SliceSpec& slice) {
    const std::string dir = sgpuDir + "sgpu" + std::to_string(slice.id) + "/";
    const uint32_t nodeId = SliceNodeId(device, slice);
    WriteText(root, dir + "gpu_id", Line(slice.gpuId));
    WriteText(root, dir + "node_id", Line(nodeId));
    WriteText(root, dir + "vram_quota", Line(slice.vramQuota));
    WriteText(root, dir + "sched_quota", Line(slice.computeQuota));
    WriteText(root, dir + "sched_priority", Line(slice.priority));
    WriteText(root, dir + "minor", Line(slice.minor));
    WriteText(root, dir + "online", Line(slice.online));
    WriteText(root, dir + "alias", slice.alias);
    WriteText(root, dir + "annotations", slice.annotations);
    WriteText(root, dir + "utilization", Line(slice.utilization));
    WriteText(root, dir + "meminfo", std::to_string(slice.memory[0]) + " " + std::to_string(slice.memory[1]) + " " +
                                         std::to_string(slice.memory[2]) + "\n");
    std::string overrun;
    for (size_t i = 0; i < slice.overrun.size(); ++i) overrun += "period" + std::to_string(i) + ": " + Line(slice.overrun[i]);
    WriteText(root, dir + "overrun", overrun);

    const std::string node = c_nodesDir + std::to_string(nodeId) + "/";
    WriteText(root, node + "gpu_id", Line(slice.gpuId));
    WriteText(root, node + "type", "sgpu-sub-dev\n");
    WriteText(root, node + "local_id", Line(slice.id));
    WriteText(root, node + "location", device.busId + "\n");
    WriteText(root, node + "active", Line(slice.active));
    WriteText(root, node + "unique_id",
              (slice.uniqueId.empty() ? device.uniqueId + "-" + std::to_string(slice.id) : slice.uniqueId) + "\n");
}

void WriteSliceMode(const fs::path& root, const DeviceSpec& device, const SgpuSpec& sgpu) {
    const std::string dir = PciDevicePath(device);
    const std::string sgpuDir = dir + "/sgpu/";
    uint32_t usedVram = 0, usedCompute = 0;
    for (const SliceSpec& slice : sgpu.slices) {
        usedVram += slice.vramQuota;
        usedCompute += slice.computeQuota;
        WriteSlice(root, device, sgpuDir, slice);
    }
    WriteText(root, sgpuDir + "create", "");
    WriteText(root, sgpuDir + "remove", "");
    WriteText(root, sgpuDir + "available_devcnt", Line(c_maxSlices - sgpu.slices.size()));
    WriteText(root, sgpuDir + "total_vram_quota", Line(sgpu.totalVramQuota));
    WriteText(root, sgpuDir + "available_vram_quota", Line(sgpu.totalVramQuota - std::min(usedVram, sgpu.totalVramQuota)));
    WriteText(root, sgpuDir + "available_sched_quota", Line(100 - std::min(usedCompute, 100u)));
    WriteText(root, sgpuDir + "sched_timeslice", Line(sgpu.timeslice));
    WriteText(root, sgpuDir + "sched_class", Line(sgpu.schedClass));
    if (device.layoutNode) WriteText(root, c_nodesDir + std::to_string(device.nodeId) + "/gpu_id", "0\n");
}

}  // namespace

void WriteSliceGpus(const fs::path& root, const HostSpec& host) {
    if (!host.driverLoaded) return;
    for (const DeviceSpec& device : host.devices) {
        if (device.kind != FunctionKind::Physical || !device.sgpu) continue;
        WriteText(root, PciDevicePath(device) + "/model", "sgpu\n");
        WriteSliceMode(root, device, *device.sgpu);
    }
}

}  // namespace dksml::vhost
