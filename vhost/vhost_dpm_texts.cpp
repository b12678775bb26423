#include "vhost/vhost_dpm_texts.h"

#include <string_view>

namespace dksml::vhost {
namespace {

// The levels of every domain the driver reports, with the clock and voltage
// of the lowest level and the step between levels. The x-series training
// line (DK_SML_BRAND_DKK_X) has ten compute levels; the others have eight.
struct DpmDomainRow {
    std::string_view name;
    int levels;
    int baseMHz;
    int stepMHz;
    int baseMv;
};

constexpr DpmDomainRow c_dpmDomains[] = {
    {"dla", 8, 200, 100, 650},  {"xcore", 8, 300, 150, 650}, {"mc", 4, 800, 400, 700},
    {"soc", 6, 400, 100, 700},  {"dnoc", 4, 500, 200, 700},  {"vpue", 5, 200, 100, 650},
    {"vpud", 5, 200, 100, 650}, {"hbm", 3, 1200, 400, 800},  {"ccx", 4, 1000, 300, 750},
};
constexpr int c_xSeriesXcoreLevels = 10;

int Levels(const DieContext& c, const DpmDomainRow& row) {
    return row.name == "xcore" && c.device.brand == 4 ? c_xSeriesXcoreLevels : row.levels;
}

// Deterministic per device and die, as the other generated texts.
int Vary(const DieContext& c, int spread) {
    return static_cast<int>((c.device.seed * 7 + c.die * 3) % static_cast<unsigned>(spread));
}

template <typename Value>
std::string Rows(const DieContext& c, std::string_view suffix, Value value) {
    std::string text;
    for (const DpmDomainRow& row : c_dpmDomains) {
        text.append(row.name).append(suffix).append(":");
        for (int level = 0; level < Levels(c, row); ++level) text += " " + std::to_string(value(row, level));
        text += "\n";
    }
    return text;
}

std::string Single(const DieContext& c, int (*value)(const DieContext&, const DpmDomainRow&)) {
    std::string text;
    for (const DpmDomainRow& row : c_dpmDomains) text.append(row.name).append(": ") += std::to_string(value(c, row)) + "\n";
    return text;
}

std::string Clocks(const DieContext& c, std::string_view suffix) {
    return Rows(c, suffix, [](const DpmDomainRow& r, int l) { return r.baseMHz + r.stepMHz * l; });
}

std::string Voltages(const DieContext& c, std::string_view suffix) {
    return Rows(c, suffix, [](const DpmDomainRow& r, int l) { return r.baseMv + 25 * l; });
}

}  // namespace

std::string DpmCountText(const DieContext& c) {
    return Single(c, [](const DieContext& d, const DpmDomainRow& r) { return Levels(d, r); });
}

std::string PerfLevelText(const DieContext& c) {
    return Single(c, [](const DieContext& d, const DpmDomainRow& r) { return Vary(d, Levels(d, r)); });
}

std::string DpmIntervalText(const DieContext& c) {
    return Single(c, [](const DieContext&, const DpmDomainRow&) { return 10; });
}

std::string ClockRangeText(const DieContext& c) { return Clocks(c, ""); }
std::string DpmVoltageText(const DieContext& c) { return Voltages(c, ""); }

std::string DpmUsageText(const DieContext& c) {
    const int salt = Vary(c, 50);
    return Rows(c, "", [salt](const DpmDomainRow& r, int l) { return (salt + 13 * l + r.levels) * 1000; });
}

std::string DpmFeatureText(const DieContext& c) { return DpmCountText(c); }

std::string DpmTableText(const DieContext& c) {
    std::string text = Clocks(c, " clock") + Voltages(c, " vdd") + Clocks(c, " backup clock") +
                       Voltages(c, " backup vdd");
    for (const DpmDomainRow& row : c_dpmDomains) text.append(row.name).append(" hide: 0\n");
    for (const DpmDomainRow& row : c_dpmDomains) text.append(row.name).append(" param: 5 30 70\n");
    return text;
}

}  // namespace dksml::vhost
