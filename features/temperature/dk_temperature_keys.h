// The fixed data of the temperature readings: which "showtemp" keys fill
// which fields, which keys satisfy a sensor selector, and the sensor table's
// file.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "dksml.h"

namespace dksml {

struct DkTemperatureKey {
    std::string_view name;              // matched as a substring of the driver's key
    int32_t DkSmlTemperature::*field;
};

// Search order matters: a key is given to the first entry whose name it
// contains, so "hotspot" beats "core" and "core" catches "xcore_temp". The
// emclocal/tmp435_u1_local and sgm/tmp435_u2_local pairs share a field: one
// board variant prints the EMC and SGM sensors, the other two TMP435 chips.
inline constexpr std::array<DkTemperatureKey, 13> c_temperatureKeyTable{{
    {"hotspot", &DkSmlTemperature::hotspot},
    {"hotlimit", &DkSmlTemperature::hotLimit},
    {"soc", &DkSmlTemperature::soc},
    {"core", &DkSmlTemperature::core},
    {"emclocal", &DkSmlTemperature::emcLocal},
    {"emcremote", &DkSmlTemperature::emcRemote},
    {"sgm", &DkSmlTemperature::sgm},
    {"mc0", &DkSmlTemperature::mc0},
    {"mc1", &DkSmlTemperature::mc1},
    {"tmp435_u1_local", &DkSmlTemperature::emcLocal},
    {"tmp435_u2_local", &DkSmlTemperature::sgm},
    {"tmp435_u1_remote", &DkSmlTemperature::tmp435U1Remote},
    {"tmp435_u2_remote", &DkSmlTemperature::tmp435U2Remote},
}};

// Every field of DkSmlTemperature, for initialisation and merging.
inline constexpr std::array<int32_t DkSmlTemperature::*, 13> c_temperatureFields{
    &DkSmlTemperature::hotspot,    &DkSmlTemperature::hotLimit,       &DkSmlTemperature::soc,
    &DkSmlTemperature::core,       &DkSmlTemperature::emcRemote,      &DkSmlTemperature::memCtrlMax,
    &DkSmlTemperature::mc0,        &DkSmlTemperature::mc1,            &DkSmlTemperature::hottestSensorIndex,
    &DkSmlTemperature::emcLocal,   &DkSmlTemperature::sgm,            &DkSmlTemperature::tmp435U1Remote,
    &DkSmlTemperature::tmp435U2Remote};

// Numbered sensors print as "sensor[N]"; the index starts right after this.
inline constexpr std::string_view c_numberedSensorMarker = "sensor[";

// Selector of the single-value reads to the key names that satisfy it, in
// search order; an empty name ends the list. The single-value read of the SGM
// sensor asks for the full chip name "sgm452".
struct DkTemperatureTypeEntry {
    DkSmlTemperatureSensors sensor;
    std::array<std::string_view, 2> names;
};

inline constexpr std::array<DkTemperatureTypeEntry, 8> c_temperatureTypeMap{{
    {DK_SML_TEMPERATURE_HOTSPOT, {"hotspot", ""}},
    {DK_SML_TEMPERATURE_HOTLIMIT, {"hotlimit", ""}},
    {DK_SML_TEMPERATURE_SOC, {"soc", ""}},
    {DK_SML_TEMPERATURE_CORE, {"core", ""}},
    {DK_SML_TEMPERATURE_EMC_LOCAL, {"emclocal", "tmp435_u1_local"}},
    {DK_SML_TEMPERATURE_EMC_REMOTE, {"emcremote", ""}},
    {DK_SML_TEMPERATURE_SGM, {"sgm452", "tmp435_u2_local"}},
    {DK_SML_TEMPERATURE_HBM, {"hbm", ""}},
}};

// Rows the sensor table (DRAVIK_SMI_SHOWTSTEMP) fills at most.
inline constexpr std::size_t c_sensorTableMaxRows = DK_SML_TEMPERATURE_SENSOR_ROWS;

}  // namespace dksml
