#include "set_pcie.h"

#include <unistd.h>

#include <cstdlib>

#include <fmt/format.h>

#include "dksml.h"
#include "outcome.h"

namespace dksmi {
namespace {

bool MayWrite() { return geteuid() == 0 || std::getenv("DK_SMI_FSROOT") != nullptr; }

int Report(const char* what, uint32_t index, DkSmlReturn status) {
    if (status == DK_SML_SUCCESS) {
        fmt::print("device {}: {} set\n", index, what);
        return kExitOk;
    }
    const char* text = dkSmlGetErrorString(status);
    fmt::print(stderr, "dksmi: device {}: cannot set the {}: {} ({})\n", index, what, text ? text : "?",
               static_cast<unsigned>(status));
    return kExitFailure;
}

}  // namespace

void AddPcieSetOptions(CLI::App& set, PcieSettings& settings) {
    set.add_option("--pci-delay", settings.delay, "Driver PCI delay, 1 to 10000 (inference line only)")
        ->check(CLI::Range(1u, 10000u));
    set.add_option("--pci-gen", settings.generation, "Force the PCIe generation, 1 to 5, not above the link's maximum")
        ->check(CLI::Range(1u, 5u));
}

int ApplyPcieSettings(uint32_t index, const PcieSettings& settings) {
    if (!settings.delay && !settings.generation) return kExitOk;
    if (!MayWrite()) {
        fmt::print(stderr, "dksmi: changing PCIe settings needs root\n");
        return kExitFailure;
    }
    int exitCode = kExitOk;
    if (settings.delay) exitCode = Report("PCI delay", index, dkSmlSetPciDelay(index, *settings.delay));
    if (settings.generation && exitCode == kExitOk) {
        exitCode = Report("PCIe generation", index,
                          dkSmlSetPciSpeed(index, static_cast<DkSmlPciGen>(*settings.generation)));
    }
    return exitCode;
}

}  // namespace dksmi
