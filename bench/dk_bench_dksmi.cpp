// One dksmi run in process (a fresh discovery, the collection of every device
// and the summary table) on a generated host of 8 two-die GPUs, beside the
// floor of exactly what that run reads.
//
// The floor is recorded, not written down: the setup runs this binary once
// more under strace ("--dksmi-once": one discovery, collection and rendering,
// the same code as the loop) and keeps every file under the host root that
// was read, every directory that was listed and every link that was resolved
// there, each once. In the loop each file is opened relative to its directory
// (opened once beforehand), read once and closed; each listing is opened,
// read to its end and closed; each link is read with one readlinkat.
// Counters beyond those of dk_bench_floor.h: files, listings, links (the
// floor's size), failed_calls (opens and link reads under the root that
// failed in the recorded run) and the split of lib_ns into discovery_ns,
// collect_ns and table_ns, and of floor_ns into discovery_floor_ns (what a
// discovery alone reads, recorded the same way with "--discovery-once") and
// rest_floor_ns (what the run reads beyond it).
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "collect.h"
#include "dk_bench_floor.h"
#include "dk_bench_hosts.h"
#include "dksml.h"
#include "text_render.h"
#include "vhost/dk_virtual_host.h"

namespace {

constexpr int c_gpuCount = 8;
constexpr const char* c_onceFlag = "--dksmi-once";
constexpr const char* c_discoveryOnceFlag = "--discovery-once";

// Time spent in each step of the runs so far, to split lib_ns.
struct StepTimes {
    uint64_t discovery = 0;
    uint64_t collection = 0;
    uint64_t table = 0;
};
StepTimes g_steps;

// What `dksmi` without options does once its process is up.
std::size_t RunDksmiOnce() {
    const uint64_t t0 = dksml::bench::NowNs();
    const DkSmlReturn status = dkSmlInitWithFlags(1);
    const uint64_t t1 = dksml::bench::NowNs();
    const dksmi::Snapshot snapshot = dksmi::Collect(status, dksmi::CollectScope::SummaryTable);
    const uint64_t t2 = dksml::bench::NowNs();
    const std::string table = dksmi::RenderSummary(snapshot);
    const uint64_t t3 = dksml::bench::NowNs();
    g_steps.discovery += t1 - t0;
    g_steps.collection += t2 - t1;
    g_steps.table += t3 - t2;
    return table.size();
}

// The path in "<...>" after position `from` (strace -y decorates descriptors).
std::string_view DecoratedPath(std::string_view line, std::size_t from) {
    const std::size_t open = line.find('<', from);
    if (open == std::string_view::npos) return {};
    const std::size_t close = line.find('>', open);
    if (close == std::string_view::npos) return {};
    return line.substr(open + 1, close - open - 1);
}

// The first quoted argument of a call.
std::string_view QuotedArgument(std::string_view line) {
    const std::size_t open = line.find('"');
    if (open == std::string_view::npos) return {};
    const std::size_t close = line.find('"', open + 1);
    if (close == std::string_view::npos) return {};
    return line.substr(open + 1, close - open - 1);
}

struct RecordedRun {
    std::set<std::string> files;     // read, relative to the root
    std::set<std::string> listings;  // listed
    std::set<std::string> links;     // resolved
    int failedCalls = 0;
    bool ok = false;
};

// Keeps `path` relative to `root` when it lies under it.
bool UnderRoot(std::string_view path, const std::string& root, std::string& relative) {
    if (path.size() <= root.size() + 1 || path.substr(0, root.size()) != root || path[root.size()] != '/') return false;
    relative = std::string(path.substr(root.size() + 1));
    return true;
}

// `flag` chooses what the recorded process runs: the whole run or its discovery.
RecordedRun Record(const std::string& root, const std::string& log, const char* flag) {
    RecordedRun run;
    const std::string command = "strace -f -y -qq -e trace=openat,read,getdents64,readlinkat -o '" + log +
                                "' /proc/" + std::to_string(::getpid()) + "/exe " + flag + " >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) return run;
    std::ifstream in(log);
    std::string line;
    std::string relative;
    while (std::getline(in, line)) {
        const std::string_view text = line;
        const std::size_t result = text.rfind(") = ");
        if (result == std::string_view::npos) continue;
        const bool failed = text.compare(result + 4, 2, "-1") == 0;
        if (text.find("openat(") != std::string_view::npos || text.find("readlinkat(") != std::string_view::npos) {
            const bool underRoot = UnderRoot(DecoratedPath(text, text.find('(')), root, relative) ||
                                   DecoratedPath(text, text.find('(')) == root;
            if (failed && underRoot) ++run.failedCalls;
            if (failed || text.find("readlinkat(") == std::string_view::npos) continue;
            const std::string dir(DecoratedPath(text, text.find('(')));
            if (UnderRoot(dir + "/" + std::string(QuotedArgument(text)), root, relative)) run.links.insert(relative);
            else if (dir == root) run.links.insert(std::string(QuotedArgument(text)));
        } else if (!failed && text.find("getdents64(") != std::string_view::npos) {
            if (UnderRoot(DecoratedPath(text, text.find('(')), root, relative)) run.listings.insert(relative);
        } else if (!failed && text.find("read(") != std::string_view::npos) {
            if (UnderRoot(DecoratedPath(text, text.find('(')), root, relative)) run.files.insert(relative);
        }
    }
    run.ok = !run.files.empty();
    return run;
}

// What `whole` read beyond `part`.
RecordedRun Beyond(const RecordedRun& whole, const RecordedRun& part) {
    RecordedRun rest;
    auto minus = [](const std::set<std::string>& a, const std::set<std::string>& b, std::set<std::string>& out) {
        std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::inserter(out, out.end()));
    };
    minus(whole.files, part.files, rest.files);
    minus(whole.listings, part.listings, rest.listings);
    minus(whole.links, part.links, rest.links);
    rest.ok = whole.ok && part.ok;
    return rest;
}

