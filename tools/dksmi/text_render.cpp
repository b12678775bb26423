#include "text_render.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "names.h"
#include "processes_render.h"
#include "topo_render.h"
#include "power_render.h"

namespace dksmi {
namespace {

constexpr const char* kNotAvailable = "N/A";

template <typename T>
std::string OrNa(const std::optional<T>& value, const char* unit = "") {
    return value ? fmt::format("{}{}", *value, unit) : kNotAvailable;
}

std::string HexOrNa(const std::optional<uint64_t>& mask) {
    return mask ? fmt::format("{:#x}", *mask) : kNotAvailable;
}

std::string JoinOrNa(const std::optional<std::vector<uint32_t>>& values) {
    return values ? fmt::format("{}", fmt::join(*values, " ")) : kNotAvailable;
}

bool IsAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Plain text table: columns padded to their widest cell, two blanks apart.
std::string FormatTable(const std::vector<std::string>& headers, const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths(headers.size());
    for (size_t c = 0; c < headers.size(); ++c) {
        widths[c] = headers[c].size();
        for (const auto& row : rows) widths[c] = std::max(widths[c], row[c].size());
    }
    std::string out;
    auto line = [&](const std::vector<std::string>& cells) {
        for (size_t c = 0; c < cells.size(); ++c) {
            if (c + 1 == cells.size()) {
                out += cells[c];
            } else if (IsAscii(cells[c])) {
                // ASCII is one column per byte: the padding fmt would write, without a format call per cell.
                out += cells[c];
                out.append(widths[c] - cells[c].size() + 2, ' ');
            } else {
                out += fmt::format("{:<{}}  ", cells[c], widths[c]);
            }
        }
        out += '\n';
    };
    line(headers);
    for (const auto& row : rows) line(row);
    return out;
}

std::optional<uint32_t> FirstClock(const DeviceReport& device, const std::string& ip) {
    if (device.dies.empty() || !device.dies.front().clocks) return std::nullopt;
    for (const ClockReading& clock : *device.dies.front().clocks)
        if (clock.ip == ip && clock.mhz && !clock.mhz->empty()) return clock.mhz->front();
    return std::nullopt;
}

std::string RoleText(const DeviceReport& device) {
    switch (device.role) {
        case DeviceRole::PhysicalFunction: return fmt::format("PF ({} VFs)", device.virtualFunctions.size());
        case DeviceRole::VirtualFunction: return "virtual";
        case DeviceRole::Physical: break;
    }
    return "physical";
}

std::string FanText(const DeviceReport& device) {
    return device.fanRpm ? fmt::format("{} RPM", *device.fanRpm) : kNotAvailable;
}

std::string LimitedSection(const Snapshot& snapshot) {
    if (snapshot.limitedDevices.empty()) return "Limited devices: none\n";
    std::vector<std::vector<std::string>> rows;
    for (const LimitedDeviceReport& d : snapshot.limitedDevices)
        rows.push_back({std::to_string(d.index), d.busId, fmt::format("{:#06x}", d.vendorId),
                        fmt::format("{:#06x}", d.deviceId), d.isVirtualFunction ? "yes" : "no",
                        std::to_string(d.reason), d.reasonText});
    return "Limited devices (found, cannot be used):\n" +
           FormatTable({"IDX", "BUS ID", "VENDOR", "DEVICE", "VF", "REASON", "REASON TEXT"}, rows);
}

// Label/value lines of the detail view, indented by nesting depth.
class DetailWriter {
public:
    void Field(int depth, const std::string& label, const std::string& value) {
        const int width = std::max(1, 22 - 2 * depth);
        m_out += fmt::format("{:{}}{:<{}} {}\n", "", 2 * depth, label, width, value);
    }
    void Heading(int depth, const std::string& text) { m_out += fmt::format("{:{}}{}\n", "", 2 * depth, text); }
    void Rows(int depth, const std::string& title, const std::optional<ReadingRows>& rows) {
        if (!rows) return Field(depth, title, kNotAvailable);
        if (rows->empty()) return Field(depth, title, "(no rows)");
        Heading(depth, title);
        for (size_t r = 0; r < rows->size(); ++r)
            Field(depth + 1, fmt::format("row {}", r), fmt::format("{}", fmt::join((*rows)[r], " ")));
    }
    void Lines(int depth, const std::vector<PowerDetailLine>& lines) {
        for (const PowerDetailLine& line : lines) {
            if (line.value) {
                Field(depth + line.depth, line.label, *line.value);
            } else {
                Heading(depth + line.depth, line.label);
            }
        }
    }
    std::string Take() { return std::move(m_out); }

private:
    std::string m_out;
};

// One "current / maximum" line per DPM domain the die reports.
void WritePerfLevels(DetailWriter& w, const DieReport& die) {
    if (!die.perfLevels) return w.Field(2, "Performance levels", kNotAvailable);
    w.Heading(2, "Performance levels (current / max)");
    for (const PerfLevelReading& level : *die.perfLevels)
        w.Field(3, level.ip, fmt::format("{} / {}", OrNa(level.current), OrNa(level.maximum)));
}

void WriteVersions(DetailWriter& w, const DeviceReport& device) {
    w.Heading(1, "Versions");
    w.Field(2, "Driver", OrNa(device.driverVersion));
    w.Field(2, "VBIOS", OrNa(device.vbiosVersion));
    w.Field(2, "Compute stack", OrNa(device.computeStackVersion));
    for (const FirmwareVersion& unit : device.firmware) w.Field(2, "Firmware " + unit.unit, OrNa(unit.version));
}

void WriteDie(DetailWriter& w, const DieReport& die) {
    w.Heading(1, fmt::format("Die {}", die.die));
    w.Field(2, "Throttle reasons", HexOrNa(die.throttleMask));
    if (die.clocks) {
        w.Heading(2, "Clocks (MHz)");
        for (const ClockReading& clock : *die.clocks) w.Field(3, clock.ip, JoinOrNa(clock.mhz));
    } else {
        w.Field(2, "Clocks (MHz)", kNotAvailable);
    }
    if (die.temperatures) {
        w.Heading(2, "Temperatures (C)");
        for (const TemperatureReading& t : *die.temperatures) w.Field(3, t.name, OrNa(t.celsius));
        w.Field(3, "hottest sensor", OrNa(die.hottestSensorIndex));
    } else {
        w.Field(2, "Temperatures (C)", kNotAvailable);
    }
    w.Rows(2, "Sensor table (C)", die.sensorTableC);
    w.Rows(2, "Voltage monitor (raw)", die.voltageMonitorRaw);
    WritePerfLevels(w, die);
    w.Lines(2, DiePowerDetail(die.power));
}

void WriteDevice(DetailWriter& w, const DeviceReport& device) {
    w.Heading(0, fmt::format("Device {}  {}", device.index, device.name));
    w.Field(1, "Bus id", device.busId);
    w.Field(1, "UUID", device.uuid.empty() ? kNotAvailable : device.uuid);
    w.Field(1, "Brand", BrandName(device.brand));
    std::string role = RoleText(device);
    if (!device.virtualFunctions.empty()) role += fmt::format(": {}", fmt::join(device.virtualFunctions, ", "));
    if (device.physicalFunction) role += fmt::format(" (PF {})", *device.physicalFunction);
    w.Field(1, "Role", role);
    w.Field(1, "Dies", OrNa(device.dieCount));
    w.Field(1, "Hot spot", OrNa(device.hotspotC, " C"));
    w.Field(1, "Fan", device.fanRpm ? fmt::format("{} RPM, duty {}", *device.fanRpm, OrNa(device.fanDuty))
                                    : kNotAvailable);
    w.Field(1, "Throttle reasons", HexOrNa(device.throttleMask));
    w.Field(1, "Processes", OrNa(device.processCount));
    w.Field(1, "Slice mode", device.sliceMode ? (*device.sliceMode ? "on" : "off") : kNotAvailable);
    if (!device.slices.empty()) w.Heading(1, "Slices");
    for (const SliceReport& slice : device.slices) w.Field(2, fmt::format("slice {}", slice.id), SliceLine(slice));
    WriteVersions(w, device);
    w.Lines(1, DevicePowerDetail(device.power));
    for (const DieReport& die : device.dies) WriteDie(w, die);
    for (const auto& [label, value] : PcieAndLinkFields(device)) w.Field(1, label, value);
}

void WriteLimitedDevice(DetailWriter& w, const LimitedDeviceReport& d) {
    w.Heading(0, fmt::format("Device {}  (limited: found, cannot be used)", d.index));
    w.Field(1, "Bus id", d.busId);
    w.Field(1, "Vendor id", fmt::format("{:#06x}", d.vendorId));
    w.Field(1, "Device id", fmt::format("{:#06x}", d.deviceId));
    w.Field(1, "Virtual function", d.isVirtualFunction ? "yes" : "no");
    w.Field(1, "Unavailable reason", fmt::format("{} {}", d.reason, d.reasonText));
}

}  // namespace

std::string RenderSummary(const Snapshot& snapshot) {
    std::string out = fmt::format("Driver Version: {}    DKSML Version: {}\n\n", OrNa(snapshot.driverVersion),
                                  snapshot.libraryVersion.empty() ? kNotAvailable : snapshot.libraryVersion);
    if (snapshot.devices.empty()) {
        out += "Devices: none usable\n";
    } else {
        std::vector<std::vector<std::string>> rows;
        for (const DeviceReport& d : snapshot.devices) {
            rows.push_back({std::to_string(d.index), d.name, d.busId, OrNa(d.dieCount), RoleText(d),
                            OrNa(d.hotspotC, " C"), FanText(d), OrNa(FirstClock(d, "xcore")),
                            OrNa(FirstClock(d, "soc")), OrNa(FirstClock(d, "mc")), HexOrNa(d.throttleMask),
                            OrNa(d.processCount)});
            for (std::string& cell : PowerSummaryCells(d.power)) rows.back().push_back(std::move(cell));
        }
        std::vector<std::string> headers{"IDX", "NAME", "BUS ID", "DIES", "ROLE", "HOTSPOT", "FAN", "XCORE MHZ",
                                         "SOC MHZ", "MC MHZ", "THROTTLE", "PROCS"};
        headers.insert(headers.end(), kPowerSummaryHeaders.begin(), kPowerSummaryHeaders.end());
        out += FormatTable(headers, rows);
    }
    out += "\n" + LimitedSection(snapshot);
    return out;
}

std::string RenderDetail(const Snapshot& snapshot) {
    DetailWriter writer;
    for (const DeviceReport& device : snapshot.devices) WriteDevice(writer, device);
    for (const LimitedDeviceReport& limited : snapshot.limitedDevices) WriteLimitedDevice(writer, limited);
    return writer.Take();
}

}  // namespace dksmi
