// Scalar power, usage and memory reads through the C API on the "server"
// virtual host, each beside its floor: the same attribute files opened, read
// to the end and closed with bare system calls in the same run. Report each
// read as a ratio to its floor.
//
//   BM_Floor/pmbus      showpmbusvol, showpmbuscur, showpmbuspower of die 0
//   BM_DiePmbus         dkSmlGetDiePmbusInfo(core)
//   BM_Floor/board      showboardpowerinfo
//   BM_BoardPower       dkSmlGetBoardPowerInfo
//   BM_Floor/usage      showuse
//   BM_DieUsage         dkSmlGetDieIpUsage(vpud)
//   BM_Floor/memory     showmeminfo, showmemuse
//   BM_DieMemory        dkSmlGetDieMemoryInfo
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace {

constexpr const char* c_bus = "0000:b0:00.0";  // DKK6U, one die
constexpr uint32_t c_index = 4;

struct Host {
    Host() : host("server") {
        if (dkSmlInitWithFlags(1) != DK_SML_SUCCESS) std::abort();
        DkSmlDeviceInfo info{};
        if (dkSmlGetDeviceInfo(c_index, &info) != DK_SML_SUCCESS || std::string(info.bdfId) != c_bus) std::abort();
    }
    std::string Path(const char* file) const {
        return host.Path(std::string("/sys/bus/pci/devices/") + c_bus + "/smi/" + file).string();
    }
    dksml::vhost::ScopedHost host;
};

Host& TheHost() {
    static Host host;
    return host;
}

void ReadToEnd(const std::string& path) {
    char buffer[4096];
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) std::abort();
    while (::read(fd, buffer, sizeof buffer) > 0) benchmark::DoNotOptimize(buffer);
    ::close(fd);
}

void Floor(benchmark::State& state, std::vector<const char*> files) {
    std::vector<std::string> paths;
    for (const char* file : files) paths.push_back(TheHost().Path(file));
    for (auto _ : state)
        for (const std::string& path : paths) ReadToEnd(path);
}
BENCHMARK_CAPTURE(Floor, pmbus, {"showpmbusvol", "showpmbuscur", "showpmbuspower"});
BENCHMARK_CAPTURE(Floor, board, {"showboardpowerinfo"});
BENCHMARK_CAPTURE(Floor, usage, {"showuse"});
BENCHMARK_CAPTURE(Floor, memory, {"showmeminfo", "showmemuse"});

void BM_DiePmbus(benchmark::State& state) {
    TheHost();
    DkSmlPmbusInfo info{};
    for (auto _ : state) {
        if (dkSmlGetDiePmbusInfo(c_index, 0, DK_SML_PMBUS_UNIT_CORE, &info) != DK_SML_SUCCESS) std::abort();
        benchmark::DoNotOptimize(info);
    }
}
BENCHMARK(BM_DiePmbus);

void BM_BoardPower(benchmark::State& state) {
    TheHost();
    DkSmlBoardWayElectricInfo ways[4]{};
    for (auto _ : state) {
        uint32_t count = 4;
        if (dkSmlGetBoardPowerInfo(c_index, &count, ways) != DK_SML_SUCCESS) std::abort();
        benchmark::DoNotOptimize(ways);
    }
}
BENCHMARK(BM_BoardPower);

void BM_DieUsage(benchmark::State& state) {
    TheHost();
    int32_t usage = 0;
    for (auto _ : state) {
        if (dkSmlGetDieIpUsage(c_index, 0, DK_SML_USAGE_IP_VPUD, &usage) != DK_SML_SUCCESS) std::abort();
        benchmark::DoNotOptimize(usage);
    }
}
BENCHMARK(BM_DieUsage);

void BM_DieMemory(benchmark::State& state) {
    TheHost();
    DkSmlMemoryInfo info{};
    for (auto _ : state) {
        if (dkSmlGetDieMemoryInfo(c_index, 0, &info) != DK_SML_SUCCESS) std::abort();
        benchmark::DoNotOptimize(info);
    }
}
BENCHMARK(BM_DieMemory);

}  // namespace

BENCHMARK_MAIN();
