// Runs real processes for the exporter tests: the built dksml-exporter (on
// the host root of the current ScopedHost, on a free loopback port), a
// Prometheus server, and curl for their pages. Every wait is
// bounded and every child is killed when its object goes away.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dksml::exporter::test {

std::filesystem::path ExporterBinary();
std::filesystem::path DksmiBinary();
// An executable on PATH ("" when absent).
std::string FindOnPath(const std::string& name);

// The standard output of a shell command.
std::string RunCommand(const std::string& command);

struct HttpReply {
    int status = 0;  // 0: no answer
    std::string body;
};

// GET of `target` on 127.0.0.1:port, bounded by `timeout`.
HttpReply HttpGet(int port, const std::string& target, std::chrono::milliseconds timeout = std::chrono::seconds(10));

// A port on 127.0.0.1 that was free a moment ago.
int FreeLoopbackPort();

// A child process with stdout on a pipe; SIGKILLed (if still running) and
// reaped on destruction.
class ChildProcess {
public:
    explicit ChildProcess(const std::vector<std::string>& argv);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Reads stdout until a line containing `marker` (bounded); the line or "".
    std::string WaitForLine(const std::string& marker, std::chrono::milliseconds timeout);
    void Signal(int signal) const;
    // Exit status after SIGTERM (-1 when it had to be killed).
    int Stop(std::chrono::milliseconds grace = std::chrono::seconds(5));

private:
    pid_t m_pid = -1;
    int m_stdout = -1;
    std::string m_buffered;
};

// The exporter on a free loopback port of the current host root.
class ExporterProcess {
public:
    explicit ExporterProcess(const std::vector<std::string>& extraArguments = {});
    int Port() const { return m_port; }
    HttpReply Scrape() const { return HttpGet(m_port, "/metrics"); }
    ChildProcess& Process() { return m_process; }

private:
    ChildProcess m_process;
    int m_port = 0;
};

// One sample of an exposition page.
struct Sample {
    std::string name;
    std::map<std::string, std::string> labels;
    double value = 0;
};

std::vector<Sample> ParseExposition(const std::string& page);

// Samples named `name` whose labels include every pair of `labels`.
std::vector<Sample> Select(const std::vector<Sample>& samples, const std::string& name,
                          const std::map<std::string, std::string>& labels = {});
// The value of the one sample that matches, if exactly one does.
std::optional<double> ValueOf(const std::vector<Sample>& samples, const std::string& name,
                              const std::map<std::string, std::string>& labels = {});

}  // namespace dksml::exporter::test
