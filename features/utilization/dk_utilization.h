// Engine usage, the per-AP usage table of the compute cores, the AP usage
// sampling switch, and memory totals and use.
#pragma once

#include <cstdint>
#include <string_view>

#include "dksml.h"

namespace dksml {

class IDkDevice;

// Usage of every engine of a die, by DkSmlUsageIp; status[ip] and percent[ip]
// are what GetDieUsage answers for that engine.
struct DkDieUsage {
    DkSmlReturn status[DK_SML_USAGE_IP_XCORE + 1];
    int32_t percent[DK_SML_USAGE_IP_XCORE + 1];
};

class DkUtilization {
public:
    virtual ~DkUtilization() = default;

    // Every engine of the die from one read of "showuse" and one of
    // "showxcuse", for callers that want them all (a monitoring scrape).
    DkSmlReturn GetDieUsages(IDkDevice* device, unsigned int dieId, DkDieUsage* usage);

    virtual DkSmlReturn GetMemoryInfo(IDkDevice* device, DkSmlMemoryInfo* info);
    virtual DkSmlReturn GetDieMemoryInfo(IDkDevice* device, unsigned int dieId, DkSmlMemoryInfo* info);
    virtual DkSmlReturn GetXcoreApUsageInfo(IDkDevice* device, uint32_t* usage, uint32_t* dpcCount, uint32_t* apCount);
    virtual DkSmlReturn GetDieXcoreApUsageInfo(IDkDevice* device, unsigned int dieId, uint32_t* usage, uint32_t* dpcCount, uint32_t* apCount);
    virtual DkSmlReturn GetDeviceUsage(IDkDevice* device, DkSmlUsageIp ip, int32_t* usage);
    virtual DkSmlReturn GetDieUsage(IDkDevice* device, unsigned int dieId, DkSmlUsageIp ip, int32_t* usage);
    virtual DkSmlReturn GetApUsageToggle(IDkDevice* device, uint32_t* state);
    virtual DkSmlReturn GetDieApUsageToggle(IDkDevice* device, unsigned int dieId, uint32_t* state);
    virtual DkSmlReturn SetApUsageToggle(IDkDevice* device, bool on);
    virtual DkSmlReturn SetDieApUsageToggle(IDkDevice* device, unsigned int dieId, bool on);

    // Mean of the whitespace-separated samples up to the first negative one
    // (the driver's end marker); -1 for no samples at all, 0 when the first
    // is the marker.
    static int32_t GetAverageUsage(std::string_view samples);
    DkSmlReturn GetXcoreUsage(IDkDevice* device, unsigned int dieId, int32_t* usage);
    // 4 when "deviceinfo" lacks either count: the table cannot be sized.
    DkSmlReturn GetDpcAndApPerDpcNum(IDkDevice* device, unsigned int dieId, uint32_t* dpcCount, uint32_t* apPerDpc);
    // A DPC line of nothing but "ff" tokens (or none) is fused off.
    static bool IsHarvestDpc(std::string_view apTokens);
};

}  // namespace dksml
