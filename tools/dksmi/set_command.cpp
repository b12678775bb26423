#include "set_command.h"

#include "set_pcie.h"
#include "slice_set.h"

#include <unistd.h>

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "api/dk_service_manager.h"
#include "core/dk_system_manager.h"
#include "dksml.h"
#include "features/dpm/dk_dpm.h"
#include "names.h"
#include "outcome.h"

namespace dksmi {
namespace {

constexpr std::array<const char*, DK_SML_DPM_IP_COUNT> kDomainNames{
    "dla", "xcore", "mc", "soc", "dnoc", "vpue", "vpud", "hbm", "g2d", "hbmpower", "ccx", "npu", "dma", "csc", "eth"};

// "DOMAIN=VALUE" with DOMAIN a domain name; the value a decimal number.
struct DomainValue {
    DkSmlDpmIp ip;
    uint32_t value;
};

std::optional<DomainValue> ParseDomainValue(const std::string& text, uint32_t maxValue) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) return std::nullopt;
    const std::string name = text.substr(0, equals);
    const std::string number = text.substr(equals + 1);
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (number.empty() || error != std::errc() || end != number.data() + number.size() || value > maxValue)
        return std::nullopt;
    for (uint32_t ip = 0; ip < kDomainNames.size(); ++ip)
        if (name == kDomainNames[ip]) return DomainValue{static_cast<DkSmlDpmIp>(ip), value};
    return std::nullopt;
}

