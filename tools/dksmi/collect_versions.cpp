#include "collect_versions.h"

#include <array>
#include <string>

#include "dksml.h"
#include "features/version/dk_version.h"
#include "internal_reader.h"

namespace dksmi {
namespace {

// The driver's own names of the DPM domains, by domain value.
constexpr std::array<const char*, DK_SML_DPM_IP_COUNT> kDpmIpNames{
    "dla", "xcore", "mc", "soc", "dnoc", "vpue", "vpud", "hbm", "g2d", "hbmpower", "ccx", "npu", "dma", "csc", "eth"};

struct FirmwareUnit {
    DkSmlVersionUnit unit;
    const char* name;
};

constexpr FirmwareUnit kFirmwareUnits[] = {
    {DK_SML_VERSION_FW_SMP0, "SMP0"}, {DK_SML_VERSION_FW_SMP1, "SMP1"}, {DK_SML_VERSION_FW_CCX0, "CCX0"},
    {DK_SML_VERSION_FW_CCX1, "CCX1"}, {DK_SML_VERSION_FW_CCX2, "CCX2"}, {DK_SML_VERSION_FW_CCX3, "CCX3"},
    {DK_SML_VERSION_FW_MCU, "MCU"},   {DK_SML_VERSION_FW_VR0, "VR0"},   {DK_SML_VERSION_FW_VR1, "VR1"},
};

// What dkSmlGetDeviceVersion answers for the unit, from the texts read once.
std::optional<std::string> UnitVersion(const dksml::DkDieVersionTexts& texts, DkSmlVersionUnit unit) {
    if (texts.unitStatus[unit] != DK_SML_SUCCESS) return std::nullopt;
    return std::string(texts.unit[unit]);
}

std::optional<std::string> DriverVersionOf(uint32_t index) {
    char text[DK_SML_VERSION_LENGTH] = {};
    if (ReadDriverVersion(index, text, sizeof text) != DK_SML_SUCCESS) return std::nullopt;
    return std::string(text);
}

}  // namespace

std::optional<std::vector<PerfLevelReading>> CollectPerfLevels(uint32_t index, uint32_t die) {
    std::vector<PerfLevelReading> levels;
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        const auto domain = static_cast<DkSmlDpmIp>(ip);
        PerfLevelReading reading{kDpmIpNames[ip], std::nullopt, std::nullopt};
        uint32_t value = 0;
        if (dkSmlGetCurrentDieDpmIpPerfLevel(index, die, domain, &value) == DK_SML_SUCCESS) reading.current = value;
        if (dkSmlGetDieDpmIpMaxPerfLevel(index, die, domain, &value) == DK_SML_SUCCESS) reading.maximum = value;
        if (reading.current || reading.maximum) levels.push_back(std::move(reading));
    }
    if (levels.empty()) return std::nullopt;
    return levels;
}

// The device's versions are die 0's. The compute-stack version is shown only
// when the whole version record of the die reads, as dkSmlGetDeviceDieVersion
// answers it.
void CollectDeviceVersions(DeviceReport& device) {
    dksml::DkDieVersionTexts texts{};
    if (ReadDieVersionTexts(device.index, 0, texts) != DK_SML_SUCCESS) {
        for (const FirmwareUnit& unit : kFirmwareUnits) device.firmware.push_back({unit.name, std::nullopt});
        return;
    }
    device.driverVersion = UnitVersion(texts, DK_SML_VERSION_DRIVER);
    device.vbiosVersion = UnitVersion(texts, DK_SML_VERSION_VBIOS);
    char stack[DK_SML_VERSION_LENGTH] = {};
    if (texts.recordStatus == DK_SML_SUCCESS && ReadStackVersion(device.index, stack, sizeof stack) == DK_SML_SUCCESS)
        device.computeStackVersion = std::string(stack);
    for (const FirmwareUnit& unit : kFirmwareUnits)
        device.firmware.push_back({unit.name, UnitVersion(texts, unit.unit)});
}

void CollectSystemVersions(Snapshot& snapshot, bool askDevices) {
    char text[DK_SML_EX_SYSTEM_DKSML_VERSION_BUFFER_SIZE] = {};
    if (dkSmlExSystemGetDksmlVersion(text, sizeof text) == DK_SML_EX_SUCCESS) snapshot.libraryVersion = text;
    for (const DeviceReport& device : snapshot.devices) {
        std::optional<std::string> driver = askDevices ? DriverVersionOf(device.index) : device.driverVersion;
        if (driver) {
            snapshot.driverVersion = std::move(driver);
            break;
        }
    }
}

}  // namespace dksmi