// The recorded files, listings and links with their directories opened once.
class RecordedFloor {
public:
    RecordedFloor(const std::string& root, const RecordedRun& run) : m_root(::open(root.c_str(), O_PATH | O_DIRECTORY)) {
        for (const std::string& file : run.files) m_files.push_back(Split(file));
        for (const std::string& link : run.links) m_links.push_back(Split(link));
        for (const std::string& listing : run.listings) m_listings.push_back(listing);
    }
    ~RecordedFloor() {
        for (const auto& [dir, fd] : m_dirs) ::close(fd);
        ::close(m_root);
    }
    RecordedFloor(const RecordedFloor&) = delete;
    RecordedFloor& operator=(const RecordedFloor&) = delete;

    // The directories the files and links are opened relative to.
    void AddDirectories(std::set<std::string>& out) const {
        for (const auto& entry : m_dirs) out.insert(entry.first);
    }

    void Read() const {
        dksml::bench::ReadEachOnce(m_files);
        char buf[8192];
        for (const std::string& listing : m_listings) {
            const int fd = ::openat(m_root, listing.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            if (fd < 0) continue;
            while (::syscall(SYS_getdents64, fd, buf, sizeof buf) > 0) {
            }
            ::close(fd);
        }
        for (const auto& [dir, name] : m_links) benchmark::DoNotOptimize(::readlinkat(dir, name.c_str(), buf, sizeof buf));
    }

private:
    std::pair<int, std::string> Split(const std::string& path) {
        const std::size_t slash = path.rfind('/');
        const std::string dir = slash == std::string::npos ? "." : path.substr(0, slash);
        auto found = m_dirs.find(dir);
        if (found == m_dirs.end()) found = m_dirs.emplace(dir, ::openat(m_root, dir.c_str(), O_PATH | O_DIRECTORY)).first;
        return {found->second, slash == std::string::npos ? path : path.substr(slash + 1)};
    }

    int m_root;
    std::map<std::string, int> m_dirs;
    std::vector<std::pair<int, std::string>> m_files;
    std::vector<std::pair<int, std::string>> m_links;
    std::vector<std::string> m_listings;
};

void BM_DksmiRun8Gpus(benchmark::State& state) {
    dksml::vhost::ScopedHost host(dksml::bench::TwoDieGpuProfile(c_gpuCount));
    const std::string root = host.Root().string();
    const RecordedRun run = Record(root, root + ".strace", c_onceFlag);
    const RecordedRun discovery = Record(root, root + ".strace", c_discoveryOnceFlag);
    std::remove((root + ".strace").c_str());
    if (!run.ok || !discovery.ok) {
        state.SkipWithError("could not record the run's files (is strace installed?)");
        return;
    }
    // The floor in two parts, to tell discovery's share from the rest's: what
    // discovery reads, and what the collection and the table read beyond it.
    const RecordedFloor discoveryFloor(root, discovery);
    const RecordedFloor restFloor(root, Beyond(run, discovery));
    uint64_t discoveryFloorNs = 0;
    uint64_t restFloorNs = 0;
    uint64_t floorRuns = 0;
    // The floor reads each file relative to its directory, opened once before
    // the loop; a fresh process (and each dksmi run is one) must open those
    // directories at least once. Their opens are timed apart, so that both the
    // ratio to the run's whole floor and the one to the files alone can be
    // reported.
    std::set<std::string> directories;
    discoveryFloor.AddDirectories(directories);
    restFloor.AddDirectories(directories);
    const int rootFd = ::open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    uint64_t directoryNs = 0;
    std::size_t tableBytes = RunDksmiOnce();  // the process's first run binds symbols and grows buffers
    g_steps = {};
    dksml::bench::DkBenchBesideFloor(
        state, [&] { tableBytes = RunDksmiOnce(); },
        [&] {
            const uint64_t t0 = dksml::bench::NowNs();
            discoveryFloor.Read();
            const uint64_t t1 = dksml::bench::NowNs();
            restFloor.Read();
            discoveryFloorNs += t1 - t0;
            const uint64_t t2 = dksml::bench::NowNs();
            for (const std::string& directory : directories) {
                const int fd = ::openat(rootFd, directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
                if (fd >= 0) ::close(fd);
            }
            restFloorNs += t2 - t1;
            directoryNs += dksml::bench::NowNs() - t2;
            ++floorRuns;
        });
    ::close(rootFd);
    state.counters["files"] = static_cast<double>(run.files.size());
    state.counters["directories"] = static_cast<double>(directories.size());
    state.counters["listings"] = static_cast<double>(run.listings.size());
    state.counters["links"] = static_cast<double>(run.links.size());
    state.counters["failed_calls"] = run.failedCalls;
    state.counters["table_bytes"] = static_cast<double>(tableBytes);
    // Split of lib_ns, over every run after the process's first (the loop's
    // warm-up run included).
    const double runs = static_cast<double>(state.iterations() + 1);
    state.counters["discovery_ns"] = static_cast<double>(g_steps.discovery) / runs;
    state.counters["collect_ns"] = static_cast<double>(g_steps.collection) / runs;
    state.counters["table_ns"] = static_cast<double>(g_steps.table) / runs;
    state.counters["discovery_floor_ns"] = static_cast<double>(discoveryFloorNs) / static_cast<double>(floorRuns);
    state.counters["rest_floor_ns"] = static_cast<double>(restFloorNs) / static_cast<double>(floorRuns);
    const double dirNs = static_cast<double>(directoryNs) / static_cast<double>(floorRuns);
    state.counters["directory_opens_ns"] = dirNs;
    // `ratio` (dk_bench_floor.h) is to the whole floor, directory opens
    // included; this one is to the files alone, their directories open before.
    const double preopenedFloorNs = static_cast<double>(discoveryFloorNs + restFloorNs) / static_cast<double>(floorRuns);
    state.counters["ratio_preopened"] = state.counters["lib_ns"] / preopenedFloorNs;
}
BENCHMARK(BM_DksmiRun8Gpus)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    // The recorded run: the host root comes from DK_SMI_FSROOT, inherited.
    if (argc > 1 && std::strcmp(argv[1], c_onceFlag) == 0) return RunDksmiOnce() > 0 ? 0 : 1;
    if (argc > 1 && std::strcmp(argv[1], c_discoveryOnceFlag) == 0)
        return dkSmlInitWithFlags(1) == DK_SML_SUCCESS ? 0 : 1;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
