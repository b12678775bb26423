#include "collect.h"
#include "topo_collect.h"
#include "collect_versions.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>

#include "core/dk_unavailable_reason.h"
#include "driver/dk_read_session.h"
#include "internal_reader.h"
#include "processes_collect.h"
#include "power_collect.h"

namespace dksmi {
namespace {

struct ClockMember {
    const char* ip;
    DkSmlClockFreq DkSmlClocksFreqForAll::*member;
};

// Shown in this order: the main blocks first, then the rest.
constexpr std::array<ClockMember, 13> kClockMembers{{
    {"xcore", &DkSmlClocksFreqForAll::xcore},
    {"soc", &DkSmlClocksFreqForAll::soc},
    {"mc", &DkSmlClocksFreqForAll::mc},
    {"mc0", &DkSmlClocksFreqForAll::mc0},
    {"mc1", &DkSmlClocksFreqForAll::mc1},
    {"csc", &DkSmlClocksFreqForAll::csc},
    {"dla", &DkSmlClocksFreqForAll::dla},
    {"vpue", &DkSmlClocksFreqForAll::vpue},
    {"vpud", &DkSmlClocksFreqForAll::vpud},
    {"dnoc", &DkSmlClocksFreqForAll::dnoc},
    {"gpu", &DkSmlClocksFreqForAll::gpu},
    {"ccx", &DkSmlClocksFreqForAll::ccx},
    {"xpu", &DkSmlClocksFreqForAll::xpu},
}};

struct TemperatureMember {
    const char* name;
    int32_t DkSmlTemperature::*member;
};

// The record's temperatures; hottestSensorIndex is an index, kept apart.
constexpr std::array<TemperatureMember, 12> kTemperatureMembers{{
    {"hotspot", &DkSmlTemperature::hotspot},
    {"hot_limit", &DkSmlTemperature::hotLimit},
    {"soc", &DkSmlTemperature::soc},
    {"core", &DkSmlTemperature::core},
    {"emc_remote", &DkSmlTemperature::emcRemote},
    {"mem_ctrl_max", &DkSmlTemperature::memCtrlMax},
    {"mc0", &DkSmlTemperature::mc0},
    {"mc1", &DkSmlTemperature::mc1},
    {"emc_local", &DkSmlTemperature::emcLocal},
    {"sgm", &DkSmlTemperature::sgm},
    {"tmp435_u1_remote", &DkSmlTemperature::tmp435U1Remote},
    {"tmp435_u2_remote", &DkSmlTemperature::tmp435U2Remote},
}};

// 65535 (and above) is the library's "no reading".
std::optional<int32_t> ValidTemperature(int32_t value) {
    if (value >= DK_SML_TEMPERATURE_INVALID) return std::nullopt;
    return value;
}

// One value through a `DkSmlReturn read(T*)` call; empty when refused.
template <typename T, typename Read>
std::optional<T> ReadValue(Read&& read) {
    T value{};
    if (read(&value) != DK_SML_SUCCESS) return std::nullopt;
    return value;
}

// `shown`: only the first `shown` blocks of kClockMembers.
std::vector<ClockReading> ToClockReadings(const DkSmlClocksFreqForAll& all, size_t shown = kClockMembers.size()) {
    std::vector<ClockReading> readings;
    for (const ClockMember& entry : std::span(kClockMembers).first(shown)) {
        const DkSmlClockFreq& freq = all.*entry.member;
        ClockReading reading{entry.ip, std::nullopt};
        if (freq.count > 0) {
            const uint32_t count = std::min<uint32_t>(freq.count, DK_SML_CLOCK_MAX_VALUES);
            reading.mhz.emplace(freq.freq, freq.freq + count);
        }
        readings.push_back(std::move(reading));
    }
    return readings;
}

ReadingRows ToSensorRows(const DkSmlTemperatureSensorForAll& table) {
    ReadingRows rows;
    const uint32_t rowCount = std::min<uint32_t>(table.rowCount, DK_SML_TEMPERATURE_SENSOR_ROWS);
    for (uint32_t r = 0; r < rowCount; ++r) {
        const DkSmlTemperatureSensorRow& row = table.rows[r];
        const uint32_t count = std::min<uint32_t>(row.count, DK_SML_TEMPERATURE_SENSOR_READINGS);
        rows.emplace_back(row.readings, row.readings + count);
    }
    return rows;
}

ReadingRows ToVoltageRows(const std::vector<DkSmlVmInfo>& entries) {
    ReadingRows rows;
    for (const DkSmlVmInfo& entry : entries) {
        const int32_t count = std::clamp<int32_t>(entry.count, 0, DK_SML_VM_READINGS);
        rows.emplace_back(entry.readings, entry.readings + count);
    }
    return rows;
}

// The table's clock columns: xcore, soc and mc, the first blocks of kClockMembers.
constexpr size_t kSummaryClockBlocks = 3;

// What the summary table shows of a die: die 0's clocks of the table's
// columns. Its temperature record decides whether the device's hot spot is
// asked for (HotspotReadable) and is the file that query reads first.
DieReport CollectSummaryDie(uint32_t index) {
    DieReport report;
    DkSmlClocksFreqForAll clocks{};
    if (dkSmlGetClocks(index, 0, &clocks) == DK_SML_SUCCESS)
        report.clocks = ToClockReadings(clocks, kSummaryClockBlocks);
    // Only whether the record reads matters here: no field of it is shown.
    DkSmlTemperature record{};
    if (ReadDieTemperatureRecord(index, 0, record) == DK_SML_SUCCESS) report.temperatures.emplace();
    return report;
}

DieReport CollectDie(uint32_t index, uint32_t die) {
    DieReport report;
    report.die = die;

    report.throttleMask =
        ReadValue<uint64_t>([&](uint64_t* mask) { return dkSmlGetCurrentClocksThrottleReason(index, die, mask); });

    DkSmlClocksFreqForAll clocks{};
    if (dkSmlGetClocks(index, die, &clocks) == DK_SML_SUCCESS) report.clocks = ToClockReadings(clocks);

    DkSmlTemperature record{};
    if (ReadDieTemperatureRecord(index, die, record) == DK_SML_SUCCESS) {
        std::vector<TemperatureReading> temperatures;
        for (const TemperatureMember& entry : kTemperatureMembers)
            temperatures.push_back({entry.name, ValidTemperature(record.*entry.member)});
        report.temperatures = std::move(temperatures);
        report.hottestSensorIndex = ValidTemperature(record.hottestSensorIndex);
    }

    DkSmlTemperatureSensorForAll table{};
    if (ReadDieSensorTable(index, die, table) == DK_SML_SUCCESS) report.sensorTableC = ToSensorRows(table);

    std::vector<DkSmlVmInfo> voltage;
    if (ReadDieVoltageMonitor(index, die, voltage) == DK_SML_SUCCESS) report.voltageMonitorRaw = ToVoltageRows(voltage);
    report.perfLevels = CollectPerfLevels(index, die);
    CollectDiePower(index, die, report.power);
    return report;
}

// The device's hot spot starts from die 0's temperature record, read and
// walked as the die's own record is: when that failed a moment ago, asking
// again would only repeat the failing read.
bool HotspotReadable(const std::vector<DieReport>& dies) {
    return dies.empty() || dies.front().temperatures.has_value();
}

std::vector<uint32_t> VirtualFunctionsOf(uint32_t index) {
    // A PF hosts at most as many VFs as there are VF devices in the map.
    uint32_t count = dkSmlGetPfDeviceCount();
    std::vector<uint32_t> indices(std::max<uint32_t>(count, 1));
    if (dkSmlGetVirtualDevicesByPhysicalId(index, &count, indices.data()) != DK_SML_SUCCESS) return {};
    indices.resize(std::min<size_t>(count, indices.size()));
    return indices;
}

DeviceRole RoleOf(DkSmlDeviceVirtualizationMode mode) {
    switch (mode) {
        case DK_SML_VIRTUALIZATION_MODE_PF: return DeviceRole::PhysicalFunction;
        case DK_SML_VIRTUALIZATION_MODE_VF: return DeviceRole::VirtualFunction;
        default: return DeviceRole::Physical;
    }
}

std::optional<DeviceReport> CollectDevice(uint32_t index, CollectScope scope) {
    DkSmlDeviceInfo info{};
    if (dkSmlGetDeviceInfo(index, &info) != DK_SML_SUCCESS) return std::nullopt;

    DeviceReport report;
    report.index = index;
    report.name = info.deviceName;
    report.busId = info.bdfId;
    report.uuid = info.uuid;
    report.brand = info.brand;
    report.role = RoleOf(info.virtualizationMode);
    if (report.role == DeviceRole::PhysicalFunction) report.virtualFunctions = VirtualFunctionsOf(index);

    report.dieCount = ReadValue<uint32_t>([&](uint32_t* count) { return dkSmlGetDeviceDieCount(index, count); });


    uint32_t rpm = 0;
    uint32_t duty = 0;
    if (dkSmlGetFanSpeedInfo(index, &rpm, &duty) == DK_SML_SUCCESS) {
        report.fanRpm = rpm;
        report.fanDuty = duty;
    }

    report.throttleMask = ReadValue<uint64_t>(
        [&](uint64_t* mask) { return dkSmlGetCurrentClocksThrottleReason(index, DK_SML_DIE_ALL, mask); });

    const bool summary = scope == CollectScope::SummaryTable;
    if (summary) {
        CollectDeviceSummaryPower(index, report.power);
        if (report.dieCount.value_or(0) > 0) report.dies.push_back(CollectSummaryDie(index));
    } else {
        CollectDevicePower(index, report.power);
        for (uint32_t die = 0; die < report.dieCount.value_or(0); ++die) report.dies.push_back(CollectDie(index, die));
    }
    if (HotspotReadable(report.dies)) {
        int32_t hotspot = 0;
        if (dkSmlGetTemperatureInfo(index, DK_SML_TEMPERATURE_HOTSPOT, &hotspot) == DK_SML_SUCCESS)
            report.hotspotC = ValidTemperature(hotspot);
    }
    if (summary) return report;
    CollectPcieAndLinks(index, report);
    CollectDeviceVersions(report);
    CollectSlices(report);
    return report;
}

std::vector<uint32_t> LimitedDeviceIndices() {
    std::vector<uint32_t> indices(16);
    for (int attempt = 0; attempt < 2; ++attempt) {
        uint32_t count = static_cast<uint32_t>(indices.size());
        const DkSmlReturn status = dkSmlGetAllLimitedDevices(&count, indices.data());
        if (status == DK_SML_SUCCESS) {
            indices.resize(std::min<size_t>(count, indices.size()));
            return indices;
        }
        if (status != DK_SML_ERROR_INSUFFICIENT_SIZE) return {};
        indices.resize(count);
    }
    return {};
}

std::optional<LimitedDeviceReport> CollectLimitedDevice(uint32_t index) {
    DkSmlLimitedDeviceInfo info{};
    if (dkSmlGetLimitedDeviceInfo(index, &info) != DK_SML_SUCCESS) return std::nullopt;

    LimitedDeviceReport report;
    report.index = index;
    report.busId = info.bdfId;
    report.vendorId = info.vendorId;
    report.deviceId = info.deviceId;
    report.isVirtualFunction = info.isVf != 0;
    // The reason discovery found a moment ago. dkSmlGetDeviceUnavailableReason
    // would check the driver afresh and repeat the reads that just failed.
    report.reason = info.unavailableReason;
    report.reasonText = dksml::DkUnavailableReasonText(info.unavailableReason);
    return report;
}

std::vector<uint32_t> DeviceIndices() {
    std::vector<uint32_t> indices;
    for (uint32_t i = 0; i < dkSmlGetDeviceCount(); ++i) indices.push_back(i);
    const uint32_t virtualCount = dkSmlGetPfDeviceCount();
    for (uint32_t i = 0; i < virtualCount; ++i) indices.push_back(DK_SML_FIRST_VF_INDEX + i);
    return indices;
}

// VFs do not know their PF through the C interface; the PFs' lists tell.
void LinkVirtualFunctionsToParents(std::vector<DeviceReport>& devices) {
    std::map<uint32_t, uint32_t> parentOf;
    for (const DeviceReport& device : devices)
        for (uint32_t vf : device.virtualFunctions) parentOf[vf] = device.index;
    for (DeviceReport& device : devices) {
        auto found = parentOf.find(device.index);
        if (found != parentOf.end()) device.physicalFunction = found->second;
    }
}

}  // namespace

Snapshot Collect(DkSmlReturn initStatus, CollectScope scope) {
    // One snapshot: a driver record several queries parse (the performance
    // levels of every domain, the PMBus rails, the engine loads) is read once,
    // and a record a device lacks is asked for once.
    const dksml::DkReadSession session;
    Snapshot snapshot;
    snapshot.initStatus = initStatus;
    for (uint32_t index : DeviceIndices()) {
        if (std::optional<DeviceReport> device = CollectDevice(index, scope))
            snapshot.devices.push_back(std::move(*device));
    }
    LinkVirtualFunctionsToParents(snapshot.devices);
    CollectSystemVersions(snapshot, scope == CollectScope::SummaryTable);
    for (uint32_t index : LimitedDeviceIndices()) {
        if (std::optional<LimitedDeviceReport> limited = CollectLimitedDevice(index))
            snapshot.limitedDevices.push_back(std::move(*limited));
    }
    CollectProcesses(snapshot, scope == CollectScope::Everything);
    return snapshot;
}

void KeepOnly(Snapshot& snapshot, uint32_t index) {
    std::erase_if(snapshot.devices, [&](const DeviceReport& d) { return d.index != index; });
    std::erase_if(snapshot.limitedDevices, [&](const LimitedDeviceReport& d) { return d.index != index; });
}

}  // namespace dksmi