// The DPM interval has no export; the tool reaches the service directly,
// with the same device lookup the exports use.
template <typename Body>
DkSmlReturn WithDpm(uint32_t index, Body&& body) noexcept {
    try {
        std::shared_ptr<dksml::IDkDevice> device = dksml::DkSystemManager::GetInstance().GetDeviceById(index);
        if (!device) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        std::shared_ptr<dksml::DkDpm> dpm = dksml::DkServiceManager::GetInstance().GetDkDpm();
        if (!dpm) return DK_SML_ERROR_FAILURE;
        return body(*dpm, device.get());
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

std::string Before(DkSmlReturn status, uint32_t value) {
    return status == DK_SML_SUCCESS ? std::to_string(value) : "N/A";
}

// The outcome of one setting: the line printed, and the library status.
struct Change {
    DkSmlReturn status;
    std::string description;
};

Change SetMaxPerfLevel(uint32_t index, const DomainValue& request) {
    uint32_t before = 0;
    const DkSmlReturn read = dkSmlGetDpmIpMaxPerfLevel(index, request.ip, &before);
    const DkSmlReturn status = dkSmlSetDpmIpMaxPerfLevel(index, request.ip, request.value);
    return {status, fmt::format("{} maximum performance level: {} -> {}", kDomainNames[request.ip],
                                Before(read, before), request.value)};
}

Change SetDpmInterval(uint32_t index, const DomainValue& request) {
    DkSmlDpmInterval before{};
    const DkSmlReturn read =
        WithDpm(index, [&](dksml::DkDpm& dpm, dksml::IDkDevice* d) { return dpm.GetDpmInterval(d, &before); });
    const DkSmlReturn status = WithDpm(index, [&](dksml::DkDpm& dpm, dksml::IDkDevice* d) {
        return dpm.SetDpmInterval(d, request.ip, static_cast<uint16_t>(request.value));
    });
    return {status, fmt::format("{} DPM interval: {} -> {} ms", kDomainNames[request.ip],
                                Before(read, before.interval[request.ip]), request.value)};
}

// One row per setting. Add a row to add a setting.
struct SetRow {
    const char* option;
    const char* typeName;
    const char* help;
    uint32_t maxValue;
    Change (*apply)(uint32_t index, const DomainValue& request);
};

const SetRow kSetRows[] = {
    {"--max-perf-level", "DOMAIN=LEVEL", "Highest performance level DOMAIN may reach (levels count from 0)",
     DK_SML_DPM_MAX_LEVELS - 1, SetMaxPerfLevel},
    {"--dpm-interval", "DOMAIN=MS", "DPM sampling interval of DOMAIN in milliseconds", 65535, SetDpmInterval},
};

}  // namespace

int RunSet(int argc, char** argv) {
    CLI::App app{"dksmi set - change a setting of one device. Needs root.", "dksmi set"};
    std::string domains;
    for (const char* name : kDomainNames) domains += domains.empty() ? name : std::string(", ") + name;
    app.footer("DOMAIN is one of: " + domains +
               ".\nPrints every change as \"old -> new\". Exit codes as dksmi, and 7 when not run as root\n"
               "or when the device refuses a setting. Slice operations run in the order mode, create,\n"
               "alias, remove, and stop at the first refusal.");
    uint32_t index = 0;
    app.add_option("-i,--index", index, "Device index")->required();
    std::vector<std::vector<std::string>> values(std::size(kSetRows));
    for (size_t r = 0; r < std::size(kSetRows); ++r)
        app.add_option(kSetRows[r].option, values[r], kSetRows[r].help)->type_name(kSetRows[r].typeName);
    PcieSettings pcie;
    AddPcieSetOptions(app, pcie);
    SliceSettings slices;
    AddSliceSetOptions(app, slices);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? kExitOk : kExitUsage;
    }

    std::vector<std::pair<const SetRow*, DomainValue>> requests;
    for (size_t r = 0; r < std::size(kSetRows); ++r) {
        for (const std::string& text : values[r]) {
            const std::optional<DomainValue> parsed = ParseDomainValue(text, kSetRows[r].maxValue);
            if (!parsed) {
                fmt::print(stderr, "dksmi set: {} expects {} (DOMAIN one of: {}), not \"{}\"\n", kSetRows[r].option,
                           kSetRows[r].typeName, domains, text);
                return kExitUsage;
            }
            requests.emplace_back(&kSetRows[r], *parsed);
        }
    }
    const SliceRequests sliceRequests = ToSliceRequests(slices, index);
    if (!sliceRequests.usageError.empty()) {
        fmt::print(stderr, "dksmi set: {}\n", sliceRequests.usageError);
        return kExitUsage;
    }
    const bool pcieRequested = pcie.delay || pcie.generation;
    if (requests.empty() && !pcieRequested && sliceRequests.requests.empty()) {
        fmt::print(stderr, "dksmi set: nothing to set; see dksmi set --help\n");
        return kExitUsage;
    }
    if (geteuid() != 0) {
        fmt::print(stderr, "dksmi set: permission denied: changing settings needs root ({}, code {})\n",
                   StatusText(DK_SML_ERROR_PERMISSION), static_cast<int>(DK_SML_ERROR_PERMISSION));
        return kExitRefused;
    }

    (void)dkSmlInit();
    DkSmlDeviceInfo info{};
    if (dkSmlGetDeviceInfo(index, &info) != DK_SML_SUCCESS) {
        fmt::print(stderr, "dksmi set: no device with index {}\n", index);
        return kExitNoSuchDevice;
    }
    int exitCode = kExitOk;
    for (const auto& [row, request] : requests) {
        const Change change = row->apply(index, request);
        if (change.status == DK_SML_SUCCESS) {
            fmt::print("Device {} ({}): {}\n", index, info.bdfId, change.description);
        } else {
            fmt::print(stderr, "dksmi set: device {}: {} not changed: {} (code {})\n", index, change.description,
                       StatusText(change.status), static_cast<int>(change.status));
            exitCode = kExitRefused;
        }
    }
    if (pcieRequested) {
        const int pcieExit = ApplyPcieSettings(index, pcie);
        if (pcieExit != kExitOk) exitCode = pcieExit;
    }
    // Slice operations build on each other (mode, then create, ...): stop at the first refusal.
    for (const SliceSetRequest& request : sliceRequests.requests) {
        const Outcome outcome = RunSliceSet(request, geteuid());
        if (outcome.exitCode != kExitOk) {
            fmt::print(stderr, "dksmi set: device {}: {}\n", index, outcome.message);
            return outcome.exitCode;
        }
        fmt::print("Device {} ({}): {}\n", index, info.bdfId, outcome.message);
    }
    return exitCode;
}

}  // namespace dksmi
