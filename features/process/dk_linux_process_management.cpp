#include "features/process/dk_linux_process_management.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstring>
#include <memory>
#include <vector>

#include "core/dk_host_tree.h"
#include "core/dk_sys_utils.h"
#include "core/dk_system_manager.h"
#include "driver/dk_text.h"
#include "features/process/dk_dir_list.h"
#include "features/process/dk_process_records.h"

namespace dksml {

thread_local std::unordered_set<uint32_t> DkLinuxProcessManagement::s_reportedPids;
namespace {

constexpr std::string_view c_vramPrefix = "vram_";
constexpr std::string_view c_deviceNode = "/dev/dkcd";
constexpr uint32_t c_ringBufferKindIgnored = 1;  // "type" 1: not a compute ring
constexpr const char* c_unknownName = "N/A";

const IDkHostTree& Tree() { return CurrentHostTree(); }

// First decimal number of a small file (leading blanks skipped).
bool ReadDecimalFile(const std::string& path, uint64_t limit, uint64_t& value) {
    thread_local std::string text;
    if (Tree().ReadText(path, text) != DK_SML_SUCCESS) return false;
    std::string_view view(text);
    while (!view.empty() && (view.front() == ' ' || view.front() == '\t' || view.front() == '\n')) view.remove_prefix(1);
    return ParseLeadingDecimal(view, limit, value);
}

// First line of a file into a fixed name field (cut, not necessarily terminated).
bool ReadNameFile(const std::string& path, char (&name)[DK_SML_PROCESS_NAME_LENGTH]) {
    thread_local std::string text;
    if (Tree().ReadText(path, text) != DK_SML_SUCCESS) return false;
    std::string_view line(text);
    line = line.substr(0, line.find('\n'));
    std::memset(name, 0, sizeof(name));
    std::memcpy(name, line.data(), std::min(line.size(), sizeof(name)));
    return true;
}

struct GpuEntry {
    const std::string* bdf;
    uint32_t key;
    uint64_t memory;
};

}  // namespace

std::shared_ptr<IDkProcessManagement> DkProcessManagementFactory::CreateProcessManagement(uint64_t memoryThreshold,
                                                                                          const std::string& debugDir) {
    return std::make_shared<DkLinuxProcessManagement>(debugDir + "/proc", memoryThreshold);
}

DkLinuxProcessManagement::DkLinuxProcessManagement(std::string driverProcessDir, uint64_t memoryThreshold,
                                                   std::string hostProcessDir)
    : m_driverProcessDir(std::move(driverProcessDir)),
      m_memoryThreshold(memoryThreshold),
      m_hostProcessDir(std::move(hostProcessDir)) {}

DkSmlReturn DkLinuxProcessManagement::GetProcessInfo_v3(DkSmlProcessInfo_v3* records, uint32_t capacity,
                                                        uint32_t* count, uint32_t gpuFilter, bool includeAll) {
    return GetProcessInfoImpl(records, capacity, count, gpuFilter, includeAll, false);
}

DkSmlReturn DkLinuxProcessManagement::GetProcessInfo(DkSmlProcessInfo* records, uint32_t capacity, uint32_t* count,
                                                     uint32_t gpuFilter, bool includeAll) {
    if (capacity == 0) return GetProcessInfoImpl(nullptr, 0, count, gpuFilter, includeAll, false);
    if (records == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    std::vector<DkSmlProcessInfo_v3> scanned(capacity);
    const DkSmlReturn result = GetProcessInfoImpl(scanned.data(), capacity, count, gpuFilter, includeAll, false);
    if (result != DK_SML_SUCCESS) return result;
    for (uint32_t i = 0; i < std::min(capacity, *count); ++i) ConvertV3toV1(scanned[i], records[i]);
    return DK_SML_SUCCESS;
}

DkSmlReturn DkLinuxProcessManagement::GetProcessInfo_v2(DkSmlProcessInfo_v2* records, uint32_t capacity,
                                                        uint32_t* count, uint32_t gpuFilter, bool includeAll,
                                                        bool singleGpu) {
    if (capacity == 0) return GetProcessInfoImpl(nullptr, 0, count, gpuFilter, includeAll, singleGpu);
    if (records == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    std::vector<DkSmlProcessInfo_v3> scanned(capacity);
    const DkSmlReturn result = GetProcessInfoImpl(scanned.data(), capacity, count, gpuFilter, includeAll, singleGpu);
    if (result != DK_SML_SUCCESS) return result;
    for (uint32_t i = 0; i < std::min(capacity, *count); ++i) ConvertV3toV2(scanned[i], records[i]);
    return DK_SML_SUCCESS;
}

DkSmlReturn DkLinuxProcessManagement::GetProcessInfoImpl(DkSmlProcessInfo_v3* records, uint32_t capacity,
                                                         uint32_t* count, uint32_t gpuFilter, bool includeAll,
                                                         bool singleGpu) {
    if (count == nullptr || (records == nullptr && capacity != 0)) return DK_SML_ERROR_INVALID_INPUT;
    s_reportedPids.clear();
    const std::string& base = m_driverProcessDir;
    thread_local std::vector<std::string> clients;
    if (!Tree().List(base, DkListOrder::Version, clients)) return DK_SML_ERROR_NOT_SUPPORTED;

    for (uint32_t i = 0; i < capacity; ++i) ResetRecord(records[i]);
    *count = 0;
    thread_local DkSmlProcessInfo_v3 scratch;
    const bool allGpus = gpuFilter == DK_SML_ALL_GPUS;
    std::string dir;
    for (const std::string& client : clients) {
        uint32_t pid = 0;
        if (!ParseDecimalName(client, pid)) continue;
        dir.assign(base).append("/").append(client);
        BeforeReadingProcess(dir);
        uint64_t nspid = 0;
        if (!ReadDecimalFile(dir + "/nspid", UINT32_MAX, nspid)) nspid = 0;

        const bool full = *count >= capacity;
        if (full && capacity != 0 && singleGpu) continue;
        // Past the caller's capacity the process is still examined so that it is counted.
        DkSmlProcessInfo_v3& record = full ? scratch : records[*count];
        if (GetProcessGpuInfo(dir, record, gpuFilter, includeAll) == 0) continue;
        if (!full) {
            if (!ReadNameFile(dir + "/name", record.processName)) {
                std::memset(record.processName, 0, sizeof(record.processName));
                std::memcpy(record.processName, c_unknownName, std::strlen(c_unknownName));
            }
            record.pid = pid;
        }
        if (!allGpus || pid != 0) ++*count;
        s_reportedPids.insert(static_cast<uint32_t>(nspid));
    }
    if (allGpus && includeAll) GetProcessRefDkcd(records, capacity, count);
    return DK_SML_SUCCESS;
}

uint32_t DkLinuxProcessManagement::GetProcessGpuInfo(const std::string& processDir, DkSmlProcessInfo_v3& record,
                                                     uint32_t gpuFilter, bool includeAll) {
    thread_local std::vector<uint32_t> ringGpus;
    thread_local std::vector<GpuEntry> entries;
    ringGpus.clear();
    entries.clear();

    // GPUs on which the process owns a compute ring buffer. An entry without a
    // readable "type" cannot be classified and is left out.
    const std::string ringDir = processDir + "/ringbuf";
    thread_local std::vector<std::string> rings;
    Tree().List(ringDir, DkListOrder::Version, rings);
    for (const std::string& ring : rings) {
        const std::string entry = ringDir + "/" + ring;
        uint64_t kind = 0, gpuId = 0;
        if (!ReadDecimalFile(entry + "/type", UINT32_MAX, kind) || kind == c_ringBufferKindIgnored) continue;
        if (ReadDecimalFile(entry + "/gpuid", UINT32_MAX, gpuId)) ringGpus.push_back(static_cast<uint32_t>(gpuId));
    }

    DkSystemManager& manager = DkSystemManager::GetInstance();
    const auto& bdfs = manager.GetGpuBdfIdMap();
    const auto& slices = manager.GetSgpuIdMap();
    thread_local std::vector<std::string> files;
    Tree().List(processDir, DkListOrder::Version, files);
    for (const std::string& file : files) {
        const std::string_view name = file;
        if (name.find(c_vramPrefix) == std::string_view::npos || name.size() <= c_vramPrefix.size()) continue;
        uint64_t n = 0;
        if (!ParseLeadingDecimal(name.substr(c_vramPrefix.size()), UINT32_MAX, n)) continue;
        const uint32_t gpuId = static_cast<uint32_t>(n & 0xFFFF);
        if (gpuFilter != DK_SML_ALL_GPUS && gpuId != gpuFilter) continue;
        uint64_t memory = 0;
        if (!ReadDecimalFile(processDir + "/" + std::string(name), UINT64_MAX, memory)) memory = 0;
        if (!includeAll && memory <= m_memoryThreshold &&
            std::find(ringGpus.begin(), ringGpus.end(), static_cast<uint32_t>(n)) == ringGpus.end())
            continue;
        if (gpuId == 0) continue;
        const auto bdf = bdfs.find(gpuId);
        if (bdf == bdfs.end()) continue;
        const auto slice = slices.find(gpuId);
        const int32_t sliceId = slice == slices.end() ? -1 : static_cast<int32_t>(slice->second);
        const uint32_t key = (static_cast<uint32_t>(n) & 0xFFFF0000u) | (static_cast<uint32_t>(sliceId) & 0xFFFFu);
        entries.push_back({&bdf->second, key, memory});
    }

    // Addresses in text order, keys ascending; the first value of a repeated key wins.
    std::stable_sort(entries.begin(), entries.end(), [](const GpuEntry& a, const GpuEntry& b) {
        const int order = a.bdf->compare(*b.bdf);
        return order != 0 ? order < 0 : a.key < b.key;
    });
    uint32_t written = 0;
    for (std::size_t i = 0; i < entries.size() && written < DK_SML_PROCESS_MAX_GPUS; ++i) {
        const GpuEntry& e = entries[i];
        if (i > 0 && *entries[i - 1].bdf == *e.bdf && entries[i - 1].key == e.key) continue;
        DkSmlProcessGpuInfo_v3& out = record.gpuInfo[written++];
        std::memset(out.bdf, 0, sizeof(out.bdf));
        std::memcpy(out.bdf, e.bdf->data(), std::min(e.bdf->size(), sizeof(out.bdf) - 1));
        uint32_t deviceIndex = 0;
        out.deviceId = manager.GetDeviceIdByBdf(*e.bdf, deviceIndex) ? deviceIndex : UINT32_MAX;
        out.memoryUsed = e.memory;
        out.vramTag = e.key >> 16;
        out.sgpuId = static_cast<int16_t>(e.key & 0xFFFF);
    }
    record.gpuCount = written;
    return written;
}

bool DkLinuxProcessManagement::HoldsDeviceNode(std::string_view pid) {
    const std::string fdDir = m_hostProcessDir + "/" + std::string(pid) + "/fd";
    std::vector<std::string> fds;
    Tree().List(fdDir, DkListOrder::Version, fds);
    for (const std::string& fd : fds) {
        if (GetRealFile(fdDir + "/" + fd) == c_deviceNode) return true;
    }
    return false;
}

void DkLinuxProcessManagement::GetProcessRefDkcd(DkSmlProcessInfo_v3* records, uint32_t capacity, uint32_t* count) {
    std::vector<std::string> processes;
    Tree().List(m_hostProcessDir, DkListOrder::Version, processes);
    for (const std::string& process : processes) {
        uint32_t pid = 0;
        if (!ParseDecimalName(process, pid) || s_reportedPids.count(pid) != 0) continue;
        if (!HoldsDeviceNode(process)) continue;
        if (records != nullptr && *count < capacity) {
            DkSmlProcessInfo_v3& record = records[*count];
            ResetRecord(record);
            record.pid = pid;
            const std::string comm = m_hostProcessDir + "/" + process + "/comm";
            if (!ReadNameFile(comm, record.processName))
                std::memcpy(record.processName, c_unknownName, std::strlen(c_unknownName));
        }
        ++*count;
    }
}

DkSmlReturn DkLinuxProcessManagement::KillAllProcess() {
    DkSysUtils fallback;
    DkSysUtils* sys = DkSystemManager::GetInstance().GetSysUtils();
    if (sys == nullptr) sys = &fallback;
    if (sys->GetUid() != 0) return DK_SML_ERROR_PERMISSION;
    std::vector<std::string> processes;
    if (!Tree().List(m_hostProcessDir, DkListOrder::Version, processes)) return DK_SML_ERROR_SYSFS;
    std::vector<pid_t> holders;
    for (const std::string& process : processes) {
        uint32_t pid = 0;
        if (ParseDecimalName(process, pid) && pid <= INT_MAX && HoldsDeviceNode(process))
            holders.push_back(static_cast<pid_t>(pid));
    }
    DkSmlReturn result = DK_SML_SUCCESS;
    for (const pid_t pid : holders) {
        if (sys->Kill(pid, 0) != 0) continue;  // already gone
        if (sys->Kill(pid, SIGKILL) != 0) result = DK_SML_ERROR_FAILURE;
    }
    return result;
}

// Under a host root a descriptor link may name the device node absolutely
// ("/dev/dkcd", as the kernel shows it); that name is resolved inside the
// root, never on the machine running the library.
std::string DkLinuxProcessManagement::GetRealFile(const std::string& path) { return Tree().ResolveLink(path); }

}  // namespace dksml
