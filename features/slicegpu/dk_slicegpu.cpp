#include "features/slicegpu/dk_slicegpu.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "core/dk_file_text.h"
#include "core/dk_host_root.h"
#include "core/dk_system_manager.h"
#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/process/dk_dir_list.h"
#include "features/slicegpu/dk_slicegpu_files.h"

namespace dksml {
namespace {

std::string DeviceFile(IDkDevice* device, std::string_view file) {
    std::string path = HostPath(device->GetDeviceDir());
    path.append(file);
    return path;
}

std::string SliceDir(IDkDevice* device, uint32_t sgpuId) {
    return DeviceFile(device, c_sgpuDir) + "/" + std::string(c_sgpuSlicePrefix) + std::to_string(sgpuId);
}

std::string SliceFile(IDkDevice* device, uint32_t sgpuId, std::string_view file) {
    return SliceDir(device, sgpuId) + "/" + std::string(file);
}

std::string LayoutNodeFile(uint32_t nodeId, std::string_view file) {
    return HostPath(DkSystemManager::GetInstance().GetLayoutPath()) + std::to_string(nodeId) + "/" +
           std::string(file);
}

template <typename T>
DkSmlReturn ReadNumber(const std::string& path, T& value) {
    return ReadSysfs(path, ExtractRawValueStr, value);
}

// Copies `text` under the text rule: DK_SML_SUCCESS and
// terminated when it fits, else DK_SML_ERROR_INSUFFICIENT_SIZE;
// `size` becomes the length plus one.
DkSmlReturn CopyText(std::string_view text, char* buffer, uint32_t* size) {
    const uint32_t capacity = *size;
    *size = static_cast<uint32_t>(text.size()) + 1;
    if (capacity <= text.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    return DK_SML_SUCCESS;
}

}  // namespace

bool ParseSliceDirName(std::string_view name, uint32_t& id) {
    if (name.size() <= c_sgpuSlicePrefix.size() || name.substr(0, c_sgpuSlicePrefix.size()) != c_sgpuSlicePrefix)
        return false;
    return ParseDecimalName(name.substr(c_sgpuSlicePrefix.size()), id);
}

DkSmlReturn DkSliceGpu::ShowSgpuToggle(IDkDevice* device, uint32_t* on) {
    if (device == nullptr || on == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const std::string path = DeviceFile(device, c_sgpuModeFile);
    if (device->IsVf() || !CheckIfFileExist(path)) return DK_SML_ERROR_NOT_SUPPORTED;
    thread_local std::string text;
    const DkSmlReturn result = ReadFileText(path, text);
    if (result != DK_SML_SUCCESS) return result;
    // The driver ends the word with a newline; the word itself must match.
    *on = TrimView(text, " \t\n") == c_sgpuModeOn ? 1 : 0;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSliceGpu::SetSgpuToggle(IDkDevice* device, uint32_t on) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const std::string path = DeviceFile(device, c_sgpuModeFile);
    if (device->IsVf() || !CheckIfFileExist(path)) return DK_SML_ERROR_NOT_SUPPORTED;
    return WriteSysfs(path, on != 0 ? c_sgpuModeOn : c_sgpuModeOff);
}

DkSmlReturn DkSliceGpu::CheckSgpuMode(IDkDevice* device) {
    uint32_t on = 0;
    const DkSmlReturn result = ShowSgpuToggle(device, &on);
    if (result != DK_SML_SUCCESS) return result;
    return on != 0 ? DK_SML_SUCCESS : DK_SML_ERROR_NOT_SUPPORTED;
}

uint32_t DkSliceGpu::GetExpectedSgpuId(IDkDevice* device) {
    bool taken[c_sgpuMaxSlices + 1] = {};
    DkDirList entries(DeviceFile(device, c_sgpuDir));
    for (std::size_t i = 0; i < entries.Size(); ++i) {
        uint32_t id = 0;
        if (ParseSliceDirName(entries.Name(i), id) && id <= c_sgpuMaxSlices) taken[id] = true;
    }
    uint32_t id = 0;
    while (id <= c_sgpuMaxSlices && taken[id]) ++id;
    return id;
}

DkSmlReturn DkSliceGpu::CreateSgpu(IDkDevice* device, uint32_t vramQuota, uint32_t computeQuota, uint32_t* sgpuId) {
    if (sgpuId == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    // The driver names the new slice after the lowest free id; take it before
    // the slice exists so that a failure can undo exactly this slice.
    const uint32_t expected = GetExpectedSgpuId(device);
    result = WriteSysfs(DeviceFile(device, c_sgpuCreateFile), vramQuota);
    if (result != DK_SML_SUCCESS) return result;
    AfterCreateWritten(device, expected);
    result = SetSgpuComputeQuota(device, expected, computeQuota);
    if (result != DK_SML_SUCCESS) {
        (void)RemoveSgpu(device, expected);
        return result;
    }
    *sgpuId = expected;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSliceGpu::WriteChecked(IDkDevice* device, const std::string& path, uint32_t value) {
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return WriteSysfs(path, value);
}

DkSmlReturn DkSliceGpu::RemoveSgpu(IDkDevice* device, uint32_t sgpuId) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, DeviceFile(device, c_sgpuRemoveFile), sgpuId);
}

DkSmlReturn DkSliceGpu::SetSgpuVramQuota(IDkDevice* device, uint32_t sgpuId, uint32_t quota) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, SliceFile(device, sgpuId, "vram_quota"), quota);
}

DkSmlReturn DkSliceGpu::SetSgpuComputeQuota(IDkDevice* device, uint32_t sgpuId, uint32_t quota) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, SliceFile(device, sgpuId, "sched_quota"), quota);
}

