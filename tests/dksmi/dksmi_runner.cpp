#include "dksmi/dksmi_runner.h"

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <unistd.h>

namespace dksmi::test {
namespace fs = std::filesystem;

fs::path DksmiBinary() { return fs::path(DKSML_BINARY_DIR) / "tools" / "dksmi" / "dksmi"; }

RunResult RunDksmi(const std::string& arguments, const std::string& prefix) {
    const fs::path errFile = fs::temp_directory_path() / ("dksmi-test-stderr-" + std::to_string(getpid()));
    const std::string command =
        prefix + " '" + DksmiBinary().string() + "' " + arguments + " 2>'" + errFile.string() + "'";
    RunResult result;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return result;
    std::array<char, 4096> buffer{};
    size_t n = 0;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) result.out.append(buffer.data(), n);
    const int status = pclose(pipe);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::ifstream err(errFile);
    result.err.assign(std::istreambuf_iterator<char>(err), {});
    fs::remove(errFile);
    return result;
}

std::string DieDirectory(const std::string& busId, unsigned die) {
    return "/sys/bus/pci/devices/" + busId + (die == 0 ? "/smi/" : "/smi1/");
}

}  // namespace dksmi::test
