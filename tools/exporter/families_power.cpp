// Board power (per input way and in total), its limit, and the PMBus rails of
// every die; converted from the driver's milli-units to base units.
#include <array>

#include "die_readers.h"
#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kBoardPower{"dksml_power_board_watts", "Board input power: the sum of every power way, in watts."};
constexpr MetricSpec kWayVoltage{"dksml_power_way_volts", "Voltage of one board power way, in volts."};
constexpr MetricSpec kWayCurrent{"dksml_power_way_amperes", "Current of one board power way, in amperes."};
constexpr MetricSpec kWayPower{"dksml_power_way_watts", "Power of one board power way, in watts."};
constexpr MetricSpec kLimit{"dksml_power_limit_watts", "Board power limit, in watts."};
constexpr MetricSpec kRailVoltage{"dksml_pmbus_volts", "Voltage of one PMBus rail of the die, in volts."};
constexpr MetricSpec kRailCurrent{"dksml_pmbus_amperes", "Current of one PMBus rail of the die, in amperes."};
constexpr MetricSpec kRailPower{"dksml_pmbus_watts", "Power of one PMBus rail of the die, in watts."};

constexpr uint32_t c_maxBoardWays = 16;

struct Rail {
    const char* name;
    DkSmlPmbusUnit unit;
};
constexpr std::array<Rail, 6> kRails{{{"soc", DK_SML_PMBUS_UNIT_SOC},
                                      {"core", DK_SML_PMBUS_UNIT_CORE},
                                      {"hbm", DK_SML_PMBUS_UNIT_HBM},
                                      {"pcie", DK_SML_PMBUS_UNIT_PCIE},
                                      {"hbm2", DK_SML_PMBUS_UNIT_HBM2},
                                      {"pcie2", DK_SML_PMBUS_UNIT_PCIE2}}};

}  // namespace

void CollectPower(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        DkSmlBoardWayElectricInfo ways[c_maxBoardWays]{};
        uint32_t count = c_maxBoardWays;
        if (errors.Ok(dkSmlGetBoardPowerInfo(gpu.index, &count, ways))) {
            double milliwatts = 0;
            for (uint32_t w = 0; w < std::min(count, c_maxBoardWays); ++w) {
                // Driver order: voltage mV, current mA, power mW.
                const LabelList labels = WithLabels(gpu.labels, {{"way", std::to_string(w)}});
                sink.Add(kWayVoltage, labels, ways[w].values[0] / 1000.0);
                sink.Add(kWayCurrent, labels, ways[w].values[1] / 1000.0);
                sink.Add(kWayPower, labels, ways[w].values[2] / 1000.0);
                milliwatts += ways[w].values[2];
            }
            sink.Add(kBoardPower, gpu.labels, milliwatts / 1000.0);
        }
        uint32_t limit = 0;
        if (errors.Ok(dkSmlGetBoardPowerLimit(gpu.index, &limit))) sink.Add(kLimit, gpu.labels, limit / 1000.0);
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            DkDiePmbusRails rails{};
            const DkSmlReturn read = ReadDiePmbusRails(gpu.index, die, rails);
            for (const Rail& rail : kRails) {
                if (!errors.Ok(Either(read, rails.status[rail.unit]))) continue;
                const DkSmlPmbusInfo& info = rails.info[rail.unit];
                // PMBus: voltage mV, current mA, power W.
                const LabelList labels = WithLabels(DieLabels(gpu, die), {{"rail", rail.name}});
                sink.Add(kRailVoltage, labels, info.voltage / 1000.0);
                sink.Add(kRailCurrent, labels, info.current / 1000.0);
                sink.Add(kRailPower, labels, info.power);
            }
        }
    }
}

}  // namespace dksml::exporter