// The driver takes a slice's queue priority through its "online" file.
DkSmlReturn DkSliceGpu::SetSgpuDeviceQueuePriority(IDkDevice* device, uint32_t sgpuId, uint32_t priority) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, SliceFile(device, sgpuId, "online"), priority);
}

DkSmlReturn DkSliceGpu::SetTimeslice(IDkDevice* device, uint32_t timeslice) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, DeviceFile(device, c_sgpuTimesliceFile), timeslice);
}

DkSmlReturn DkSliceGpu::SetSchedClass(IDkDevice* device, DkSmlSchedClass schedClass) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, DeviceFile(device, c_sgpuSchedClassFile), schedClass);
}

DkSmlReturn DkSliceGpu::GetAvailableQuota(IDkDevice* device, DkSmlSgpuAvailableQuota* quota) {
    if (device == nullptr || quota == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlSgpuAvailableQuota read{};
    result = ReadNumber(DeviceFile(device, c_sgpuAvailableVramFile), read.availableVramQuota);
    if (result != DK_SML_SUCCESS) return result;
    if (ReadNumber(DeviceFile(device, c_sgpuAvailableSchedFile), read.availableComputeQuota) != DK_SML_SUCCESS ||
        ReadNumber(DeviceFile(device, c_sgpuTotalVramFile), read.totalVramQuota) != DK_SML_SUCCESS)
        return DK_SML_ERROR_FAILURE;
    *quota = read;
    return DK_SML_SUCCESS;
}

uint32_t DkSliceGpu::GetSgpuCount(IDkDevice* device) {
    if (device == nullptr || CheckSgpuMode(device) != DK_SML_SUCCESS) return 0;
    uint32_t available = 0;
    if (ReadNumber(DeviceFile(device, c_sgpuAvailableCountFile), available) != DK_SML_SUCCESS) return 0;
    const uint32_t sought = available < c_sgpuMaxSlices ? c_sgpuMaxSlices - available : 0;
    uint32_t found = 0, count = 0;
    for (uint32_t id = 0; id < c_sgpuMaxSlices && found < sought; ++id) {
        const std::string gpuIdFile = SliceFile(device, id, "gpu_id");
        if (!CheckIfFileExist(gpuIdFile)) continue;
        ++found;
        uint32_t gpuId = 0;
        if (ReadNumber(gpuIdFile, gpuId) == DK_SML_SUCCESS) ++count;
    }
    return count;
}

DkSmlReturn DkSliceGpu::GetSgpuGpuId(IDkDevice* device, uint32_t sgpuId, uint32_t* gpuId) {
    if (device == nullptr || gpuId == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return ReadNumber(SliceFile(device, sgpuId, "gpu_id"), *gpuId);
}

DkSmlReturn DkSliceGpu::GetSgpuInfo(IDkDevice* device, uint32_t sgpuId, DkSmlSgpuInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlSgpuInfo read{};
    read.sgpuId = sgpuId;
    const struct {
        const char* file;
        uint32_t* value;
    } fields[] = {{"node_id", &read.nodeId},       {"vram_quota", &read.vramQuota}, {"sched_quota", &read.computeQuota},
                  {"sched_priority", &read.schedPriority}, {"minor", &read.minor},  {"online", &read.online}};
    for (const auto& field : fields) {
        result = ReadNumber(SliceFile(device, sgpuId, field.file), *field.value);
        if (result != DK_SML_SUCCESS) return result;
    }
    thread_local std::string text;
    if (ReadFileText(LayoutNodeFile(read.nodeId, "unique_id"), text) == DK_SML_SUCCESS) {
        std::string_view line(text);
        line = TrimView(line.substr(0, line.find('\n')), " \t\r");
        if (!line.empty()) {
            std::string uuid = "GPU-";
            uuid.append(line);
            std::memcpy(read.uuid, uuid.data(), std::min(uuid.size(), sizeof(read.uuid) - 1));
        }
    }
    *info = read;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSliceGpu::GetSgpuState(IDkDevice* device, uint32_t sgpuId, int32_t* state) {
    if (device == nullptr || state == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    uint32_t nodeId = 0;
    result = ReadNumber(SliceFile(device, sgpuId, "node_id"), nodeId);
    if (result != DK_SML_SUCCESS) return result;
    return ReadNumber(LayoutNodeFile(nodeId, "active"), *state);
}

// A slice that does not exist has nothing to report
// (DK_SML_ERROR_NOT_SUPPORTED).
DkSmlReturn DkSliceGpu::GetSgpuUtilization(IDkDevice* device, uint32_t sgpuId, int32_t* usage) {
    if (device == nullptr || usage == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    if (!DirectoryOpens(SliceDir(device, sgpuId))) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadNumber(SliceFile(device, sgpuId, "utilization"), *usage);
}

DkSmlReturn DkSliceGpu::GetSgpuMemory(IDkDevice* device, uint32_t sgpuId, DkSmlSgpuMemoryInfo* memory) {
    if (device == nullptr || memory == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    if (!DirectoryOpens(SliceDir(device, sgpuId))) return DK_SML_ERROR_NOT_SUPPORTED;
    thread_local std::string text;
    result = ReadFileText(SliceFile(device, sgpuId, "meminfo"), text);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlSgpuMemoryInfo read{};
    std::string_view rest(text);
    for (uint64_t& value : read.values) {
        rest = TrimView(rest, " \t\n");
        const std::size_t end = std::min(rest.find_first_of(" \t\n"), rest.size());
        if (!ExtractNumber(rest.substr(0, end), value)) return DK_SML_ERROR_SYSFS;
        rest.remove_prefix(end);
    }
    *memory = read;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSliceGpu::GetTimeslice(IDkDevice* device, uint32_t* timeslice) {
    if (device == nullptr || timeslice == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return ReadNumber(DeviceFile(device, c_sgpuTimesliceFile), *timeslice);
}

DkSmlReturn DkSliceGpu::GetSchedClass(IDkDevice* device, DkSmlSchedClass* schedClass) {
    if (device == nullptr || schedClass == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return ReadNumber(DeviceFile(device, c_sgpuSchedClassFile), *schedClass);
}

DkSmlReturn DkSliceGpu::GetSgpuAlias(IDkDevice* device, uint32_t sgpuId, char* alias, uint32_t* size) {
    if (device == nullptr || alias == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    thread_local std::string text;
    result = ReadFileText(SliceFile(device, sgpuId, "alias"), text);
    if (result != DK_SML_SUCCESS) return result;
    return CopyText(text, alias, size);
}

// The alias is the whole file: written as given, without a newline.
DkSmlReturn DkSliceGpu::SetSgpuAlias(IDkDevice* device, uint32_t sgpuId, const char* alias) {
    if (device == nullptr || alias == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return detail::WriteWholeFile(SliceFile(device, sgpuId, "alias"), alias);
}

// The id is the text after the first "id=" of the first line that has one,
// up to a ";". When it does not fit, as much as fits is copied (terminated).
DkSmlReturn DkSliceGpu::GetAnnotationsId(IDkDevice* device, uint32_t sgpuId, char* id, uint32_t* size) {
    if (device == nullptr || id == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (*size > 0) id[0] = '\0';
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    thread_local std::string text;
    if (ReadFileText(SliceFile(device, sgpuId, "annotations"), text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        const std::size_t at = line.find("id=");
        if (at == std::string_view::npos) continue;
        std::string_view value = line.substr(at + 3);
        value = value.substr(0, value.find(';'));
        const uint32_t capacity = *size;
        if (capacity > value.size()) return CopyText(value, id, size);
        *size = static_cast<uint32_t>(value.size()) + 1;
        if (capacity > 0) {
            std::memcpy(id, value.data(), capacity - 1);
            id[capacity - 1] = '\0';
        }
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSliceGpu::GetSchedulingLatency(IDkDevice* device, uint32_t sgpuId, int32_t* values, uint32_t* count) {
    if (device == nullptr || values == nullptr || count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    if (!DirectoryOpens(SliceDir(device, sgpuId))) return DK_SML_ERROR_NOT_SUPPORTED;
    thread_local std::string text;
    if (ReadFileText(SliceFile(device, sgpuId, "overrun"), text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    const uint32_t capacity = *count;
    uint32_t stored = 0;
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        if (stored == capacity) {
            *count = stored;
            return DK_SML_ERROR_INSUFFICIENT_SIZE;
        }
        int32_t value = 0;
        if (ProcessValueByColon(line, &value) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
        values[stored++] = value;
    }
    *count = stored;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
