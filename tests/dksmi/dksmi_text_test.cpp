// dksmi's watch mode and the process-list alias (the summary table, the
// detail view of every device and the process list are in the golden
// transcripts).
#include <gtest/gtest.h>

#include <sstream>

#include <nlohmann/json.hpp>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using nlohmann::json;
using dksml::vhost::ScopedHost;
using namespace std::string_view_literals;

using DksmiText = DksmiTest;

TEST_F(DksmiText, WatchWithCountEmitsOneJsonDocumentPerRedraw) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("--json --watch 0.01 --count 3");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::istringstream lines(run.out);
    size_t documents = 0;
    for (std::string line; std::getline(lines, line); ++documents)
        EXPECT_EQ(json::parse(line)["schema_version"], 2);
    EXPECT_EQ(documents, 3u);
}

// An interrupt during the wait ends the watch with exit code 0 after the
// first redraw (timeout sends SIGINT and passes dksmi's own exit code on).
TEST_F(DksmiText, InterruptEndsWatchCleanly) {
    ScopedHost host("server"sv);
    const RunResult run = RunDksmi("--watch 60", "timeout --preserve-status -s INT 2");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("IDX"), std::string::npos);
}

// The process list itself is in the golden transcripts; "-p" is its alias.
TEST_F(DksmiText, DashPListsTheProcesses) {
    ScopedHost host("slices"sv);
    EXPECT_EQ(RunDksmi("-p").out, RunDksmi("processes").out);
}

}  // namespace
}  // namespace dksmi::test
