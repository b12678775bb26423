// The Linux process scan behind IDkProcessManagement.
#pragma once

#include "features/process/idk_process_management.h"

namespace dksml {

class DkLinuxProcessManagement : public IDkProcessManagement {
public:
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
};

}  // namespace dksml
