// Discovery (dkSmlInitWithFlags) on generated hosts: 1, 8, 64 and 256 GPUs,
// and 8 GPUs beside 1,000 and 4,000 other PCI functions. Reported per run
// and per GPU / per other function, so growth beyond linear shows at once.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

#include "dk_bench_floor.h"
#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace {

std::string BusId(unsigned int bus, unsigned int device) {
    char text[16];
    std::snprintf(text, sizeof text, "0000:%02x:%02x.0", bus & 0xffu, device & 0x1fu);
    return text;
}

nlohmann::json GeneratedHost(unsigned int gpus, unsigned int others) {
    nlohmann::json devices = nlohmann::json::array();
    for (unsigned int i = 0; i < gpus; ++i) {
        devices.push_back({{"bus_id", BusId(0x10 + i / 32, i % 32)}, {"model", "DKK2"}, {"numa_node", 0},
                           {"bridges", nlohmann::json::array()}, {"gpu_id", 40000 + i}, {"topology", {i, 0}}});
    }
    for (unsigned int i = 0; i < others; ++i) {
        devices.push_back({{"bus_id", BusId(0x80 + i / 32, i % 32)}, {"function", "other"}, {"vendor", "0x8086"},
                           {"device_id", "0x1234"}, {"class", "0x020000"}, {"driver", "e1000e"},
                           {"bridges", nlohmann::json::array()}, {"numa_node", 0}});
    }
    return {{"name", "generated"},
            {"description", "benchmark host"},
            {"operating_mode", 0},
            {"cpu_nodes", {{{"node", 0}, {"cpus", "0-7"}}}},
            {"devices", devices}};
}

void BM_Discovery(benchmark::State& state) {
    const auto gpus = static_cast<unsigned int>(state.range(0));
    const auto others = static_cast<unsigned int>(state.range(1));
    dksml::vhost::ScopedHost host(GeneratedHost(gpus, others));
    uint64_t allocs = 0, runs = 0;
    for (auto _ : state) {
        const uint64_t a0 = dksml::bench::AllocationCount();
        benchmark::DoNotOptimize(dkSmlInitWithFlags(1));
        allocs += dksml::bench::AllocationCount() - a0;
        ++runs;
    }
    if (dkSmlGetDeviceCount() != gpus) state.SkipWithError("not every generated GPU was discovered");
    state.counters["gpus"] = gpus;
    state.counters["others"] = others;
    state.counters["allocs"] = runs == 0 ? 0.0 : static_cast<double>(allocs) / static_cast<double>(runs);
}
BENCHMARK(BM_Discovery)
    ->Args({1, 0})
    ->Args({8, 0})
    ->Args({64, 0})
    ->Args({256, 0})
    ->Args({8, 1000})
    ->Args({8, 4000})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
