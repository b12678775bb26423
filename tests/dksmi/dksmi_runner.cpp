#include "dksmi/dksmi_runner.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "core/dk_pci_ids.h"

namespace dksmi::test {
namespace fs = std::filesystem;

fs::path DksmiBinary() { return fs::path(DKSML_BINARY_DIR) / "tools" / "dksmi" / "dksmi"; }

RunResult RunDksmi(const std::string& arguments) {
    const fs::path errFile = fs::temp_directory_path() / ("dksmi-test-stderr-" + std::to_string(getpid()));
    const std::string command = "'" + DksmiBinary().string() + "' " + arguments + " 2>'" + errFile.string() + "'";
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

std::vector<TreeFunction> MakerFunctions(const dksml::vhost::ScopedHost& host) {
    std::vector<TreeFunction> functions;
    const fs::path devices = host.Path("/sys/bus/pci/devices");
    if (!fs::exists(devices)) return functions;
    for (const fs::directory_entry& entry : fs::directory_iterator(devices)) {
        const std::string busId = entry.path().filename().string();
        const std::string base = "/sys/bus/pci/devices/" + busId;
        TreeFunction function;
        function.busId = busId;
        function.vendorId = static_cast<uint32_t>(std::stoul(host.ReadFile(base + "/vendor"), nullptr, 16));
        if (function.vendorId != dksml::c_makerVendorId && function.vendorId != dksml::c_makerPartnerVendorId)
            continue;
        std::error_code ec;
        const fs::path driver = fs::read_symlink(host.Path(base + "/driver"), ec);
        function.isVirtualFunction = !ec && driver.string().find("DKGVM") != std::string::npos;
        function.dieCount = (fs::is_directory(host.Path(base + "/smi")) ? 1 : 0) +
                            (fs::is_directory(host.Path(base + "/smi1")) ? 1 : 0);
        functions.push_back(function);
    }
    std::sort(functions.begin(), functions.end(),
              [](const TreeFunction& a, const TreeFunction& b) { return a.busId < b.busId; });
    return functions;
}

std::map<std::string, std::string> ReadKeyValues(const dksml::vhost::ScopedHost& host, const std::string& hostPath) {
    std::map<std::string, std::string> values;
    std::istringstream text(host.ReadFile(hostPath));
    for (std::string line; std::getline(text, line);) {
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        std::string key = line.substr(0, colon);
        key.erase(key.find_last_not_of(" \t") + 1);
        key.erase(0, key.find_first_not_of(" \t"));
        values[key] = line.substr(colon + 1);
    }
    return values;
}

std::string DieDirectory(const std::string& busId, unsigned die) {
    return "/sys/bus/pci/devices/" + busId + (die == 0 ? "/smi/" : "/smi1/");
}

}  // namespace dksmi::test
