// The Linux process scan behind IDkProcessManagement: the driver's per-client
// directories ("<debug>/proc/<pid>/": "nspid", "name", "vram_<n>",
// "ringbuf/<i>/{type,gpuid}") and the host "/proc" for clients that only hold
// the device node open.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

#include "features/process/idk_process_management.h"

namespace dksml {

class DkLinuxProcessManagement : public IDkProcessManagement {
public:
    // Host paths; the host root is applied at every scan.
    DkLinuxProcessManagement(std::string driverProcessDir, uint64_t memoryThreshold,
                             std::string hostProcessDir = "/proc");

    DkSmlReturn GetProcessInfo(DkSmlProcessInfo* records, uint32_t capacity, uint32_t* count,
                               uint32_t gpuFilter, bool includeAll) override;
    DkSmlReturn GetProcessInfo_v2(DkSmlProcessInfo_v2* records, uint32_t capacity, uint32_t* count,
                                  uint32_t gpuFilter, bool includeAll, bool singleGpu) override;
    DkSmlReturn GetProcessInfo_v3(DkSmlProcessInfo_v3* records, uint32_t capacity, uint32_t* count,
                                  uint32_t gpuFilter, bool includeAll) override;
    DkSmlReturn KillAllProcess() override;
    DkSmlReturn GetProcessInfoImpl(DkSmlProcessInfo_v3* records, uint32_t capacity, uint32_t* count,
                                   uint32_t gpuFilter, bool includeAll, bool singleGpu) override;
    void GetProcessRefDkcd(DkSmlProcessInfo_v3* records, uint32_t capacity, uint32_t* count) override;
    std::string GetRealFile(const std::string& path) override;

    uint64_t GetMemoryThreshold() const { return m_memoryThreshold; }

protected:
    // Called with the host path of each client directory after the listing
    // and before it is read; tests use it to make a process vanish.
    virtual void BeforeReadingProcess(const std::string& /*processDir*/) {}

private:
    // Fills `record`'s GPU entries; the number of entries.
    uint32_t GetProcessGpuInfo(const std::string& processDir, DkSmlProcessInfo_v3& record, uint32_t gpuFilter,
                               bool includeAll);
    // Whether a descriptor of host process `pid` resolves to the device node.
    bool HoldsDeviceNode(std::string_view pid);

    std::string m_driverProcessDir;
    uint64_t m_memoryThreshold;
    std::string m_hostProcessDir;
    // Namespace pids reported by the scan in progress. The object is shared
    // by every thread that queries, so this scratch belongs to the calling
    // thread, never to the object.
    static thread_local std::unordered_set<uint32_t> s_reportedPids;
};

}  // namespace dksml
