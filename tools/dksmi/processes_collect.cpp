#include "processes_collect.h"

#include <set>
#include <string>
#include <vector>

#include "core/dk_host_root.h"
#include "driver/dk_text.h"
#include "features/process/dk_dir_list.h"
#include "features/process/idk_process_management.h"

namespace dksmi {
namespace {

constexpr uint32_t kMaxSlices = 16;

// The process records carry no namespace pid; the driver's client directory
// does. This is the only place the tool reads a driver file itself.
std::optional<uint32_t> NamespacePid(uint32_t pid) {
    const std::string path =
        dksml::HostPath(std::string(dksml::c_dkcdDebugDir) + "/proc/" + std::to_string(pid) + "/nspid");
    std::string text;
    if (dksml::ReadFileText(path, text) != DK_SML_SUCCESS) return std::nullopt;
    uint64_t value = 0;
    if (!dksml::ParseLeadingDecimal(text, UINT32_MAX, value)) return std::nullopt;
    return static_cast<uint32_t>(value);
}

std::string Terminated(const char* text, size_t size) {
    size_t length = 0;
    while (length < size && text[length] != '\0') ++length;
    return std::string(text, length);
}

}  // namespace

void CollectSlices(DeviceReport& device) {
    uint32_t on = 0;
    if (dkSmlGetSgpuToggle(device.index, &on) != DK_SML_SUCCESS) return;
    device.sliceMode = on != 0;
    if (on == 0) return;
    for (uint32_t id = 0; id < kMaxSlices; ++id) {
        DkSmlSgpuInfo info{};
        if (dkSmlGetSgpuInfo(device.index, id, &info) != DK_SML_SUCCESS) continue;
        SliceReport slice;
        slice.id = id;
        slice.vramQuota = info.vramQuota;
        slice.computeQuota = info.computeQuota;
        slice.uuid = Terminated(info.uuid, sizeof(info.uuid));
        char alias[256] = {};
        uint32_t size = sizeof(alias);
        if (dkSmlGetSgpuAlias(device.index, id, alias, &size) == DK_SML_SUCCESS) slice.alias = alias;
        int32_t value = 0;
        if (dkSmlGetSgpuState(device.index, id, &value) == DK_SML_SUCCESS) slice.state = value;
        if (dkSmlGetSgpuUsage(device.index, id, &value) == DK_SML_SUCCESS) slice.utilization = value;
        DkSmlSgpuMemoryInfo memory{};
        if (dkSmlGetSgpuMemory(device.index, id, &memory) == DK_SML_SUCCESS) slice.memory = memory;
        device.slices.push_back(std::move(slice));
    }
}

void CollectProcesses(Snapshot& snapshot, bool namespacePids) {
    uint32_t count = 0;
    if (dkSmlGetNumberOfProcess(&count) != DK_SML_SUCCESS) return;
    std::vector<DkSmlProcessInfo_v3> records(count);
    if (count > 0 && dkSmlGetProcessInfo_v3(count, records.data()) != DK_SML_SUCCESS) return;
    std::vector<ProcessReport> processes;
    for (const DkSmlProcessInfo_v3& record : records) {
        if (record.gpuCount == 0) continue;  // fewer processes than counted (one exited)
        ProcessReport process;
        process.pid = record.pid;
        if (namespacePids) process.namespacePid = NamespacePid(record.pid);
        process.name = Terminated(record.processName, sizeof(record.processName));
        for (uint32_t i = 0; i < record.gpuCount && i < DK_SML_PROCESS_MAX_GPUS; ++i) {
            const DkSmlProcessGpuInfo_v3& entry = record.gpuInfo[i];
            process.gpus.push_back({Terminated(entry.bdf, sizeof(entry.bdf)), entry.deviceId, entry.memoryUsed,
                                    entry.vramTag, entry.sgpuId});
        }
        processes.push_back(std::move(process));
    }
    for (DeviceReport& device : snapshot.devices) {
        uint32_t users = 0;
        for (const ProcessReport& process : processes) {
            for (const ProcessGpuUse& use : process.gpus) {
                if (use.deviceIndex != device.index) continue;
                ++users;
                break;
            }
        }
        device.processCount = users;
    }
    snapshot.processes = std::move(processes);
}

}  // namespace dksmi
