// One scrape of dksml-exporter (collection of every family and the text
// serialization, without the HTTP exchange) on a virtual host of 16 two-die
// GPUs, beside the floor of the attribute files the collection reads.
#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <filesystem>
#include <memory>
#include <string>

#include <prometheus/text_serializer.h>

#include "dk_bench_floor.h"
#include "scrape_collector.h"
#include "vhost/dk_virtual_host.h"

namespace {

using dksml::bench::DkBenchBesideFloor;
using dksml::bench::DkFloorFiles;

constexpr int c_gpuCount = 16;

std::string BusId(int gpu) {
    char text[16];
    std::snprintf(text, sizeof text, "0000:%02x:00.0", 0x10 + gpu * 8);
    return text;
}

nlohmann::json SixteenGpuProfile() {
    nlohmann::json devices = nlohmann::json::array();
    for (int gpu = 0; gpu < c_gpuCount; ++gpu)
        devices.push_back({{"bus_id", BusId(gpu)}, {"model", "DKK6-A"}, {"dies", 2}, {"numa_node", gpu / 8},
                           {"bridges", nlohmann::json::array()}, {"gpu_id", 48000 + gpu},
                           {"topology", {gpu, gpu / 8}}});
    return {{"name", "bench16"},
            {"description", "16 two-die GPUs"},
            {"operating_mode", 0},
            {"cpu_nodes", {{{"node", 0}, {"cpus", "0-31"}}, {{"node", 1}, {"cpus", "32-63"}}}},
            {"devices", devices}};
}

void BM_ExporterScrape16Gpus(benchmark::State& state) {
    dksml::vhost::ScopedHost host(SixteenGpuProfile());
    dkSmlInitWithFlags(1);
    // The attribute files one collection reads (strace of a scrape), each once
    // in every die directory that has it: the floor of a scrape.
    DkFloorFiles floor(host.Root().string());
    for (int gpu = 0; gpu < c_gpuCount; ++gpu)
        for (const char* die : {"smi", "smi1"}) {
            const std::string dir = "sys/bus/pci/devices/" + BusId(gpu) + "/" + die;
            for (const char* file :
                 {"showclocks", "pmdecsrc", "showtemp", "showtstemp", "showvmread", "fan_ctrl", "showperflevel",
                  "dpmcount", "showpmbusvol", "showpmbuscur", "showpmbuspower", "showfwinfo", "showuse",
                  "showxcuse", "showvbios", "showmemuse", "showmeminfo", "showdvlktbandwidth", "showdvlkstatus",
                  "showdvlkibandwidth", "showdriverversion", "dravlink_ctrl", "showvmtype",
                  "showupstreambandwidth", "showboardpowerinfo", "pcicurrentlinkwidth", "pcicurrentlinkspeed",
                  "config_tbp"})
                if (std::filesystem::exists(host.Path("/" + dir + "/" + file))) floor.Add(dir, file);
        }
    const dksml::exporter::ScrapeSettings settings;
    prometheus::TextSerializer serializer;
    size_t pageBytes = 0;
    // The two halves of a scrape, timed apart: reading the library into
    // records, and prometheus-cpp writing the page.
    uint64_t collectNs = 0, serializeNs = 0, scrapes = 0;
    DkBenchBesideFloor(
        state,
        [&] {
            const uint64_t t0 = dksml::bench::NowNs();
            dksml::exporter::CollectionResult result = dksml::exporter::CollectAll(settings);
            const uint64_t t1 = dksml::bench::NowNs();
            const std::string page = serializer.Serialize(result.families);
            collectNs += t1 - t0;
            serializeNs += dksml::bench::NowNs() - t1;
            ++scrapes;
            pageBytes = page.size();
            benchmark::DoNotOptimize(page.data());
        },
        [&] { floor.Read(); });
    if (scrapes > 0) {
        state.counters["collect_ns"] = static_cast<double>(collectNs) / static_cast<double>(scrapes);
        state.counters["serialize_ns"] = static_cast<double>(serializeNs) / static_cast<double>(scrapes);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["page_bytes"] = static_cast<double>(pageBytes);
    state.counters["max_rss_kib"] = static_cast<double>(usage.ru_maxrss);
}
BENCHMARK(BM_ExporterScrape16Gpus)->Unit(benchmark::kMillisecond);

}  // namespace
