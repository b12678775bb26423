#include "json_render.h"

#include <nlohmann/json.hpp>

#include "names.h"
#include "processes_render.h"
#include "topo_render.h"
#include "power_render.h"

namespace dksmi {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kSchemaVersion = 2;

template <typename T>
Json OrNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json PerfLevelsJson(const DieReport& die) {
    if (!die.perfLevels) return nullptr;
    Json levels = Json::object();
    for (const PerfLevelReading& level : *die.perfLevels)
        levels[level.ip] = Json{{"current", OrNull(level.current)}, {"max", OrNull(level.maximum)}};
    return levels;
}

Json VersionsJson(const DeviceReport& device) {
    Json firmware = Json::object();
    for (const FirmwareVersion& unit : device.firmware) firmware[unit.unit] = OrNull(unit.version);
    return Json{{"driver", OrNull(device.driverVersion)},
                {"vbios", OrNull(device.vbiosVersion)},
                {"compute_stack", OrNull(device.computeStackVersion)},
                {"firmware", firmware}};
}

Json DieJson(const DieReport& die) {
    Json clocks = nullptr;
    if (die.clocks) {
        clocks = Json::object();
        for (const ClockReading& clock : *die.clocks) clocks[clock.ip] = OrNull(clock.mhz);
    }
    Json temperatures = nullptr;
    if (die.temperatures) {
        temperatures = Json::object();
        for (const TemperatureReading& t : *die.temperatures) temperatures[t.name] = OrNull(t.celsius);
    }
    Json out{
        {"die", die.die},
        {"throttle_reasons_mask", OrNull(die.throttleMask)},
        {"clocks_mhz", clocks},
        {"temperatures_c", temperatures},
        {"hottest_sensor_index", OrNull(die.hottestSensorIndex)},
        {"sensor_table_c", OrNull(die.sensorTableC)},
        {"voltage_monitor_raw", OrNull(die.voltageMonitorRaw)},
        {"performance_levels", PerfLevelsJson(die)},
    };
    AddDiePowerJson(out, die.power);
    return out;
}

Json DeviceJson(const DeviceReport& device) {
    Json dies = Json::array();
    for (const DieReport& die : device.dies) dies.push_back(DieJson(die));
    Json out{
        {"index", device.index},
        {"name", device.name},
        {"bus_id", device.busId},
        {"uuid", device.uuid.empty() ? Json(nullptr) : Json(device.uuid)},
        {"brand", BrandName(device.brand)},
        {"role", RoleKey(device.role)},
        {"virtual_function_indices", device.virtualFunctions},
        {"physical_function_index", OrNull(device.physicalFunction)},
        {"die_count", OrNull(device.dieCount)},
        {"hotspot_temperature_c", OrNull(device.hotspotC)},
        {"fan_rpm", OrNull(device.fanRpm)},
        {"fan_duty", OrNull(device.fanDuty)},
        {"throttle_reasons_mask", OrNull(device.throttleMask)},
        {"versions", VersionsJson(device)},
        {"process_count", OrNull(device.processCount)},
        {"slice_mode", OrNull(device.sliceMode)},
        {"slices", SlicesJson(device)},
        {"pcie", PcieJson(device.pcie)},
        {"interconnect", LinksJson(device.links)},
    };
    AddDevicePowerJson(out, device.power);
    out["dies"] = dies;
    return out;
}

Json LimitedDeviceJson(const LimitedDeviceReport& d) {
    return Json{
        {"index", d.index},
        {"bus_id", d.busId},
        {"vendor_id", d.vendorId},
        {"device_id", d.deviceId},
        {"is_virtual_function", d.isVirtualFunction},
        {"unavailable_reason", Json{{"code", d.reason}, {"text", d.reasonText}}},
    };
}

}  // namespace

std::string RenderJson(const Snapshot& snapshot, const Outcome& outcome, bool compact) {
    Json devices = Json::array();
    for (const DeviceReport& device : snapshot.devices) devices.push_back(DeviceJson(device));
    Json limited = Json::array();
    for (const LimitedDeviceReport& d : snapshot.limitedDevices) limited.push_back(LimitedDeviceJson(d));
    Json error = nullptr;
    if (outcome.exitCode != kExitOk) error = Json{{"exit_code", outcome.exitCode}, {"message", outcome.message}};

    const Json document{
        {"schema_version", kSchemaVersion},
        {"library_status",
         Json{{"code", static_cast<uint32_t>(snapshot.initStatus)}, {"text", StatusText(snapshot.initStatus)}}},
        {"error", error},
        {"library_version", snapshot.libraryVersion.empty() ? Json(nullptr) : Json(snapshot.libraryVersion)},
        {"driver_version", OrNull(snapshot.driverVersion)},
        {"devices", devices},
        {"limited_devices", limited},
        {"processes", ProcessesJson(snapshot)},
    };
    // Names come from driver files: never let a stray byte abort the dump.
    return document.dump(compact ? -1 : 2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace dksmi
