// dksmi's watch mode and the process-list alias (the summary table, the
// detail view of every device and the process list are in the golden
// transcripts).
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

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

TEST_F(DksmiText, InterruptEndsWatchCleanly) {
    ScopedHost host("server"sv);
    int pipeFds[2];
    ASSERT_EQ(pipe(pipeFds), 0);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        dup2(pipeFds[1], STDOUT_FILENO);
        close(pipeFds[0]);
        close(pipeFds[1]);
        const std::string binary = DksmiBinary().string();
        execl(binary.c_str(), binary.c_str(), "--watch", "60", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipeFds[1]);
    // Wait for the first redraw to be complete, then interrupt the wait.
    std::string out;
    char buffer[4096];
    while (out.find("Limited devices") == std::string::npos) {
        const ssize_t n = read(pipeFds[0], buffer, sizeof buffer);
        if (n <= 0) break;
        out.append(buffer, static_cast<size_t>(n));
    }
    kill(pid, SIGINT);
    int status = 0;
    waitpid(pid, &status, 0);
    close(pipeFds[0]);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by a signal";
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_NE(out.find("IDX"), std::string::npos);
}

// The process list itself is in the golden transcripts; "-p" is its alias.
TEST_F(DksmiText, DashPListsTheProcesses) {
    ScopedHost host("slices"sv);
    EXPECT_EQ(RunDksmi("-p").out, RunDksmi("processes").out);
}

}  // namespace
}  // namespace dksmi::test
