// Topology benchmarks. Queries are lookups in memory (goal: well under 1 us);
// building the tables reads two small files per GPU and must grow linearly
// with the GPU count and not at all with the number of other PCI functions.
//
//   BM_GetDeviceTopology     dkSmlGetDeviceTopology on a 64-GPU host
//   BM_GetCpuAffinity        dkSmlGetCpuAffinity, 4 words, same host
//   BM_BuildFloor/G/P        bare open/read/close of every GPU's "numa_node"
//                            and "local_cpulist" and its "showtopology"
//   BM_BuildTopology/G/P     CreateTopology from discovery's records
//   BM_Discovery/G/P         the whole discovery pass (dkSmlInitWithFlags(1))
//
// G = GPUs, P = other PCI functions. Compare BuildTopology with BuildFloor of
// the same arguments; compare rows of equal G and different P for growth.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "core/dk_system_manager.h"
#include "dksml.h"
#include "features/topology/dk_topology.h"
#include "vhost/dk_virtual_host.h"

namespace {

using namespace dksml;
using nlohmann::json;

std::string BusId(unsigned bus, unsigned device, unsigned function) {
    char text[32];
    std::snprintf(text, sizeof text, "0000:%02x:%02x.%x", bus, device, function);
    return text;
}

// Four GPUs per switch: the switch on bus 0x10 + 2 * group and its GPUs as
// devices 0-3 of the bus right after it, so every bridge's bus range holds
// only its own children.
constexpr unsigned c_gpusPerSwitch = 4;
unsigned SwitchBus(unsigned gpu) { return 0x10 + 2 * (gpu / c_gpusPerSwitch); }
std::string GpuBusId(unsigned gpu) { return BusId(SwitchBus(gpu) + 1, gpu % c_gpusPerSwitch, 0); }

// GPUs behind one switch per four, half of the switches on each NUMA node, interconnect
// links in pairs; other functions fill buses 0x80.. .
json MakeProfile(unsigned gpus, unsigned others) {
    json profile = {{"name", "bench"},
                    {"cpu_nodes", json::array({{{"node", 0}, {"cpus", "0-63"}}, {{"node", 1}, {"cpus", "64-127"}}})},
                    {"devices", json::array()},
                    {"links", json::array()}};
    for (unsigned i = 0; i < gpus; ++i) {
        const unsigned numa = i / c_gpusPerSwitch < gpus / c_gpusPerSwitch / 2 ? 0 : 1;
        profile["devices"].push_back({{"bus_id", GpuBusId(i)},
                                      {"model", "DKK6-A"},
                                      {"numa_node", numa},
                                      {"gpu_id", 1000 + i},
                                      {"topology", json::array({i % 8, numa})},
                                      {"bridges", json::array({BusId(numa == 0 ? 0x0 : 0x8, 1 + i / c_gpusPerSwitch, 0),
                                                               BusId(SwitchBus(i), 0, 0)})}});
        if (i % 2 == 1) {
            profile["links"].push_back({{"from", GpuBusId(i - 1)}, {"to", GpuBusId(i)}, {"type", 4}});
        }
    }
    for (unsigned i = 0; i < others; ++i) {
        profile["devices"].push_back({{"bus_id", BusId(0x80 + i / 256, (i / 8) % 32, i % 8)},
                                      {"function", "other"},
                                      {"vendor", "0x8086"},
                                      {"device_id", "0x1234"},
                                      {"class", "0x088000"},
                                      {"bridges", json::array()},
                                      {"numa_node", 0}});
    }
    return profile;
}

// One host per (G, P), kept for the whole run: writing it is not measured.
vhost::ScopedHost& HostFor(unsigned gpus, unsigned others) {
    static std::map<std::pair<unsigned, unsigned>, std::unique_ptr<vhost::ScopedHost>> hosts;
    auto& host = hosts[{gpus, others}];
    if (!host) host = std::make_unique<vhost::ScopedHost>(MakeProfile(gpus, others));
    return *host;
}

// ScopedHost points DK_SMI_FSROOT at the newest host; point it at this one.
void Activate(vhost::ScopedHost& host, benchmark::State& state) {
    setenv("DK_SMI_FSROOT", host.Root().c_str(), 1);
    if (dkSmlInitWithFlags(1) != DK_SML_SUCCESS) state.SkipWithError("discovery failed");
}

void BM_GetDeviceTopology(benchmark::State& state) {
    Activate(HostFor(64, 2000), state);
    DkSmlGpuTopologyLevel level;
    uint32_t a = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dkSmlGetDeviceTopology(a & 63, (a * 7) & 63, &level));
        ++a;
    }
}
BENCHMARK(BM_GetDeviceTopology);

void BM_GetCpuAffinity(benchmark::State& state) {
    Activate(HostFor(64, 2000), state);
    uint32_t mask[4];
    uint32_t a = 0;
    for (auto _ : state) benchmark::DoNotOptimize(dkSmlGetCpuAffinity(a++ & 63, 4, mask));
}
BENCHMARK(BM_GetCpuAffinity);

void ReadBare(const std::string& path) {
    char buffer[4096];
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
    close(fd);
}

void BM_BuildFloor(benchmark::State& state) {
    const unsigned gpus = static_cast<unsigned>(state.range(0));
    vhost::ScopedHost& host = HostFor(gpus, static_cast<unsigned>(state.range(1)));
    std::vector<std::string> files;
    for (unsigned i = 0; i < gpus; ++i) {
        const std::string dir = host.Path("/sys/bus/pci/devices/" + GpuBusId(i)).string();
        for (const char* name : {"/numa_node", "/local_cpulist", "/smi/showtopology"}) files.push_back(dir + name);
    }
    for (auto _ : state) {
        for (const std::string& file : files) ReadBare(file);
    }
}

void BM_BuildTopology(benchmark::State& state) {
    Activate(HostFor(static_cast<unsigned>(state.range(0)), static_cast<unsigned>(state.range(1))), state);
    DkSystemManager& manager = DkSystemManager::GetInstance();
    const DkTopologyInputs inputs{manager.GetGpuNodeMap(), manager.GetAvailableDeviceCount(), manager.GetNiNodeList(),
                                  manager.GetDeviceMap()};
    for (auto _ : state) benchmark::DoNotOptimize(CreateTopology(manager.GetSysUtils(), inputs));
}

void BM_Discovery(benchmark::State& state) {
    Activate(HostFor(static_cast<unsigned>(state.range(0)), static_cast<unsigned>(state.range(1))), state);
    for (auto _ : state) benchmark::DoNotOptimize(dkSmlInitWithFlags(1));
}

void GrowthArguments(benchmark::internal::Benchmark* bench) {
    for (int gpus : {8, 16, 32, 64}) bench->Args({gpus, 2000});
    for (int others : {0, 500, 1000}) bench->Args({64, others});
    bench->Unit(benchmark::kMicrosecond);
}
BENCHMARK(BM_BuildFloor)->Apply(GrowthArguments);
BENCHMARK(BM_BuildTopology)->Apply(GrowthArguments);
BENCHMARK(BM_Discovery)->Apply(GrowthArguments)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
