// Discovery (dkSmlInitWithFlags) on generated hosts: 1, 8, 64 and 256 GPUs,
// and 8 GPUs beside 1,000 and 4,000 other PCI functions. Reported per run
// and per GPU / per other function, so growth beyond linear shows at once.
//
// Each run is followed by its floor in the same loop: the listings and files
// a discovery must read (every function's "vendor"; a GPU's id files, driver
// link, access probes and the four identity files of its "smi/"; every layout
// node's six files; the DRM by-path links), each opened relative to a
// directory descriptor, read once and closed.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <functional>
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

constexpr const char* kGpuVendor = "0x1e27";
constexpr const char* kGpuFiles[] = {"device",           "subsystem_vendor",  "subsystem_device",  "smi/pcipowerstate",
                                     "smi/showvendorid", "smi/showtopology", "smi/showisaversion", "smi/showboardtype",
                                     "smi/showcardname", "smi/showe2prominfo"};
constexpr const char* kNodeFiles[] = {"gpu_id", "type", "properties", "location", "active", "unique_id"};

// open, one read, close; the bytes read (0 when it does not open).
ssize_t ReadAt(int dir, const char* name, char* buf, std::size_t size) {
    const int fd = ::openat(dir, name, O_RDONLY | O_CLOEXEC);
    if (fd < 0) return 0;
    const ssize_t n = ::read(fd, buf, size);
    ::close(fd);
    return n;
}

// Every entry of a directory (relative to `root`) but "." and "..".
void ForEachEntry(int root, const char* dir, const std::function<void(int, const char*)>& visit) {
    const int fd = ::openat(root, dir, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    DIR* listing = ::fdopendir(fd);
    if (listing == nullptr) {
        ::close(fd);
        return;
    }
    while (const dirent* entry = ::readdir(listing)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            visit(::dirfd(listing), entry->d_name);
    }
    ::closedir(listing);
}

void DiscoveryFloor(int root) {
    char buf[4096];
    char name[512];
    ForEachEntry(root, "sys/class/dravik/dkcd/layout/nodes", [&](int dir, const char* node) {
        for (const char* file : kNodeFiles) {
            std::snprintf(name, sizeof name, "%s/%s", node, file);
            benchmark::DoNotOptimize(ReadAt(dir, name, buf, sizeof buf));
        }
    });
    ForEachEntry(root, "sys/bus/pci/devices", [&](int dir, const char* function) {
        std::snprintf(name, sizeof name, "%s/vendor", function);
        const ssize_t n = ReadAt(dir, name, buf, sizeof buf);
        if (n <= 0 || std::strncmp(buf, kGpuVendor, std::strlen(kGpuVendor)) != 0) return;
        for (const char* file : kGpuFiles) {
            std::snprintf(name, sizeof name, "%s/%s", function, file);
            benchmark::DoNotOptimize(ReadAt(dir, name, buf, sizeof buf));
        }
        std::snprintf(name, sizeof name, "%s/driver", function);
        benchmark::DoNotOptimize(::readlinkat(dir, name, buf, sizeof buf));
    });
    ForEachEntry(root, "dev/dri/by-path",
                 [&](int dir, const char* link) { benchmark::DoNotOptimize(::readlinkat(dir, link, buf, sizeof buf)); });
}

void BM_Discovery(benchmark::State& state) {
    const auto gpus = static_cast<unsigned int>(state.range(0));
    const auto others = static_cast<unsigned int>(state.range(1));
    dksml::vhost::ScopedHost host(GeneratedHost(gpus, others));
    const int root = ::open(host.Root().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    uint64_t allocs = 0, runs = 0, libNs = 0, floorNs = 0;
    for (auto _ : state) {
        const uint64_t a0 = dksml::bench::AllocationCount();
        const uint64_t t0 = dksml::bench::NowNs();
        benchmark::DoNotOptimize(dkSmlInitWithFlags(1));
        const uint64_t t1 = dksml::bench::NowNs();
        allocs += dksml::bench::AllocationCount() - a0;
        DiscoveryFloor(root);
        floorNs += dksml::bench::NowNs() - t1;
        libNs += t1 - t0;
        ++runs;
    }
    ::close(root);
    if (dkSmlGetDeviceCount() != gpus) state.SkipWithError("not every generated GPU was discovered");
    if (runs == 0) return;
    const double lib = static_cast<double>(libNs) / static_cast<double>(runs);
    const double floor = static_cast<double>(floorNs) / static_cast<double>(runs);
    state.counters["gpus"] = gpus;
    state.counters["others"] = others;
    state.counters["lib_us"] = lib / 1e3;
    state.counters["floor_us"] = floor / 1e3;
    state.counters["ratio"] = floor == 0 ? 0.0 : lib / floor;
    state.counters["lib_us_per_gpu"] = lib / 1e3 / gpus;
    state.counters["allocs"] = static_cast<double>(allocs) / static_cast<double>(runs);
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
