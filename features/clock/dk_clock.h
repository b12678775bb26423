// Clock frequencies of a device's functional blocks ("showclocks") and the
// reasons its clocks are held down ("pmdecsrc").
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkClock {
public:
    virtual ~DkClock() = default;

    virtual DkSmlReturn GetIpClocksFreq(IDkDevice* device, DkSmlClockIp ip, uint32_t* count, uint32_t* freqs);
    virtual DkSmlReturn GetClocksFreq(IDkDevice* device, DkSmlClocksFreqForAll* all);
    virtual DkSmlReturn GetDieClocksFreq(IDkDevice* device, unsigned int dieId, DkSmlClocksFreqForAll* all);
    virtual DkSmlReturn GetDieIpClocksFreq(IDkDevice* device, unsigned int dieId, DkSmlClockIp ip,
                                           uint32_t* count, uint32_t* freqs);
    virtual DkSmlReturn GetRealClocksFreq(IDkDevice* device, DkSmlClocksFreqForAll* all,
                                          DkSmlClockStatusForAll* status);
    virtual DkSmlReturn GetDieRealClocksFreq(IDkDevice* device, unsigned int dieId, DkSmlClocksFreqForAll* all,
                                             DkSmlClockStatusForAll* status);
    // Clock control: not offered by this library version
    // (DK_SML_ERROR_NOT_SUPPORTED).
    virtual DkSmlReturn GetClockSsMode(IDkDevice* device, uint32_t* mode);
    virtual DkSmlReturn GetDieClockSsMode(IDkDevice* device, unsigned int dieId, uint32_t* mode);
    virtual DkSmlReturn SetClockSsMode(IDkDevice* device, uint32_t mode);
    virtual DkSmlReturn SetDieClockSsMode(IDkDevice* device, unsigned int dieId, uint32_t mode);
    virtual DkSmlReturn DisableClockSsMode(IDkDevice* device);
    virtual DkSmlReturn DisableDieClockSsMode(IDkDevice* device, unsigned int dieId);
    virtual DkSmlReturn SetClockIp(IDkDevice* device, DkSmlClockIp ip, uint32_t freq);
    virtual DkSmlReturn SetDieClockIp(IDkDevice* device, unsigned int dieId, DkSmlClockIp ip, uint32_t freq);
    virtual DkSmlReturn SetClockDid(IDkDevice* device, DkSmlClockIp ip, uint32_t divider);
    virtual DkSmlReturn SetDieClockDid(IDkDevice* device, unsigned int dieId, DkSmlClockIp ip, uint32_t divider);
    virtual DkSmlReturn StartClockDebugLocal(IDkDevice* device, uint32_t mode);
    virtual DkSmlReturn StartDieClockDebugLocal(IDkDevice* device, unsigned int dieId, uint32_t mode);
    // Throttle reasons: device form ORs every die.
    virtual DkSmlReturn GetCurrentClocksThrottleReason(IDkDevice* device, uint64_t* mask);
    virtual DkSmlReturn GetDieCurrentClocksThrottleReason(IDkDevice* device, unsigned int dieId, uint64_t* mask);
};

}  // namespace dksml
