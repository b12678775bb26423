// Every scalar query family through the exported functions on the "server"
// virtual host (written under the temporary directory), each beside its floor
// (dk_bench_floor.h).
#include <benchmark/benchmark.h>

#include <climits>
#include <memory>
#include <string>

#include "dk_bench_floor.h"
#include "core/dk_system_manager.h"
#include "dksml.h"
#include "features/clock/dk_clock.h"
#include "vhost/dk_virtual_host.h"

namespace {

using dksml::bench::DkBenchBesideFloor;
using dksml::bench::DkFloorFiles;

struct ServerHost {
    ServerHost() : host("server") {
        dkSmlInitWithFlags(1);
        DkSmlDeviceInfo info{};
        dkSmlGetDeviceInfo(0, &info);
        bdf = info.bdfId;
        dkSmlGetDeviceDieCount(0, &dies);
        dkSmlExGetDeviceHandleByIndex(0, &handle);
    }
    std::string Dir(const char* sub) const { return "sys/bus/pci/devices/" + bdf + "/" + sub; }
    dksml::vhost::ScopedHost host;
    std::string bdf;
    uint32_t dies = 1;
    DkSmlExDevice handle{};
};

ServerHost& Host() {
    static ServerHost host;
    return host;
}

// A floor of one file per die of device 0.
std::unique_ptr<DkFloorFiles> PerDie(const char* name, uint32_t dies) {
    auto floor = std::make_unique<DkFloorFiles>(Host().host.Root().string());
    floor->Add(Host().Dir("smi"), name);
    if (dies > 1) floor->Add(Host().Dir("smi1"), name);
    return floor;
}

void BM_GetClocks(benchmark::State& state) {
    auto floor = PerDie("showclocks", 1);
    DkSmlClocksFreqForAll clocks{};
    DkBenchBesideFloor(state, [&] { benchmark::DoNotOptimize(dkSmlGetClocks(0, 0, &clocks)); },
                       [&] { floor->Read(); });
}
BENCHMARK(BM_GetClocks);

void BM_GetTemperatureInfoHotspotAllDies(benchmark::State& state) {
    auto floor = PerDie("showtemp", Host().dies);
    int32_t value = 0;
    DkBenchBesideFloor(
        state, [&] { benchmark::DoNotOptimize(dkSmlGetTemperatureInfo(0, DK_SML_TEMPERATURE_HOTSPOT, &value)); },
        [&] { floor->Read(); });
}
BENCHMARK(BM_GetTemperatureInfoHotspotAllDies);

void BM_GetDieTemperatureInfo(benchmark::State& state) {
    auto floor = PerDie("showtemp", 1);
    int32_t value = 0;
    DkBenchBesideFloor(
        state,
        [&] { benchmark::DoNotOptimize(dkSmlGetDieTemperatureInfo(0, 0, DK_SML_TEMPERATURE_HOTSPOT, &value)); },
        [&] { floor->Read(); });
}
BENCHMARK(BM_GetDieTemperatureInfo);

void BM_GetFanSpeedInfo(benchmark::State& state) {
    auto floor = PerDie("fan_ctrl", 1);
    uint32_t rpm = 0, pwm = 0;
    DkBenchBesideFloor(state, [&] { benchmark::DoNotOptimize(dkSmlGetFanSpeedInfo(0, &rpm, &pwm)); },
                       [&] { floor->Read(); });
}
BENCHMARK(BM_GetFanSpeedInfo);

void BM_GetThrottleReasonAllDies(benchmark::State& state) {
    auto floor = PerDie("pmdecsrc", Host().dies);
    uint64_t reasons = 0;
    DkBenchBesideFloor(
        state, [&] { benchmark::DoNotOptimize(dkSmlGetCurrentClocksThrottleReason(0, DK_SML_DIE_ALL, &reasons)); },
        [&] { floor->Read(); });
}
BENCHMARK(BM_GetThrottleReasonAllDies);

void BM_ExDeviceGetTemperature(benchmark::State& state) {
    auto floor = PerDie("showtemp", 1);
    uint32_t temp = 0;
    DkBenchBesideFloor(
        state,
        [&] { benchmark::DoNotOptimize(dkSmlExDeviceGetTemperature(Host().handle, DK_SML_EX_TEMPERATURE_GPU, &temp)); },
        [&] { floor->Read(); });
}
BENCHMARK(BM_ExDeviceGetTemperature);

void BM_ExDeviceGetClockInfo(benchmark::State& state) {
    auto floor = PerDie("showclocks", 1);
    uint32_t mhz = 0;
    DkBenchBesideFloor(
        state,
        [&] { benchmark::DoNotOptimize(dkSmlExDeviceGetClockInfo(Host().handle, DK_SML_EX_CLOCK_GRAPHICS, &mhz)); },
        [&] { floor->Read(); });
}
BENCHMARK(BM_ExDeviceGetClockInfo);

// One IP's clocks (the internal reading behind the per-IP clock answers).
void BM_IpClocksFreq(benchmark::State& state) {
    auto floor = PerDie("showclocks", 1);
    std::shared_ptr<dksml::IDkDevice> device = dksml::DkSystemManager::GetInstance().GetDeviceById(0);
    dksml::DkClock clock;
    uint32_t freqs[DK_SML_CLOCK_MAX_VALUES] = {};
    DkBenchBesideFloor(
        state,
        [&] {
            uint32_t count = DK_SML_CLOCK_MAX_VALUES;
            benchmark::DoNotOptimize(clock.GetIpClocksFreq(device.get(), DK_SML_CLOCK_IP_GPU, &count, freqs));
        },
        [&] { floor->Read(); });
}
BENCHMARK(BM_IpClocksFreq);

// Floor: one readlinkat of the bus link.
void BM_GetDeviceRealPath(benchmark::State& state) {
    DkFloorFiles root(Host().host.Root().string());
    const std::string link = "sys/bus/pci/devices/" + Host().bdf;
    char path[PATH_MAX];
    char target[PATH_MAX];
    DkBenchBesideFloor(
        state,
        [&] {
            uint32_t size = sizeof path;
            benchmark::DoNotOptimize(dkSmlGetDeviceRealPath(0, path, &size));
        },
        [&] { benchmark::DoNotOptimize(::readlinkat(root.Root(), link.c_str(), target, sizeof target)); });
}
BENCHMARK(BM_GetDeviceRealPath);

}  // namespace

BENCHMARK_MAIN();
