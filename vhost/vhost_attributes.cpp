#include "vhost/vhost_attributes.h"

#include <array>
#include <cstdio>
#include <functional>
#include <string_view>

#include "vhost/vhost_dpm_texts.h"
#include "vhost/vhost_model_family.h"

namespace dksml::vhost {
namespace {

// Deterministic per device and die, so that every die of a profile reads
// differently and every run reads the same.
int Vary(const DieContext& c, int spread, int salt = 0) {
    return static_cast<int>((c.device.seed * 7 + c.die * 3 + salt * 5) % static_cast<unsigned>(spread));
}

const ModelFamily& Family(const DieContext& c) { return FamilyOfBrand(c.device.brand); }

std::string Line(std::string_view key, long long value) {
    return std::string(key) + ": " + std::to_string(value) + "\n";
}

std::string Row(std::string_view label, int first, int step, int count) {
    std::string text(label);
    text += ":";
    for (int i = 0; i < count; ++i) text += " " + std::to_string(first + step * i + (i * 7) % 3);
    return text + "\n";
}

std::string Hex(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "%x", value);
    return text;
}

// --- identity --------------------------------------------------------------

std::string VendorId(const DieContext& c) { return "vendor id: 0x" + Hex(c.device.vendorId) + "\n"; }

std::string CardName(const DieContext& c) {
    return c.device.model + (c.device.kind == FunctionKind::Virtual ? " VF" : "") + "\n";
}

std::string Topology(const DieContext& c) {
    return std::to_string(c.device.topologyPosition) + " " + std::to_string(c.device.socket) +
           "\ndie_id: " + std::to_string(c.die) + "\n";
}

std::string IsaVersion(const DieContext& c) { return "isa version: " + std::string(Family(c).isaVersion) + "\n"; }
std::string BoardType(const DieContext& c) { return Line("board type", Family(c).boardType); }

// --- clocks ----------------------------------------------------------------

struct ClockDomain {
    std::string_view ip;
    int baseMHz;
    int domains;
};

constexpr std::array<ClockDomain, 13> c_clockDomains{{
    {"csc", 800, 1}, {"dla", 1000, 1}, {"mc", 1600, 1}, {"mc0", 1600, 1}, {"mc1", 1600, 1},
    {"vpue", 600, 1}, {"vpud", 700, 2}, {"soc", 900, 1}, {"dnoc", 1200, 1}, {"gpu", 1300, 1},
    {"ccx", 1500, 1}, {"xcore", 1000, 2}, {"xpu", 650, 6},
}};

const ClockDomain* FindDomain(std::string_view ip) {
    for (const ClockDomain& d : c_clockDomains) {
        if (d.ip == ip) return &d;
    }
    return nullptr;
}

// The xpu block clocks the video and ccx domains itself: one line of six values
// replaces theirs.
std::vector<std::string_view> ClockIps(const DieContext& c) {
    std::vector<std::string_view> ips;
    for (std::string_view ip : Family(c).clockIps) {
        if (c.device.xpuClock && (ip == "vpue" || ip == "vpud" || ip == "ccx")) continue;
        ips.push_back(ip);
    }
    if (c.device.xpuClock) ips.push_back("xpu");
    return ips;
}

std::string Clocks(const DieContext& c) {
    std::string clocks;
    std::string states;
    for (std::string_view ip : ClockIps(c)) {
        const ClockDomain& domain = *FindDomain(ip);
        clocks += std::string(ip) + " clock:";
        states += std::string(ip) + " status:";
        for (int i = 0; i < domain.domains; ++i) {
            clocks += " " + std::to_string(domain.baseMHz + 25 * Vary(c, 5, i) + 100 * i);
            states += (ip == "vpud" && c.device.seed % 2 == 1) ? " 0" : " 1";
        }
        clocks += "\n";
        states += "\n";
    }
    return clocks + states;
}

std::string ThrottleSources(const DieContext& c) {
    constexpr std::array<unsigned, 4> masks{0, 4, 0, 17};
    return Line("pmdecsrc", masks[(c.device.seed + c.die) % masks.size()]);
}

// --- temperature, fan, voltage monitor ------------------------------------

std::string Temperatures(const DieContext& c) {
    const int base = 44 + Vary(c, 9);
    std::string text = Line("hotspot", base + 18) + Line("hotlimit", 105) + Line("soc", base + 6) +
                       Line("core", base + 10);
    if (c.device.sensorBoard == "tmp435") {
        text += Line("tmp435_u1_local", base - 4) + Line("tmp435_u2_local", base - 3) +
                Line("tmp435_u1_remote", base + 2) + Line("tmp435_u2_remote", base + 3);
    } else {
        text += Line("emclocal", base - 5) + Line("emcremote", base + 1) + Line("sgm452", base - 2);
    }
    text += Line("mc0", base + 4) + Line("mc1", base + 5 + Vary(c, 3)) + Line("hbm", base + 8);
    for (int i = 0; i < 8; ++i) {
        text += "sensor[" + std::to_string(i) + "]: " + std::to_string(base + 9 + (i * 5 + c.die) % 9) + "\n";
    }
    return text;
}

std::string SensorTable(const DieContext& c) {
    const int base = 42 + Vary(c, 7);
    return Row("row0", base, 1, 16) + Row("row1", base + 3, 1, 16) + Row("row2", base + 1, 0, 16) +
           Row("row3", base + 6, 2, 8);
}

std::string Fan(const DieContext& c) {
    return Line("fan_rpm", 2100 + 150 * Vary(c, 6)) + Line("fan_pwm", 96 + 8 * Vary(c, 6));
}

std::string VoltageMonitor(const DieContext& c) {
    const int base = 845 + Vary(c, 11);
    return Row("vm0", base, 1, 16) + Row("vm1", base - 30, 2, 16) + Row("vm2", base + 60, 1, 10);
}

// --- power ----------------------------------------------------------------

struct PmbusRail {
    std::string_view label;  // the driver's key; "hbm " and "pcie " keep their blank
    int millivolts;
    int milliamps;
};

constexpr std::array<PmbusRail, 5> c_pmbusRails{{
    {"soc", 850, 42000}, {"core", 780, 210000}, {"hbm1", 1200, 18000}, {"hbm2", 1200, 17500},
    {"pcie", 900, 6000},
}};

std::string Pmbus(const DieContext& c, std::string_view quantity) {
    std::string text;
    for (const PmbusRail& rail : c_pmbusRails) {
        const int amps = rail.milliamps + 500 * Vary(c, 7);
        const long long value = quantity == "voltage" ? rail.millivolts
                              : quantity == "current" ? amps
                                                      : static_cast<long long>(rail.millivolts) * amps / 1000000;
        text += std::string(rail.label) + " " + std::string(quantity) + ": " + std::to_string(value) + "\n";
    }
    return text;
}

// The x-series driver lists the readings way by way; the others quantity by
// quantity.
std::string BoardPower(const DieContext& c) {
    // The other devices of a multi-device board have no board monitor.
    if (!c.device.boardMaster) return "board power: not support\n";
    constexpr int ways = 2;
    const int amps = 9000 + 250 * Vary(c, 8);
    if (c.device.brand == 4 || c.device.brand == 2) {
        std::string text;
        for (int way = 0; way < ways; ++way) {
            text += "way" + std::to_string(way) + ": 12000 " + std::to_string(amps + way * 300) + " " +
                    std::to_string(12 * (amps + way * 300)) + "\n";
        }
        return text;
    }
    return "voltage: 12000 12010\ncurrent: " + std::to_string(amps) + " " + std::to_string(amps + 300) +
           "\npower: " + std::to_string(12 * amps) + " " + std::to_string(12 * (amps + 300)) + "\n";
}

std::string Eeprom(const DieContext& c) {
    return "product name: " + c.device.model + "\nboard serial: " + c.device.boardSerial + "\n";
}

// In milliwatts, the unit the library reports for every model.
std::string Capability(const DieContext& c) { return Line("power cap", 300000 + 50000 * Vary(c, 3)); }

std::string ConfigTbp(const DieContext& c) {
    const int limit = 450 + 25 * Vary(c, 4);
    return std::to_string(limit) + " 550 200 " + std::to_string(limit) + "\n";
}

// One line per DPM domain in domain order; each value a decimal mask of the
// instances that are powered.
std::string IpPowerState(const DieContext& c) {
    constexpr std::array<std::string_view, 15> names{"dla", "xcore", "mc", "soc", "dnoc", "vpue", "vpud", "hbm",
                                                     "g2d", "hbmpower", "ccx", "npu", "dma", "csc", "eth"};
    constexpr std::array<unsigned, 15> masks{3, 4095, 15, 1, 1, 3, 15, 15, 1, 1, 15, 0, 3, 1, 0};
    std::string text;
    for (size_t i = 0; i < names.size(); ++i) {
        text += Line(names[i], masks[i] >> (c.die == 1 && i == 1 ? 2 : 0));
    }
    return text;
}

// --- utilisation and memory ----------------------------------------------

std::string Usage(const DieContext& c) {
    const int load = 10 * Vary(c, 8);
    // A negative sample ends an engine's valid samples: the vpud value after
    // it is stale and must not count.
    return Row("dla use", load, 3, 2) + Row("vpue use", load / 2, 4, 2) + "vpud use: " + std::to_string(30 + load) +
           " " + std::to_string(50 + load) + " -1 99\n" + "g2d use: 0 -1\n";
}

std::string XcoreUsage(const DieContext& c) {
    const ModelFamily& family = Family(c);
    const unsigned load = 16 + 9 * static_cast<unsigned>(Vary(c, 8));
    std::string text = "xcore usage: " + Hex(load) + "\n";
    for (unsigned dpc = 0; dpc < family.dpcCount; ++dpc) {
        // The last DPC of die 1 is fused off on harvested parts, and so is
        // the first AP of its first DPC.
        const bool harvested = c.die == 1 && dpc + 1 == family.dpcCount;
        text += "dpc" + std::to_string(dpc) + ":";
        for (unsigned ap = 0; ap < family.apPerDpc; ++ap) {
            const bool fusedOff = harvested || (c.die == 1 && dpc == 0 && ap == 0);
            text += " " + (fusedOff ? std::string("ff") : Hex((load + dpc * 5 + ap * 3) % 100));
        }
        text += "\n";
    }
    return text;
}

// The driver prints these two counts without a colon.
std::string DeviceInfo(const DieContext& c) {
    return "dpc_count " + std::to_string(Family(c).dpcCount) + "\nap_per_dpc " +
           std::to_string(Family(c).apPerDpc) + "\n";
}

std::string ApUsageSwitch(const DieContext&) { return "xcore_ap_use: 0\n"; }

std::string MemInfo(const DieContext& c) {
    const unsigned long long kib = Family(c).memoryGiB * 1024ull * 1024ull;
    return Line("vram total", static_cast<long long>(kib)) + Line("vis_vram total", 262144) +
           Line("gtt total", 65536000);
}

std::string MemUse(const DieContext& c) {
    return Line("vram used", 524288 + 262144LL * Vary(c, 9)) + Line("vis_vram used", 16384) +
           Line("gtt used", 20480 + 1024 * Vary(c, 5));
}

// --- performance levels ---------------------------------------------------

// The DPM texts live in vhost_dpm_texts.cpp.

// --- PCIe -----------------------------------------------------------------

std::string LinkSpeed(const DieContext& c) { return c.device.brand == 4 ? "32.0 GT/s PCIe\n" : "16.0 GT/s PCIe\n"; }
std::string LinkWidth(const DieContext&) { return "16\n"; }

std::string UpstreamBandwidth(const DieContext& c) {
    const int traffic = 1200 + 150 * Vary(c, 7);
    return Line("rx bytes", traffic * 1024LL) + Line("tx bytes", traffic * 640LL) + Line("rx packets", traffic * 4LL) +
           Line("tx packets", traffic * 3LL) + Line("max payload", 256) + Line("replay count", 0);
}

std::string VmType(const DieContext& c) { return c.virtualMachine ? "guest\n" : "host\n"; }
std::string PciDelay(const DieContext&) { return "100\n"; }

// --- interconnect ---------------------------------------------------------

unsigned Ports(const DieContext& c) { return Family(c).linkPorts + (c.die == 1 ? 1 : 0); }

std::string PortLines(const DieContext& c, const std::function<std::string(unsigned)>& value) {
    std::string text;
    for (unsigned port = 1; port <= Ports(c); ++port) {
        text += "port" + std::to_string(port) + ": " + value(port) + "\n";
    }
    return text;
}

// Two lines per link; die 1's last port is its PM port.
std::string LinkBandwidth(const DieContext& c, int salt) {
    std::string text;
    for (unsigned link = 0; link < Ports(c); ++link) {
        const int rate = 4000 + 350 * Vary(c, 9, salt + static_cast<int>(link));
        const bool pmPort = c.die == 1 && link + 1 == Ports(c);
        const std::string label = pmPort ? "pm port" : "link" + std::to_string(link);
        text += label + " bandwidth: " + std::to_string(rate) + "\n";
        text += label + " max bandwidth: 50000\n";
    }
    return text;
}

std::string LinkStatus(const DieContext& c) {
    return PortLines(c, [&](unsigned port) { return port <= 4 ? std::string("2") : std::string("0"); });
}

// "portN: <packets> <bytes>".
std::string LinkTraffic(const DieContext& c, int salt) {
    return PortLines(c, [&](unsigned port) {
        const unsigned long long bytes = (port * 1048576ull) + Vary(c, 97, salt);
        return std::to_string(bytes / 256) + " " + std::to_string(bytes);
    });
}

// "portN: <correctable> <uncorrectable>".
std::string LinkAer(const DieContext& c) {
    return PortLines(c, [](unsigned port) { return std::to_string(port == 2 ? 3 : 0) + " 0"; });
}
std::string LinkSpeedPorts(const DieContext& c) { return PortLines(c, [](unsigned) { return std::string("32"); }); }
std::string LinkWidthPorts(const DieContext& c) { return PortLines(c, [](unsigned) { return std::string("16"); }); }
std::string LinkControl(const DieContext&) { return "1\nenabled\n"; }

// --- versions -------------------------------------------------------------

std::string Vbios(const DieContext& c) {
    return "vbios version: 016." + std::to_string(c.device.brand) + ".000.04" + std::to_string(c.device.seed % 10) + "\n";
}

std::string DriverVersion(const DieContext&) { return "driver version: 6.2.15\n"; }

std::string FirmwareInfo(const DieContext& c) {
    const std::string minor = std::to_string(10 + c.device.seed % 4);
    return "SMP0: 1." + minor + ".3\nSMP1: 1." + minor + ".3\nCCX0: 2.4.1\nCCX1: 2.4.1\nCCX2: 2.4.1\n"
           "CCX3: 2.4.1\nMCU: 0.9.7\nVR0: 0x21\nVR1: 0x21\n";
}

std::string PptableVersion(const DieContext& c) { return "pptable version: 3." + std::to_string(10 + c.die) + "\n"; }

// --- the table ------------------------------------------------------------

enum class Scope {
    AllFunctions,   // physical and virtual functions
    Physical,       // physical functions only
    PhysicalDie0,   // physical functions, first die only
    Interconnect,   // physical functions of families with interconnect ports
};

struct AttributeRow {
    std::string_view name;
    Scope scope;
    std::function<std::string(const DieContext&)> text;
};

const std::vector<AttributeRow>& AttributeTable() {
    static const std::vector<AttributeRow> rows{
        {"pcipowerstate", Scope::AllFunctions, [](const DieContext&) { return std::string("D0\n"); }},
        {"showvendorid", Scope::AllFunctions, VendorId},
        {"showcardname", Scope::AllFunctions, CardName},
        {"showtopology", Scope::Physical, Topology},
        {"showisaversion", Scope::AllFunctions, IsaVersion},
        {"showboardtype", Scope::AllFunctions, BoardType},
        {"showclocks", Scope::Physical, Clocks},
        {"pmdecsrc", Scope::Physical, ThrottleSources},
        {"showtemp", Scope::Physical, Temperatures},
        {"showtstemp", Scope::Physical, SensorTable},
        {"fan_ctrl", Scope::Physical, Fan},
        {"showvmread", Scope::Physical, VoltageMonitor},
        {"showpmbusvol", Scope::Physical, [](const DieContext& c) { return Pmbus(c, "voltage"); }},
        {"showpmbuscur", Scope::Physical, [](const DieContext& c) { return Pmbus(c, "current"); }},
        {"showpmbuspower", Scope::Physical, [](const DieContext& c) { return Pmbus(c, "power"); }},
        {"showboardpowerinfo", Scope::PhysicalDie0, BoardPower},
        {"showe2prominfo", Scope::PhysicalDie0, Eeprom},
        {"capability", Scope::PhysicalDie0, Capability},
        {"config_tbp", Scope::PhysicalDie0, ConfigTbp},
        {"pow_persist_ctrl", Scope::Physical, [](const DieContext&) { return std::string("power mode: 1\n"); }},
        {"ippowerstate", Scope::Physical, IpPowerState},
        {"showuse", Scope::AllFunctions, Usage},
        {"showxcuse", Scope::AllFunctions, XcoreUsage},
        {"deviceinfo", Scope::AllFunctions, DeviceInfo},
        {"apuseageswitch", Scope::AllFunctions, ApUsageSwitch},
        {"showmeminfo", Scope::AllFunctions, MemInfo},
        {"showmemuse", Scope::AllFunctions, MemUse},
        {"dpmcount", Scope::Physical, DpmCountText},
        {"setperflevel", Scope::Physical, PerfLevelText},
        {"dpminterval", Scope::Physical, DpmIntervalText},
        {"showperflevel", Scope::Physical, PerfLevelText},
        {"showclkrange", Scope::Physical, ClockRangeText},
        {"dpmctl", Scope::Physical, DpmVoltageText},
        {"dpmusage", Scope::Physical, DpmUsageText},
        {"dpmfeature", Scope::Physical, DpmFeatureText},
        {"dpm_table_ctrl", Scope::Physical, DpmTableText},
        {"pcicurrentlinkspeed", Scope::Physical, LinkSpeed},
        {"pcicurrentlinkwidth", Scope::Physical, LinkWidth},
        {"showupstreambandwidth", Scope::Physical, UpstreamBandwidth},
        {"showvmtype", Scope::AllFunctions, VmType},
        {"showpcidelay", Scope::PhysicalDie0, PciDelay},
        {"showdvlkibandwidth", Scope::Interconnect, [](const DieContext& c) { return LinkBandwidth(c, 0); }},
        {"showdvlktbandwidth", Scope::Interconnect, [](const DieContext& c) { return LinkBandwidth(c, 1); }},
        {"showdvlkstatus", Scope::Interconnect, LinkStatus},
        {"showdvlkaer", Scope::Interconnect, LinkAer},
        {"showdvlkspeed", Scope::Interconnect, LinkSpeedPorts},
        {"showdvlkwidth", Scope::Interconnect, LinkWidthPorts},
        {"dvlki_traffic_stat", Scope::Interconnect, [](const DieContext& c) { return LinkTraffic(c, 0); }},
        {"dvlkt_traffic_stat", Scope::Interconnect, [](const DieContext& c) { return LinkTraffic(c, 1); }},
        {"dravlink_ctrl", Scope::Interconnect, LinkControl},
        {"showvbios", Scope::AllFunctions, Vbios},
        {"showdriverversion", Scope::AllFunctions, DriverVersion},
        {"showfwinfo", Scope::Physical, FirmwareInfo},
        {"showpptableversion", Scope::Physical, PptableVersion},
    };
    return rows;
}

bool InScope(Scope scope, const DieContext& c) {
    const bool physical = c.device.kind == FunctionKind::Physical;
    switch (scope) {
    case Scope::AllFunctions: return true;
    case Scope::Physical: return physical;
    case Scope::PhysicalDie0: return physical && c.die == 0;
    case Scope::Interconnect: return physical && Family(c).linkPorts > 0;
    }
    return false;
}

}  // namespace

std::map<std::string, std::string> DefaultDieAttributes(const DieContext& context) {
    std::map<std::string, std::string> attributes;
    for (const AttributeRow& row : AttributeTable()) {
        if (InScope(row.scope, context)) attributes.emplace(row.name, row.text(context));
    }
    return attributes;
}

}  // namespace dksml::vhost
