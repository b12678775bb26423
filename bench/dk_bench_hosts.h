// Generated hosts shared by the benchmarks of whole runs (dksmi, an exporter
// scrape): N two-die GPUs on two NUMA nodes, without bridges.
#pragma once

#include <cstdio>
#include <string>

#include <nlohmann/json.hpp>

namespace dksml::bench {

// Bus id of generated GPU `gpu`: one bus per GPU, eight apart.
inline std::string TwoDieGpuBusId(int gpu) {
    char text[32];
    std::snprintf(text, sizeof text, "0000:%02x:00.0", (0x10 + gpu * 8) & 0xff);
    return text;
}

// A profile of `gpus` two-die GPUs, the first half on NUMA node 0, the rest on node 1.
inline nlohmann::json TwoDieGpuProfile(int gpus) {
    const int perNode = gpus / 2 > 0 ? gpus / 2 : 1;
    nlohmann::json devices = nlohmann::json::array();
    for (int gpu = 0; gpu < gpus; ++gpu)
        devices.push_back({{"bus_id", TwoDieGpuBusId(gpu)}, {"model", "DKK6-A"}, {"dies", 2},
                           {"numa_node", gpu / perNode}, {"bridges", nlohmann::json::array()},
                           {"gpu_id", 48000 + gpu}, {"topology", {gpu, gpu / perNode}}});
    return {{"name", "bench" + std::to_string(gpus)},
            {"description", std::to_string(gpus) + " two-die GPUs"},
            {"operating_mode", 0},
            {"cpu_nodes", {{{"node", 0}, {"cpus", "0-31"}}, {{"node", 1}, {"cpus", "32-63"}}}},
            {"devices", devices}};
}

}  // namespace dksml::bench
