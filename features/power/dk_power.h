// Electrical readings and the power settings beside them: PMBus regulator
// readings, per-way board readings, board power limit, power mode, PCI power
// state and per-IP power states.
#pragma once

#include <cstdint>
#include <vector>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkPower {
public:
    virtual ~DkPower() = default;

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
    virtual DkSmlReturn GetMasterDieBoardElectricInfo(IDkDevice* device, std::vector<unsigned int>& values);
    // Board power limit in one unit for every model.
    virtual DkSmlReturn GetBoardPowerLimit(IDkDevice* device, uint32_t* limit);
};

}  // namespace dksml
