// Per-device process accounting: which processes use the GPUs and how much
// GPU memory each holds on each GPU, from the driver's per-client debug
// directories and the host's "/proc".
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "dksml.h"

namespace dksml {

class IDkProcessManagement {
public:
    virtual ~IDkProcessManagement() = default;

    // `gpuFilter` is a driver GPU id, DK_SML_ALL_GPUS for every GPU. With
    // capacity 0 the scan only counts. `count` receives the number found.
    virtual DkSmlReturn GetProcessInfo(DkSmlProcessInfo* records, uint32_t capacity, uint32_t* count,
                                       uint32_t gpuFilter, bool includeAll) = 0;
    virtual DkSmlReturn GetProcessInfo_v2(DkSmlProcessInfo_v2* records, uint32_t capacity, uint32_t* count,
                                          uint32_t gpuFilter, bool includeAll, bool singleGpu) = 0;
    virtual DkSmlReturn GetProcessInfo_v3(DkSmlProcessInfo_v3* records, uint32_t capacity, uint32_t* count,
                                          uint32_t gpuFilter, bool includeAll) = 0;
    // Ends every process holding the driver's device node (root only).
    virtual DkSmlReturn KillAllProcess() = 0;
    virtual DkSmlReturn GetProcessInfoImpl(DkSmlProcessInfo_v3* records, uint32_t capacity, uint32_t* count,
                                           uint32_t gpuFilter, bool includeAll, bool singleGpu) = 0;
    // Appends the processes that hold the device node but have no driver directory.
    virtual void GetProcessRefDkcd(DkSmlProcessInfo_v3* records, uint32_t capacity, uint32_t* count) = 0;
    // realpath() of a host path, "" when it fails.
    virtual std::string GetRealFile(const std::string& path) = 0;
};

// The driver's debug directory (host path); its "proc" subdirectory holds one
// directory per client process.
inline constexpr const char* c_dkcdDebugDir = "/sys/kernel/debug/dkcd";

class DkProcessManagementFactory {
public:
    // The Linux implementation, reading the client directories below
    // `debugDir` (a host path) and leaving out idle clients at or below
    // `memoryThreshold` (see dk_process_threshold.h).
    static std::shared_ptr<IDkProcessManagement> CreateProcessManagement(uint64_t memoryThreshold,
                                                                         const std::string& debugDir = c_dkcdDebugDir);
};

}  // namespace dksml
