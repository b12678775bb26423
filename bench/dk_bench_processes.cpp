// Process scan benchmarks on a virtual host with N client processes (each in
// the driver's debug directory and in /proc, two GPUs, one ring buffer).
//
//   BM_Floor/N          the same directories listed and the same files opened,
//                       read and closed with bare system calls (the floor)
//   BM_CountingScan/N   dkSmlGetNumberOfProcess (no records)
//   BM_RecordScan/N     dkSmlGetProcessInfo_v3 into N records
//
// "us_per_process" is the time of one scan divided by N; compare each scan
// with BM_Floor of the same N for the ratio, and across N for linear growth.
#include <benchmark/benchmark.h>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace {

using nlohmann::json;

constexpr uint32_t c_firstPid = 10000;

// One host per process count, kept for the whole run.
struct Host {
    explicit Host(int processes) {
        json profile = dksml::vhost::LoadProfile("slices");
        json list = json::array();
        for (int i = 0; i < processes; ++i) {
            const uint32_t pid = c_firstPid + static_cast<uint32_t>(i);
            list.push_back(json{{"pid", pid},
                                {"nspid", pid},
                                {"name", "worker_" + std::to_string(i)},
                                {"vram", json{{"48651", 1u << 30}, {"61000", 1u << 28}}},
                                {"ringbuf", json::array({48651})}});
        }
        profile["processes"] = list;
        host = std::make_unique<dksml::vhost::ScopedHost>(profile);
        dkSmlInitWithFlags(1);
        clients = host->Path("/sys/kernel/debug/dkcd/proc").string();
    }
    std::unique_ptr<dksml::vhost::ScopedHost> host;
    std::string clients;
};

Host& HostFor(int processes) {
    static std::map<int, std::unique_ptr<Host>> hosts;
    auto& entry = hosts[processes];
    if (!entry) {
        hosts.clear();  // one tree at a time: DK_SMI_FSROOT names one root
        hosts[processes] = std::make_unique<Host>(processes);
        return *hosts[processes];
    }
    return *entry;
}

void ReadBare(const std::string& path) {
    char buffer[256];
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
    close(fd);
}

template <typename Fn>
void ForEntries(const std::string& dir, Fn&& fn) {
    DIR* d = opendir(dir.c_str());
    if (d == nullptr) return;
    while (dirent* e = readdir(d)) {
        if (e->d_name[0] != '.') fn(e->d_name);
    }
    closedir(d);
}

void SetCounters(benchmark::State& state, int processes) {
    state.counters["us_per_process"] = benchmark::Counter(
        static_cast<double>(processes) / 1e6, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_Floor(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Host& host = HostFor(n);
    for (auto _ : state) {
        ForEntries(host.clients, [&](const char* pid) {
            const std::string dir = host.clients + "/" + pid;
            ReadBare(dir + "/nspid");
            ForEntries(dir + "/ringbuf", [&](const char* ring) {
                ReadBare(dir + "/ringbuf/" + ring + "/type");
                ReadBare(dir + "/ringbuf/" + ring + "/gpuid");
            });
            ForEntries(dir, [&](const char* name) {
                if (std::strncmp(name, "vram_", 5) == 0) ReadBare(dir + "/" + name);
            });
        });
    }
    SetCounters(state, n);
}

void BM_CountingScan(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    HostFor(n);
    uint32_t count = 0;
    for (auto _ : state) {
        if (dkSmlGetNumberOfProcess(&count) != DK_SML_SUCCESS || count != static_cast<uint32_t>(n))
            state.SkipWithError("scan failed");
    }
    SetCounters(state, n);
}

void BM_RecordScan(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    HostFor(n);
    std::vector<DkSmlProcessInfo_v3> records(static_cast<size_t>(n));
    for (auto _ : state) {
        if (dkSmlGetProcessInfo_v3(static_cast<uint32_t>(n), records.data()) != DK_SML_SUCCESS)
            state.SkipWithError("scan failed");
    }
    SetCounters(state, n);
}

// Grouped by N so that each host is written once.
#define DK_PROCESS_BENCH(n)                                              \
    BENCHMARK(BM_Floor)->Arg(n)->Unit(benchmark::kMillisecond);          \
    BENCHMARK(BM_CountingScan)->Arg(n)->Unit(benchmark::kMillisecond);   \
    BENCHMARK(BM_RecordScan)->Arg(n)->Unit(benchmark::kMillisecond);

DK_PROCESS_BENCH(500)
DK_PROCESS_BENCH(1000)
DK_PROCESS_BENCH(2000)
DK_PROCESS_BENCH(4000)

}  // namespace

BENCHMARK_MAIN();
