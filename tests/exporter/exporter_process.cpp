#include "exporter/exporter_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <sstream>
#include <thread>

namespace dksml::exporter::test {
namespace fs = std::filesystem;
using namespace std::chrono_literals;

fs::path ExporterBinary() { return fs::path(DKSML_BINARY_DIR) / "tools" / "exporter" / "dksml-exporter"; }
fs::path DksmiBinary() { return fs::path(DKSML_BINARY_DIR) / "tools" / "dksmi" / "dksmi"; }

std::string RunCommand(const std::string& command) {
    std::string out;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return out;
    char buffer[16384];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    ::pclose(pipe);
    return out;
}

std::string FindOnPath(const std::string& name) {
    const std::string path = RunCommand("command -v '" + name + "'");
    return path.substr(0, path.find('\n'));
}

// curl does the HTTP; -w appends the status code on a line of its own (000
// when nothing answered), --globoff keeps the braces of a query as they are.
HttpReply HttpGet(int port, const std::string& target, std::chrono::milliseconds timeout) {
    const std::string command = "curl -s --globoff -m " + std::to_string(timeout.count() / 1000.0) +
                                " -o - -w '\\n%{http_code}' 'http://127.0.0.1:" + std::to_string(port) + target + "'";
    HttpReply reply{0, RunCommand(command)};
    const size_t statusLine = reply.body.rfind('\n');
    if (statusLine == std::string::npos) return HttpReply{};
    reply.status = std::atoi(reply.body.c_str() + statusLine + 1);
    reply.body.resize(statusLine);
    return reply;
}

int FreeLoopbackPort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        port = ntohs(address.sin_port);
    ::close(fd);
    return port;
}

ChildProcess::ChildProcess(const std::vector<std::string>& argv) {
    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0) return;
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    m_pid = ::fork();
    if (m_pid == 0) {
        ::dup2(pipeFds[1], STDOUT_FILENO);
        const int null = ::open("/dev/null", O_WRONLY);
        if (null >= 0) ::dup2(null, STDERR_FILENO);
        ::execv(args[0], args.data());
        ::_exit(127);
    }
    ::close(pipeFds[1]);
    m_stdout = pipeFds[0];
}

ChildProcess::~ChildProcess() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    if (m_stdout >= 0) ::close(m_stdout);
}

std::string ChildProcess::WaitForLine(const std::string& marker, std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline && m_stdout >= 0) {
        for (size_t end; (end = m_buffered.find('\n')) != std::string::npos;) {
            std::string line = m_buffered.substr(0, end);
            m_buffered.erase(0, end + 1);
            if (line.find(marker) != std::string::npos) return line;
        }
        pollfd p{m_stdout, POLLIN, 0};
        if (::poll(&p, 1, 100) <= 0) continue;
        char buffer[4096];
        const ssize_t n = ::read(m_stdout, buffer, sizeof buffer);
        if (n <= 0) break;
        m_buffered.append(buffer, n);
    }
    return "";
}

void ChildProcess::Signal(int signal) const {
    if (m_pid > 0) ::kill(m_pid, signal);
}

int ChildProcess::Stop(std::chrono::milliseconds grace) {
    if (m_pid <= 0) return -1;
    ::kill(m_pid, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + grace;
    int status = 0;
    while (std::chrono::steady_clock::now() < deadline) {
        if (::waitpid(m_pid, &status, WNOHANG) == m_pid) {
            m_pid = -1;
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        std::this_thread::sleep_for(20ms);
    }
    return -1;  // the destructor kills it
}

ExporterProcess::ExporterProcess(const std::vector<std::string>& extraArguments)
    : m_process([&] {
          std::vector<std::string> argv{ExporterBinary().string(), "--listen", "127.0.0.1:0", "--web-root",
                                        (ExporterBinary().parent_path() / "www").string()};
          argv.insert(argv.end(), extraArguments.begin(), extraArguments.end());
          return argv;
      }()) {
    const std::string line = m_process.WaitForLine("listening on port", 10s);
    if (!line.empty()) m_port = std::atoi(line.c_str() + line.rfind(' ') + 1);
}

// Sample lines are `name{label="value",...} number`. Escaped label text (\\,
// \", \n) is kept as written: no value of the shipped hosts has any, and one
// that did would differ from the expected text: a failure, never a false pass.
std::vector<Sample> ParseExposition(const std::string& page) {
    static const std::regex sampleLine(R"(([a-zA-Z_:][\w:]*)(?:\{(.*)\})? (\S+))");
    static const std::regex labelPair(R"re((\w+)="((?:[^"\\]|\\.)*)")re");
    std::vector<Sample> samples;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        std::smatch parts;
        if (!std::regex_match(line, parts, sampleLine)) continue;
        Sample sample{parts[1], {}, std::strtod(parts[3].str().c_str(), nullptr)};
        const std::string labels = parts[2];
        for (std::sregex_iterator pair(labels.begin(), labels.end(), labelPair), end; pair != end; ++pair)
            sample.labels[(*pair)[1]] = (*pair)[2];
        samples.push_back(std::move(sample));
    }
    return samples;
}

std::vector<Sample> Select(const std::vector<Sample>& samples, const std::string& name,
                           const std::map<std::string, std::string>& labels) {
    std::vector<Sample> found;
    for (const Sample& sample : samples) {
        if (sample.name != name) continue;
        bool match = true;
        for (const auto& [key, value] : labels) {
            auto it = sample.labels.find(key);
            match = match && it != sample.labels.end() && it->second == value;
        }
        if (match) found.push_back(sample);
    }
    return found;
}

std::optional<double> ValueOf(const std::vector<Sample>& samples, const std::string& name,
                              const std::map<std::string, std::string>& labels) {
    const std::vector<Sample> found = Select(samples, name, labels);
    if (found.size() != 1) return std::nullopt;
    return found.front().value;
}

}  // namespace dksml::exporter::test
