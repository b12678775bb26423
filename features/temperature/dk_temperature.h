// Board and die temperatures ("showtemp") and the temperature-sensor table
// ("showtstemp").
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkTemperature {
public:
    virtual ~DkTemperature() = default;

    DkSmlReturn GetDieTemperature(IDkDevice* device, unsigned int dieId, DkSmlTemperature* temperature) const;
    DkSmlReturn GetTemperature(IDkDevice* device, DkSmlTemperature* temperature) const;
    DkSmlReturn GetDieTemperature(IDkDevice* device, unsigned int dieId, DkSmlTemperatureSensors sensor,
                                  int32_t* value) const;
    DkSmlReturn GetTemperature(IDkDevice* device, DkSmlTemperatureSensors sensor, int32_t* value) const;
    DkSmlReturn GetDieTemperatureSensor(IDkDevice* device, unsigned int dieId,
                                        DkSmlTemperatureSensorForAll* sensors) const;
    DkSmlReturn GetTemperatureSensor(IDkDevice* device, DkSmlTemperatureSensorForAll* sensors) const;

    void InitTemperature(DkSmlTemperature* temperature) const;
    void ExtractSingleHighestTemp(int32_t& kept, int32_t candidate) const;
    void ExtractHighestTemperature(DkSmlTemperature* kept, const DkSmlTemperature* candidate) const;

private:
    int32_t m_invalidTemperature = DK_SML_TEMPERATURE_INVALID;
};

}  // namespace dksml
