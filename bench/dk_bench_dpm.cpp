// Performance-level and version queries through the exports on the "server"
// virtual host, each next to its floor: the same attribute file opened, read
// once and closed with bare system calls.
//
//   BM_FloorDpmCount / BM_MaxPerfLevel       "dpmcount" of device 0, die 0
//   BM_FloorShowPerfLevel / BM_CurrentLevel  "showperflevel"
//   BM_FloorDriverVersion / BM_DriverVersion "showdriverversion"
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace {

struct Host {
    Host() : host("server") {
        (void)dkSmlInitWithFlags(1);
        DkSmlDeviceInfo info{};
        (void)dkSmlGetDeviceInfo(0, &info);
        smi = host.Path(std::string("/sys/bus/pci/devices/") + info.bdfId + "/smi/").string();
    }
    dksml::vhost::ScopedHost host;
    std::string smi;
};

Host& H() {
    static Host host;
    return host;
}

void Floor(benchmark::State& state, const char* name) {
    const std::string path = H().smi + name;
    char buffer[4096];
    for (auto _ : state) {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        benchmark::DoNotOptimize(::read(fd, buffer, sizeof buffer));
        ::close(fd);
    }
}

void BM_FloorDpmCount(benchmark::State& state) { Floor(state, "dpmcount"); }
void BM_FloorShowPerfLevel(benchmark::State& state) { Floor(state, "showperflevel"); }
void BM_FloorDriverVersion(benchmark::State& state) { Floor(state, "showdriverversion"); }

void BM_MaxPerfLevel(benchmark::State& state) {
    (void)H();
    uint32_t level = 0;
    for (auto _ : state) benchmark::DoNotOptimize(dkSmlGetDpmIpMaxPerfLevel(0, DK_SML_DPM_IP_CCX, &level));
}

void BM_CurrentLevel(benchmark::State& state) {
    (void)H();
    uint32_t level = 0;
    for (auto _ : state) benchmark::DoNotOptimize(dkSmlGetCurrentDpmIpPerfLevel(0, DK_SML_DPM_IP_CCX, &level));
}

void BM_DriverVersion(benchmark::State& state) {
    (void)H();
    char text[64];
    for (auto _ : state) {
        uint32_t size = sizeof text;
        benchmark::DoNotOptimize(dkSmlGetDeviceVersion(0, DK_SML_VERSION_DRIVER, text, &size));
    }
}

BENCHMARK(BM_FloorDpmCount);
BENCHMARK(BM_MaxPerfLevel);
BENCHMARK(BM_FloorShowPerfLevel);
BENCHMARK(BM_CurrentLevel);
BENCHMARK(BM_FloorDriverVersion);
BENCHMARK(BM_DriverVersion);

}  // namespace

BENCHMARK_MAIN();
