// Driver access layer benchmarks. The goal: a handler fetch followed by
// ParseKeyValue costs at most 1.5 times a bare open/read/close of the same
// attribute file.
//
//   BM_BareRead        open, one read into a 4 KiB buffer, close (baseline)
//   BM_BareReadToEof   open, reads until end of file, close
//   BM_ReadFileText    the library's whole-file reader
//   BM_FetchData       DkLinuxDriverDataHandler::FetchData alone
//   BM_FetchAndParse<DkKeyValueMap>   FetchData + ParseKeyValue (map)
//   BM_FetchAndParse<DkKeyValueList>  the same with the list form
//   BM_ReadSysfsInt    ReadSysfs of one int with the raw extractor
//   BM_ParseKeyValue   parsing alone, no file access (map; List: list form)
//
// The files live in a fresh temporary directory (override with
// DKSML_BENCH_DIR, e.g. a tmpfs mount).
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/dk_fake_device.h"
#include "driver/dk_driver_data_handler.h"
#include "driver/dk_text.h"

namespace {

using namespace dksml;

// A 10-line "showclocks"-like attribute.
constexpr const char* c_showclocks =
    "GFXCLK: 1500 1500 1500 1500\n"
    "SOCCLK: 1200\n"
    "MEMCLK: 1600\n"
    "FCLK: 1400\n"
    "VCLK: 900 900\n"
    "DCLK: 800 800\n"
    "DCEFCLK: not support\n"
    "XCLK: 1100 1100 1100 1100\n"
    "PCIECLK: 100\n"
    "HBMCLK: 1800\n";

struct Fixture {
    Fixture() {
        const char* base = std::getenv("DKSML_BENCH_DIR");
        std::string pattern =
            ((base != nullptr ? std::filesystem::path(base) : std::filesystem::temp_directory_path()) /
             "dksml-bench-XXXXXX")
                .string();
        if (mkdtemp(pattern.data()) == nullptr) std::abort();
        root = pattern;
        std::filesystem::create_directories(root / "dev/smi");
        std::filesystem::create_directories(root / "dev/smi1");
        showclocks = (root / "dev/smi/showclocks").string();
        std::ofstream(showclocks) << c_showclocks;
        intFile = (root / "dev/smi/loglevel").string();
        std::ofstream(intFile) << "3\n";
        test::FakeDevice device((root / "dev/smi/").string(), (root / "dev/smi1/").string(),
                                (root / "node").string());
        handler.UpdateDeviceProperties(&device);
    }
    ~Fixture() {
        std::error_code ec;
        std::filesystem::remove_all(root, ec);
    }
    std::filesystem::path root;
    std::string showclocks;
    std::string intFile;
    DkLinuxDriverDataHandler handler;
};

Fixture& F() {
    static Fixture fixture;
    return fixture;
}

void BM_BareRead(benchmark::State& state) {
    const std::string& path = F().showclocks;
    char buf[4096];
    for (auto _ : state) {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        const ssize_t n = ::read(fd, buf, sizeof buf);
        ::close(fd);
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(buf);
    }
}
BENCHMARK(BM_BareRead);

void BM_BareReadToEof(benchmark::State& state) {
    const std::string& path = F().showclocks;
    char buf[4096];
    for (auto _ : state) {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        ssize_t total = 0;
        for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0;) total += n;
        ::close(fd);
        benchmark::DoNotOptimize(total);
        benchmark::DoNotOptimize(buf);
    }
}
BENCHMARK(BM_BareReadToEof);

void BM_ReadFileText(benchmark::State& state) {
    const std::string& path = F().showclocks;
    std::string text;
    for (auto _ : state) {
        const DkSmlReturn ret = ReadFileText(path, text);
        benchmark::DoNotOptimize(ret);
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(BM_ReadFileText);

void BM_FetchData(benchmark::State& state) {
    DkLinuxDriverDataHandler& handler = F().handler;
    for (auto _ : state) {
        std::string text;
        const DkSmlReturn ret = handler.FetchData(0, DRAVIK_SMI_SHOWCLOCKS, text);
        if (ret != DK_SML_SUCCESS) state.SkipWithError("unexpected fetch");
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(BM_FetchData);

// Fetch plus parse into the two forms the services use: the label map
// (clocks) and the key list in file order (temperatures, usage).
template <typename Values>
void BM_FetchAndParse(benchmark::State& state) {
    DkLinuxDriverDataHandler& handler = F().handler;
    for (auto _ : state) {
        std::string text;
        Values values;
        DkSmlReturn ret = handler.FetchData(0, DRAVIK_SMI_SHOWCLOCKS, text);
        if (ret == DK_SML_SUCCESS) ret = ParseKeyValue(text, values);
        if (ret != DK_SML_SUCCESS || values.size() != 9) state.SkipWithError("unexpected parse");
        benchmark::DoNotOptimize(values);
    }
}
BENCHMARK_TEMPLATE(BM_FetchAndParse, DkKeyValueMap);
BENCHMARK_TEMPLATE(BM_FetchAndParse, DkKeyValueList);

void BM_ReadSysfsInt(benchmark::State& state) {
    const std::string& path = F().intFile;
    for (auto _ : state) {
        int value = 0;
        const DkSmlReturn ret = ReadSysfs(path, ExtractRawValueStr, value);
        if (ret != DK_SML_SUCCESS || value != 3) state.SkipWithError("unexpected read");
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(BM_ReadSysfsInt);

void BM_ParseKeyValue(benchmark::State& state) {
    const std::string text = c_showclocks;
    for (auto _ : state) {
        DkKeyValueMap values;
        const DkSmlReturn ret = ParseKeyValue(text, values);
        benchmark::DoNotOptimize(ret);
        benchmark::DoNotOptimize(values);
    }
}
BENCHMARK(BM_ParseKeyValue);

void BM_ParseKeyValueList(benchmark::State& state) {
    const std::string text = c_showclocks;
    for (auto _ : state) {
        DkKeyValueList values;
        const DkSmlReturn ret = ParseKeyValue(text, values);
        benchmark::DoNotOptimize(ret);
        benchmark::DoNotOptimize(values);
    }
}
BENCHMARK(BM_ParseKeyValueList);

}  // namespace

BENCHMARK_MAIN();
