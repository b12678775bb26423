// Electrical readings and the power settings beside them: PMBus regulator
// readings, per-way board readings, board power limit, power mode, PCI power
// state and per-IP power states.
#pragma once

#include <cstdint>
#include <vector>

#include "dksml.h"
#include "driver/dk_opcode.h"

namespace dksml {

class IDkDevice;

// PMBus units (rails) a die reports, DK_SML_PMBUS_UNIT_SOC ... _PCIE2.
inline constexpr uint32_t c_pmbusUnitCount = 6;

// Every rail of a die; status[u] and info[u] are what GetDiePmbusInfo answers
// for unit u.
struct DkDiePmbusRails {
    DkSmlReturn status[c_pmbusUnitCount];
    DkSmlPmbusInfo info[c_pmbusUnitCount];
};

class DkPower {
public:
    virtual ~DkPower() = default;

    // Every rail of the die from one read of each of the three PMBus files,
    // for callers that want them all (a monitoring scrape).
    DkSmlReturn GetDiePmbusRails(IDkDevice* device, unsigned int dieId, DkDiePmbusRails* rails);

    virtual DkSmlReturn GetPmbusInfo(IDkDevice* device, DkSmlPmbusUnit unit, DkSmlPmbusInfo* info);
    virtual DkSmlReturn GetDiePmbusInfo(IDkDevice* device, unsigned int dieId, DkSmlPmbusUnit unit, DkSmlPmbusInfo* info);
    virtual DkSmlReturn GetBoardElectricInfo(IDkDevice* device, uint32_t* count, DkSmlBoardWayElectricInfo* ways);
    virtual DkSmlReturn GetPowerState(IDkDevice* device, DkSmlDpmIp ip, int32_t* states, uint32_t* count);
    virtual DkSmlReturn GetDiePowerState(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, int32_t* states, uint32_t* count);
    virtual DkSmlReturn GetPciPowerState(IDkDevice* device, DkSmlPciPowerState* state);
    virtual DkSmlReturn GetPowerMode(IDkDevice* device, uint32_t* mode);
    virtual DkSmlReturn GetDiePowerMode(IDkDevice* device, unsigned int dieId, uint32_t* mode);
    virtual DkSmlReturn SetPowerMode(IDkDevice* device, uint32_t mode);
    virtual DkSmlReturn SetDiePowerMode(IDkDevice* device, unsigned int dieId, uint32_t mode);
    virtual DkSmlReturn GetBoardPowerLimitInfo(IDkDevice* device, DkSmlBoardPowerLimitInfo* info);
    virtual DkSmlReturn SetBoardPowerLimit(IDkDevice* device, uint32_t limit);
    // Readings of a board whose devices report them through one of them only.
    virtual DkSmlReturn GetMasterDieBoardElectricInfo(IDkDevice* device, std::vector<unsigned int>& values);

    // Value of `unit` in one PMBus attribute of a die; 3 when no key carries it.
    DkSmlReturn ReadPmbusValue(IDkDevice* device, unsigned int dieId, dravik_smi_opcode op, DkSmlPmbusUnit unit,
                               uint32_t& value);
    // Board power limit in one unit for every model (the "capability" unit).
    DkSmlReturn GetBoardPowerLimit(IDkDevice* device, uint32_t* limit);
    DkSmlReturn GetBoardPowerLimit_v2(IDkDevice* device, uint32_t* limit);
    // Instances of `ip` on this model; 10 with the needed number in `count`
    // when the caller's capacity is smaller.
    DkSmlReturn GetArraySize(IDkDevice* device, DkSmlDpmIp ip, uint32_t* count);
};

}  // namespace dksml
