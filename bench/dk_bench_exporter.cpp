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
#include "dk_bench_hosts.h"
#include "scrape_collector.h"
#include "vhost/dk_virtual_host.h"

namespace {

using dksml::bench::DkBenchBesideFloor;
using dksml::bench::DkFloorFiles;

constexpr int c_gpuCount = 16;

void BM_ExporterScrape16Gpus(benchmark::State& state) {
    dksml::vhost::ScopedHost host(dksml::bench::TwoDieGpuProfile(c_gpuCount));
    dkSmlInitWithFlags(1);
    // The attribute files one collection reads (strace of a scrape), each once
    // in every die directory that has it: the floor of a scrape.
    DkFloorFiles floor(host.Root().string());
    for (int gpu = 0; gpu < c_gpuCount; ++gpu)
        for (const char* die : {"smi", "smi1"}) {
            const std::string dir = "sys/bus/pci/devices/" + dksml::bench::TwoDieGpuBusId(gpu) + "/" + die;
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
