// Dynamic power management: per-domain performance levels, their limits,
// the DPM sampling interval and the level counters.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

// A die's current and maximum level of every domain; each status is what the
// per-domain read of that domain answers.
struct DkDpmDieLevels {
    DkSmlReturn currentStatus[DK_SML_DPM_IP_COUNT];
    uint32_t current[DK_SML_DPM_IP_COUNT];
    DkSmlReturn maxStatus[DK_SML_DPM_IP_COUNT];
    uint32_t max[DK_SML_DPM_IP_COUNT];
};

class DkDpm {
public:
    virtual ~DkDpm() = default;

    // Every domain of the die from one read of "showperflevel" and one of
    // "dpmcount", for callers that want them all (a monitoring scrape).
    DkSmlReturn GetDieDpmLevels(IDkDevice* device, unsigned int dieId, DkDpmDieLevels* levels);

    virtual DkSmlReturn GetDpmClockInfo(IDkDevice* device, DkSmlDpmInfoForAll* info);
    virtual DkSmlReturn GetDieDpmClockInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmInfoForAll* info);
    virtual DkSmlReturn GetDpmIpClockInfo(IDkDevice* device, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels);
    virtual DkSmlReturn GetDieDpmIpClockInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels);
    virtual DkSmlReturn GetDpmVddInfo(IDkDevice* device, DkSmlDpmInfoForAll* info);
    virtual DkSmlReturn GetDieDpmVddInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmInfoForAll* info);
    virtual DkSmlReturn GetDpmIpVddInfo(IDkDevice* device, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels);
    virtual DkSmlReturn GetDieDpmIpVddInfo(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels);
    virtual DkSmlReturn GetDpmCurPerfLevel(IDkDevice* device, DkSmlDpmForAll* levels);
    virtual DkSmlReturn GetDieDpmCurPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmForAll* levels);
    virtual DkSmlReturn GetCurrentDpmIpPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t* level);
    virtual DkSmlReturn GetCurrentDieDpmIpPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint32_t* level);
    virtual DkSmlReturn SetDpmPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t level);
    virtual DkSmlReturn SetDieDpmPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint32_t level);
    virtual DkSmlReturn GetDpmMaxPerfLevel(IDkDevice* device, DkSmlDpmForAll* levels);
    virtual DkSmlReturn GetDieDpmMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmForAll* levels);
    virtual DkSmlReturn GetDpmIpMaxPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t* level);
    virtual DkSmlReturn GetDieDpmIpMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint32_t* level);
    virtual DkSmlReturn GetAllDpmMaxPerfLevel(IDkDevice* device, DkSmlDpmMaxForAll* levels);
    virtual DkSmlReturn GetDieAllDpmMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmMaxForAll* levels);
    virtual DkSmlReturn SetDpmMaxPerfLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t level);
    virtual DkSmlReturn SetDieDpmMaxPerfLevel(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint32_t level);
    virtual DkSmlReturn SetK3XcoreMaxPerfLevel(IDkDevice* device, uint32_t level);
    virtual DkSmlReturn SetK3DieXcoreMaxPerfLevel(IDkDevice* device, unsigned int dieId, uint32_t level);
    virtual DkSmlReturn SetDpmPerfLevelRotation(IDkDevice* device, DkSmlDpmIp ip);
    virtual DkSmlReturn GetDpmInterval(IDkDevice* device, DkSmlDpmInterval* interval);
    virtual DkSmlReturn GetDieDpmInterval(IDkDevice* device, unsigned int dieId, DkSmlDpmInterval* interval);
    virtual DkSmlReturn SetDpmInterval(IDkDevice* device, DkSmlDpmIp ip, uint16_t interval);
    virtual DkSmlReturn SetDieDpmInterval(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint16_t interval);
    virtual DkSmlReturn GetDpmCounter(IDkDevice* device, DkSmlDpmCounterForAll* counters);
    virtual DkSmlReturn GetDieDpmCounter(IDkDevice* device, unsigned int dieId, DkSmlDpmCounterForAll* counters);
    virtual DkSmlReturn ClearDpmCounter(IDkDevice* device);
    virtual DkSmlReturn ClearDieDpmCounter(IDkDevice* device, unsigned int dieId);
    virtual DkSmlReturn GetDpmMaxLevel(IDkDevice* device, DkSmlDpmMaxForAll* levels);
    virtual DkSmlReturn SetDpmMaxLevel(IDkDevice* device, DkSmlDpmIp ip, uint32_t level);
    virtual DkSmlReturn GetDpmBackup(IDkDevice* device, DkSmlDpmInfoForAll* info);
    virtual DkSmlReturn SetDpmBackup(IDkDevice* device);
    virtual DkSmlReturn GetDpmCurrent(IDkDevice* device, DkSmlDpmInfoForAll* info);
    virtual DkSmlReturn GetDpmHide(IDkDevice* device, DkSmlDpmIp ip, uint32_t* hiddenMask);
    virtual DkSmlReturn SetDpmHide(IDkDevice* device, DkSmlDpmIp ip, uint32_t hiddenMask);
    virtual DkSmlReturn SetDpmInfo(IDkDevice* device, DkSmlDpmIp ip, uint32_t level, uint32_t clock);
    virtual DkSmlReturn GetDpmParam(IDkDevice* device, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels);
};

}  // namespace dksml
