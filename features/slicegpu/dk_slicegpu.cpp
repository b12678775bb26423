#include "features/slicegpu/dk_slicegpu.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "core/dk_file_text.h"
#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/process/dk_dir_list.h"
#include "features/slicegpu/dk_slicegpu_files.h"

namespace dksml {
namespace {

thread_local std::string t_text;

// A whole-number file, as the driver writes it: any failure to read it is
// DK_SML_ERROR_SYSFS, an absent file included.
template <typename T>
DkSmlReturn ParseNumber(DkSmlReturn fetched, T& value) {
    if (fetched != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkTextLines lines(t_text);
    return ReadSysfs(lines, ExtractRawValueStr, value);
}

template <typename T>
DkSmlReturn ReadNumber(IDkDevice* device, dravik_smi_opcode op, T& value) {
    return ParseNumber(device->FetchDriverData(0, op, t_text), value);
}

template <typename T>
DkSmlReturn ReadSliceNumber(IDkDevice* device, uint32_t sgpuId, dravik_smi_opcode op, T& value) {
    return ParseNumber(device->FetchIndexedDriverData(sgpuId, op, t_text), value);
}

// Reads a slice file; DK_SML_ERROR_SYSFS for any failure.
DkSmlReturn ReadSliceText(IDkDevice* device, uint32_t sgpuId, dravik_smi_opcode op) {
    return device->FetchIndexedDriverData(sgpuId, op, t_text) == DK_SML_SUCCESS ? DK_SML_SUCCESS : DK_SML_ERROR_SYSFS;
}

// The handler answers DK_SML_ERROR_NOT_SUPPORTED exactly when the slice's
// directory is absent (a directory is never readable as text).
bool SliceExists(IDkDevice* device, uint32_t sgpuId) {
    return device->FetchIndexedDriverData(sgpuId, DRAVIK_SMI_SGPU_SLICE, t_text) != DK_SML_ERROR_NOT_SUPPORTED;
}

// Writes answer DK_SML_ERROR_SYSFS for a file that cannot be opened, its
// directory absent or not (the handler answers DK_SML_ERROR_NOT_SUPPORTED then).
DkSmlReturn WriteFailureAsSysfs(DkSmlReturn result) {
    return result == DK_SML_ERROR_NOT_SUPPORTED ? DK_SML_ERROR_SYSFS : result;
}

template <typename T>
std::string Decimal(T value) {
    return std::to_string(static_cast<std::conditional_t<std::is_enum_v<T>, int, T>>(value));
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
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    const DkSmlReturn result = device->FetchDriverData(0, DRAVIK_SMI_SGPU_MODE, t_text);
    if (result != DK_SML_SUCCESS) return result;
    // The driver ends the word with a newline; the word itself must match.
    *on = TrimView(t_text, " \t\n") == c_sgpuModeOn ? 1 : 0;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSliceGpu::SetSgpuToggle(IDkDevice* device, uint32_t on) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    // An absent mode file is DK_SML_ERROR_NOT_SUPPORTED, as the handler answers.
    return device->SetDriverData(0, DRAVIK_SMI_SGPU_MODE, std::string(on != 0 ? c_sgpuModeOn : c_sgpuModeOff));
}

DkSmlReturn DkSliceGpu::CheckSgpuMode(IDkDevice* device) {
    uint32_t on = 0;
    const DkSmlReturn result = ShowSgpuToggle(device, &on);
    if (result != DK_SML_SUCCESS) return result;
    return on != 0 ? DK_SML_SUCCESS : DK_SML_ERROR_NOT_SUPPORTED;
}

uint32_t DkSliceGpu::GetExpectedSgpuId(IDkDevice* device) {
    bool taken[c_sgpuMaxSlices + 1] = {};
    thread_local std::vector<std::string> entries;
    if (device->ListDriverData(0, DRAVIK_SMI_SGPU_DIR, entries) != DK_SML_SUCCESS) entries.clear();
    for (const std::string& entry : entries) {
        uint32_t id = 0;
        if (ParseSliceDirName(entry, id) && id <= c_sgpuMaxSlices) taken[id] = true;
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
    result = WriteFailureAsSysfs(device->SetDriverData(0, DRAVIK_SMI_SGPU_CREATE, Decimal(vramQuota)));
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

DkSmlReturn DkSliceGpu::WriteChecked(IDkDevice* device, dravik_smi_opcode op, uint32_t value) {
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return WriteFailureAsSysfs(device->SetDriverData(0, op, Decimal(value)));
}

DkSmlReturn DkSliceGpu::WriteSliceChecked(IDkDevice* device, uint32_t sgpuId, dravik_smi_opcode op, uint32_t value) {
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return WriteFailureAsSysfs(device->SetIndexedDriverData(sgpuId, op, Decimal(value)));
}

DkSmlReturn DkSliceGpu::RemoveSgpu(IDkDevice* device, uint32_t sgpuId) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, DRAVIK_SMI_SGPU_REMOVE, sgpuId);
}

DkSmlReturn DkSliceGpu::SetSgpuVramQuota(IDkDevice* device, uint32_t sgpuId, uint32_t quota) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteSliceChecked(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_VRAM_QUOTA, quota);
}

DkSmlReturn DkSliceGpu::SetSgpuComputeQuota(IDkDevice* device, uint32_t sgpuId, uint32_t quota) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteSliceChecked(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_SCHED_QUOTA, quota);
}

// The driver takes a slice's queue priority through its "online" file.
DkSmlReturn DkSliceGpu::SetSgpuDeviceQueuePriority(IDkDevice* device, uint32_t sgpuId, uint32_t priority) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteSliceChecked(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_ONLINE, priority);
}

