// Many threads query every family while others re-discover: every answer
// must equal the single-threaded one, except that a compatibility handle of a
// replaced discovery may answer "invalid argument" (and then a fresh handle
// must give the right answer). Run under ThreadSanitizer in CI, where any
// report fails the job. DKSML_STRESS_MS sets each scenario's length and
// DKSML_STRESS_READERS the reader count; the queries-only scenario prints
// the reader throughput. The handle rule itself (a forced pass refuses older
// handles, forged ones are refused) is pinned in tests/discovery and
// tests/api/compat_server_test.cpp.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "api/api_host.h"
#include "threads/dk_stress_queries.h"

namespace dksml::test {
namespace {

constexpr uint32_t c_absentIndex = 4242;
constexpr int c_handleRetries = 1000;

unsigned EnvNumber(const char* name, unsigned fallback) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : fallback;
}

DkSmlExDevice HandleOf(uint32_t deviceIndex) {
    DkSmlExDevice handle = nullptr;
    DkSmlDeviceInfo info{};
    if (dkSmlGetDeviceInfo(deviceIndex, &info) != DK_SML_SUCCESS) return nullptr;
    return dkSmlExGetDeviceHandleByPciBusId(info.bdfId, &handle) == DK_SML_EX_SUCCESS ? handle : nullptr;
}

class ThreadsStressTest : public ::testing::Test {
protected:
    void SetUp() override {
        host = MakeHost("server");
        ASSERT_GT(dkSmlGetDeviceCount(), 1u);
        for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) indices.push_back(index);
        if (DkSmlDeviceInfo info{}; dkSmlGetDeviceInfo(100, &info) == DK_SML_SUCCESS) indices.push_back(100);
        indices.push_back(c_absentIndex);
        expected = Answers();
        // Only repeatable answers can be compared across threads.
        ASSERT_EQ(Answers(), expected) << "a query of the table does not repeat its answer";
    }

    std::vector<uint64_t> Answers() const {
        std::vector<uint64_t> answers;
        for (uint32_t index : indices) {
            DkSmlExDevice handle = HandleOf(index);
            for (const DkStressQuery& query : c_stressQueries) answers.push_back(query.run(index, handle));
        }
        return answers;
    }

    // One reader: every query on every index in turn until `stop`.
    void Read(unsigned seed, const std::atomic<bool>& stop) {
        std::vector<DkSmlExDevice> handles;
        for (uint32_t index : indices) handles.push_back(HandleOf(index));
        const size_t queryCount = std::size(c_stressQueries);
        size_t cursor = seed * 7;
        while (!stop.load(std::memory_order_relaxed)) {
            const size_t slot = cursor % (indices.size() * queryCount);
            const size_t device = slot / queryCount;
            const DkStressQuery& query = c_stressQueries[slot % queryCount];
            ++cursor;
            uint64_t answer = query.run(indices[device], handles[device]);
            // A handle of a replaced discovery: a fresh one must answer right.
            for (int retry = 0; query.compat && answer != expected[slot] && retry < c_handleRetries; ++retry) {
                handles[device] = HandleOf(indices[device]);
                answer = query.run(indices[device], handles[device]);
            }
            queries.fetch_add(1, std::memory_order_relaxed);
            if (answer != expected[slot]) Wrong(query.name, indices[device]);
        }
    }

    void Wrong(const char* name, uint32_t index) {
        std::lock_guard<std::mutex> lock(wrongMutex);
        if (wrong.size() < 10) wrong.push_back(std::string(name) + " on device " + std::to_string(index));
        ++wrongCount;
    }

    // With `rediscover`, one more thread alternates plain and forced initialisation.
    void Run(bool rediscover) {
        const unsigned readers = EnvNumber("DKSML_STRESS_READERS", 16);
        const auto length = std::chrono::milliseconds(EnvNumber("DKSML_STRESS_MS", 300));
        std::atomic<bool> stop{false};
        std::atomic<unsigned> failedInits{0};
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < readers; ++i) threads.emplace_back([&, i] { Read(i, stop); });
        if (rediscover) {
            threads.emplace_back([&] {
                for (unsigned round = 0; !stop.load(std::memory_order_relaxed); ++round) {
                    if ((round % 2 == 1 ? dkSmlInitWithFlags(1) : dkSmlInit()) != DK_SML_SUCCESS) ++failedInits;
                }
            });
        }
        const auto start = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(length);
        stop = true;
        for (std::thread& thread : threads) thread.join();
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        std::printf("%u readers: %llu queries, %.0f queries/s\n", readers,
                    static_cast<unsigned long long>(queries.load()), queries.load() / seconds);
        EXPECT_EQ(failedInits.load(), 0u);
        EXPECT_EQ(wrongCount, 0u) << "first wrong answers: " << ::testing::PrintToString(wrong);
        EXPECT_EQ(Answers(), expected);
    }

    std::unique_ptr<vhost::ScopedHost> host;
    std::vector<uint32_t> indices;
    std::vector<uint64_t> expected;  // [index slot * query count + query]
    std::atomic<unsigned long long> queries{0};
    std::mutex wrongMutex;
    std::vector<std::string> wrong;
    unsigned wrongCount = 0;
};

TEST_F(ThreadsStressTest, QueriesOnly) { Run(false); }

TEST_F(ThreadsStressTest, QueriesWhileForcedAndPlainInitAlternate) { Run(true); }

// No queries: initialisation alone from several threads, forced or not.
TEST_F(ThreadsStressTest, ConcurrentInitialisation) {
    std::atomic<unsigned> failed{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            for (int call = 0; call < 50; ++call)
                if ((i % 2 == 1 && call % 5 == 0 ? dkSmlInitWithFlags(1) : dkSmlInit()) != DK_SML_SUCCESS) ++failed;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failed.load(), 0u);
    EXPECT_EQ(Answers(), expected);
}

}  // namespace
}  // namespace dksml::test
