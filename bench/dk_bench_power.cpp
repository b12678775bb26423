// Scalar power, usage and memory reads through the C API on the "server"
// virtual host, each beside its floor (dk_bench_floor.h): the same attribute
// files opened, read once and closed with bare system calls in the same loop.
//
//   BM_DiePmbus             dkSmlGetDiePmbusInfo(core)   showpmbusvol, showpmbuscur, showpmbuspower
//   BM_BoardPower           dkSmlGetBoardPowerInfo       showboardpowerinfo
//   BM_BoardPowerByQuantity the same, inference line     showboardpowerinfo
//   BM_BoardPowerViaMaster  the same, second device of a two-device board:
//                           its own showboardpowerinfo, then the first device's
//   BM_DieUsage             dkSmlGetDieIpUsage(vpud)     showuse
//   BM_DieMemory            dkSmlGetDieMemoryInfo        showmeminfo, showmemuse
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <initializer_list>
#include <string>

#include "dk_bench_floor.h"
#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace {

using dksml::bench::DkBenchBesideFloor;
using dksml::bench::DkFloorFiles;

constexpr const char* c_single = "0000:b0:00.0";       // DKK6U, one die
constexpr const char* c_quantities = "0000:e1:00.0";   // DKQ9-A, readings by quantity
constexpr const char* c_boardMaster = "0000:1b:00.0";  // reports the two-device board
constexpr const char* c_boardSecond = "0000:1c:00.0";  // reports through the master

struct ServerHost {
    ServerHost() : host("server") {
        if (dkSmlInitWithFlags(1) != DK_SML_SUCCESS) std::abort();
    }
    // Device index of a bus id; aborts when the host lacks it.
    static uint32_t Index(const char* bdf) {
        for (uint32_t index = 0; index < 100; ++index) {
            DkSmlDeviceInfo info{};
            if (dkSmlGetDeviceInfo(index, &info) == DK_SML_SUCCESS && std::string(info.bdfId) == bdf) return index;
        }
        std::abort();
    }
    DkFloorFiles& Floor(DkFloorFiles& floor, const char* bdf, std::initializer_list<const char*> files) const {
        for (const char* file : files) floor.Add(std::string("sys/bus/pci/devices/") + bdf + "/smi", file);
        return floor;
    }
    dksml::vhost::ScopedHost host;
};

ServerHost& Host() {
    static ServerHost host;
    return host;
}

void BM_DiePmbus(benchmark::State& state) {
    const uint32_t index = Host().Index(c_single);
    DkFloorFiles floor(Host().host.Root().string());
    Host().Floor(floor, c_single, {"showpmbusvol", "showpmbuscur", "showpmbuspower"});
    DkSmlPmbusInfo info{};
    DkBenchBesideFloor(
        state, [&] { benchmark::DoNotOptimize(dkSmlGetDiePmbusInfo(index, 0, DK_SML_PMBUS_UNIT_CORE, &info)); },
        [&] { floor.Read(); });
}
BENCHMARK(BM_DiePmbus);

void BoardPower(benchmark::State& state, const char* bdf, std::initializer_list<const char*> floorDevices) {
    const uint32_t index = Host().Index(bdf);
    DkFloorFiles floor(Host().host.Root().string());
    for (const char* device : floorDevices) Host().Floor(floor, device, {"showboardpowerinfo"});
    DkSmlBoardWayElectricInfo ways[4]{};
    uint32_t count = 4;
    if (dkSmlGetBoardPowerInfo(index, &count, ways) != DK_SML_SUCCESS) std::abort();
    DkBenchBesideFloor(
        state,
        [&] {
            count = 4;
            benchmark::DoNotOptimize(dkSmlGetBoardPowerInfo(index, &count, ways));
        },
        [&] { floor.Read(); });
}
BENCHMARK_CAPTURE(BoardPower, ByWay, c_single, {c_single})->Name("BM_BoardPower");
BENCHMARK_CAPTURE(BoardPower, ByQuantity, c_quantities, {c_quantities})->Name("BM_BoardPowerByQuantity");
BENCHMARK_CAPTURE(BoardPower, ViaMaster, c_boardSecond, {c_boardSecond, c_boardMaster})
    ->Name("BM_BoardPowerViaMaster");

void BM_DieUsage(benchmark::State& state) {
    const uint32_t index = Host().Index(c_single);
    DkFloorFiles floor(Host().host.Root().string());
    Host().Floor(floor, c_single, {"showuse"});
    int32_t usage = 0;
    DkBenchBesideFloor(
        state, [&] { benchmark::DoNotOptimize(dkSmlGetDieIpUsage(index, 0, DK_SML_USAGE_IP_VPUD, &usage)); },
        [&] { floor.Read(); });
}
BENCHMARK(BM_DieUsage);

void BM_DieMemory(benchmark::State& state) {
    const uint32_t index = Host().Index(c_single);
    DkFloorFiles floor(Host().host.Root().string());
    Host().Floor(floor, c_single, {"showmeminfo", "showmemuse"});
    DkSmlMemoryInfo info{};
    DkBenchBesideFloor(state, [&] { benchmark::DoNotOptimize(dkSmlGetDieMemoryInfo(index, 0, &info)); },
                       [&] { floor.Read(); });
}
BENCHMARK(BM_DieMemory);

}  // namespace

BENCHMARK_MAIN();
