// Helpers for benchmarks that compare a query with its floor: the same files
// opened relative to a directory descriptor opened once, read once and closed
// with bare system calls, measured in the same loop as the query so both meet
// the same cache and machine state. Each benchmark reports:
//   lib_ns    mean time of one library call
//   floor_ns  mean time of its floor
//   ratio     lib_ns / floor_ns
//   allocs    heap allocations per library call (after a warm-up call)
// Other query families add theirs with DkBenchBesideFloor and a DkFloorFiles.
#pragma once

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace dksml::bench {

// Heap allocations made so far by this thread (counting operator new in
// dk_bench_alloc.cpp).
uint64_t AllocationCount();

// open, one read, close of each (directory descriptor, file name).
inline void ReadEachOnce(const std::vector<std::pair<int, std::string>>& files) {
    char buf[8192];
    for (const auto& [dir, name] : files) {
        const int fd = ::openat(dir, name.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) continue;
        benchmark::DoNotOptimize(::read(fd, buf, sizeof buf));
        ::close(fd);
    }
}

// The files of one floor: each opened relative to a directory descriptor.
class DkFloorFiles {
public:
    // `root` is the host's root directory (a virtual host's or "/").
    explicit DkFloorFiles(const std::string& root) : m_root(::open(root.c_str(), O_PATH | O_DIRECTORY)) {}
    ~DkFloorFiles() {
        for (auto& [dir, name] : m_files) ::close(dir);
        if (m_root >= 0) ::close(m_root);
    }
    DkFloorFiles(const DkFloorFiles&) = delete;
    DkFloorFiles& operator=(const DkFloorFiles&) = delete;

    // A file `name` inside the host directory `dir` (relative to the root, no leading '/').
    DkFloorFiles& Add(const std::string& dir, std::string name) {
        m_files.emplace_back(::openat(m_root, dir.c_str(), O_PATH | O_DIRECTORY), std::move(name));
        return *this;
    }

    // open, one read, close of every file.
    void Read() const { ReadEachOnce(m_files); }

    int Root() const { return m_root; }

private:
    int m_root;
    std::vector<std::pair<int, std::string>> m_files;
};

inline uint64_t NowNs() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<uint64_t>(ts.tv_sec) * 1000000000ull + static_cast<uint64_t>(ts.tv_nsec);
}

// Runs `query` and `floor` alternately; the first call of each is a warm-up
// (thread-local buffers grow there) and is not counted.
template <typename Query, typename Floor>
void DkBenchBesideFloor(benchmark::State& state, Query&& query, Floor&& floor) {
    query();
    floor();
    uint64_t libNs = 0, floorNs = 0, allocs = 0, calls = 0;
    for (auto _ : state) {
        const uint64_t a0 = AllocationCount();
        const uint64_t t0 = NowNs();
        query();
        const uint64_t t1 = NowNs();
        allocs += AllocationCount() - a0;
        floor();
        const uint64_t t2 = NowNs();
        libNs += t1 - t0;
        floorNs += t2 - t1;
        ++calls;
    }
    if (calls == 0) return;
    state.counters["lib_ns"] = static_cast<double>(libNs) / static_cast<double>(calls);
    state.counters["floor_ns"] = static_cast<double>(floorNs) / static_cast<double>(calls);
    state.counters["ratio"] = floorNs == 0 ? 0.0 : static_cast<double>(libNs) / static_cast<double>(floorNs);
    state.counters["allocs"] = static_cast<double>(allocs) / static_cast<double>(calls);
}

}  // namespace dksml::bench