DkSmlReturn DkSliceGpu::SetTimeslice(IDkDevice* device, uint32_t timeslice) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, DRAVIK_SMI_SGPU_SCHED_TIMESLICE, timeslice);
}

DkSmlReturn DkSliceGpu::SetSchedClass(IDkDevice* device, DkSmlSchedClass schedClass) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    return WriteChecked(device, DRAVIK_SMI_SGPU_SCHED_CLASS, static_cast<uint32_t>(schedClass));
}

DkSmlReturn DkSliceGpu::GetAvailableQuota(IDkDevice* device, DkSmlSgpuAvailableQuota* quota) {
    if (device == nullptr || quota == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlSgpuAvailableQuota read{};
    result = ReadNumber(device, DRAVIK_SMI_SGPU_AVAILABLE_VRAM_QUOTA, read.availableVramQuota);
    if (result != DK_SML_SUCCESS) return result;
    if (ReadNumber(device, DRAVIK_SMI_SGPU_AVAILABLE_SCHED_QUOTA, read.availableComputeQuota) != DK_SML_SUCCESS ||
        ReadNumber(device, DRAVIK_SMI_SGPU_TOTAL_VRAM_QUOTA, read.totalVramQuota) != DK_SML_SUCCESS)
        return DK_SML_ERROR_FAILURE;
    *quota = read;
    return DK_SML_SUCCESS;
}

uint32_t DkSliceGpu::GetSgpuCount(IDkDevice* device) {
    if (device == nullptr || CheckSgpuMode(device) != DK_SML_SUCCESS) return 0;
    uint32_t available = 0;
    if (ReadNumber(device, DRAVIK_SMI_SGPU_AVAILABLE_DEVCNT, available) != DK_SML_SUCCESS) return 0;
    const uint32_t sought = available < c_sgpuMaxSlices ? c_sgpuMaxSlices - available : 0;
    uint32_t found = 0, count = 0;
    for (uint32_t id = 0; id < c_sgpuMaxSlices && found < sought; ++id) {
        const DkSmlReturn fetched = device->FetchIndexedDriverData(id, DRAVIK_SMI_SGPU_SLICE_GPU_ID, t_text);
        if (fetched == DK_SML_ERROR_NOT_SUPPORTED) continue;  // no such slice
        ++found;
        uint32_t gpuId = 0;
        if (ParseNumber(fetched, gpuId) == DK_SML_SUCCESS) ++count;
    }
    return count;
}

DkSmlReturn DkSliceGpu::GetSgpuGpuId(IDkDevice* device, uint32_t sgpuId, uint32_t* gpuId) {
    if (device == nullptr || gpuId == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return ReadSliceNumber(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_GPU_ID, *gpuId);
}

DkSmlReturn DkSliceGpu::GetSgpuInfo(IDkDevice* device, uint32_t sgpuId, DkSmlSgpuInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlSgpuInfo read{};
    read.sgpuId = sgpuId;
    const struct {
        dravik_smi_opcode file;
        uint32_t* value;
    } fields[] = {{DRAVIK_SMI_SGPU_SLICE_NODE_ID, &read.nodeId},
                  {DRAVIK_SMI_SGPU_SLICE_VRAM_QUOTA, &read.vramQuota},
                  {DRAVIK_SMI_SGPU_SLICE_SCHED_QUOTA, &read.computeQuota},
                  {DRAVIK_SMI_SGPU_SLICE_SCHED_PRIORITY, &read.schedPriority},
                  {DRAVIK_SMI_SGPU_SLICE_MINOR, &read.minor},
                  {DRAVIK_SMI_SGPU_SLICE_ONLINE, &read.online}};
    for (const auto& field : fields) {
        result = ReadSliceNumber(device, sgpuId, field.file, *field.value);
        if (result != DK_SML_SUCCESS) return result;
    }
    if (device->FetchIndexedDriverData(read.nodeId, DRAVIK_SMI_LAYOUT_NODE_UNIQUE_ID, t_text) == DK_SML_SUCCESS) {
        std::string_view line(t_text);
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
    result = ReadSliceNumber(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_NODE_ID, nodeId);
    if (result != DK_SML_SUCCESS) return result;
    return ParseNumber(device->FetchIndexedDriverData(nodeId, DRAVIK_SMI_LAYOUT_NODE_ACTIVE, t_text), *state);
}

// A slice that does not exist has nothing to report
// (DK_SML_ERROR_NOT_SUPPORTED).
DkSmlReturn DkSliceGpu::GetSgpuUtilization(IDkDevice* device, uint32_t sgpuId, int32_t* usage) {
    if (device == nullptr || usage == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    if (!SliceExists(device, sgpuId)) return DK_SML_ERROR_NOT_SUPPORTED;
    return ReadSliceNumber(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_UTILIZATION, *usage);
}

DkSmlReturn DkSliceGpu::GetSgpuMemory(IDkDevice* device, uint32_t sgpuId, DkSmlSgpuMemoryInfo* memory) {
    if (device == nullptr || memory == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    if (!SliceExists(device, sgpuId)) return DK_SML_ERROR_NOT_SUPPORTED;
    result = ReadSliceText(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_MEMINFO);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlSgpuMemoryInfo read{};
    std::string_view rest(t_text);
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
    return ReadNumber(device, DRAVIK_SMI_SGPU_SCHED_TIMESLICE, *timeslice);
}

DkSmlReturn DkSliceGpu::GetSchedClass(IDkDevice* device, DkSmlSchedClass* schedClass) {
    if (device == nullptr || schedClass == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return ReadNumber(device, DRAVIK_SMI_SGPU_SCHED_CLASS, *schedClass);
}

DkSmlReturn DkSliceGpu::GetSgpuAlias(IDkDevice* device, uint32_t sgpuId, char* alias, uint32_t* size) {
    if (device == nullptr || alias == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    result = ReadSliceText(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_ALIAS);
    if (result != DK_SML_SUCCESS) return result;
    return CopyText(t_text, alias, size);
}

// The alias is the whole file: written as given, without a newline.
DkSmlReturn DkSliceGpu::SetSgpuAlias(IDkDevice* device, uint32_t sgpuId, const char* alias) {
    if (device == nullptr || alias == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    return WriteFailureAsSysfs(device->SetIndexedDriverData(sgpuId, DRAVIK_SMI_SGPU_SLICE_ALIAS, alias));
}

// The id is the text after the first "id=" of the first line that has one,
// up to a ";". When it does not fit, as much as fits is copied (terminated).
DkSmlReturn DkSliceGpu::GetAnnotationsId(IDkDevice* device, uint32_t sgpuId, char* id, uint32_t* size) {
    if (device == nullptr || id == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (*size > 0) id[0] = '\0';
    DkSmlReturn result = CheckSgpuMode(device);
    if (result != DK_SML_SUCCESS) return result;
    if (ReadSliceText(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_ANNOTATIONS) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkTextLines lines(t_text);
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
    if (!SliceExists(device, sgpuId)) return DK_SML_ERROR_NOT_SUPPORTED;
    if (ReadSliceText(device, sgpuId, DRAVIK_SMI_SGPU_SLICE_OVERRUN) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    const uint32_t capacity = *count;
    uint32_t stored = 0;
    DkTextLines lines(t_text);
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
