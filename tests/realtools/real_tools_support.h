// Runs the standard Linux PCI and topology tools (pciutils' lspci, hwloc's
// lstopo-no-graphics) on a virtual host and reads back what they print.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace dksml::realtools {

struct ToolRun {
    int status = -1;
    std::string out;
    std::vector<std::string> errorLines;  // stderr, minus notes about the build machine itself
};

// Empty when `tool` is on PATH, else the reason a test skips.
std::string MissingTool(const std::string& tool);

// Runs `command` through the shell with stdout and stderr captured apart.
ToolRun RunTool(const std::string& command);

std::string Lspci(const std::filesystem::path& root, const std::string& options);

// hwloc with the virtual host as its file-system root. The x86 backend is
// left out: it would add the build machine's own caches from cpuid.
std::string Lstopo(const std::filesystem::path& root, const std::string& options, bool onlyLinux = true);

// One hwloc object of an XML export with its ancestors, outermost first.
struct HwlocObject {
    std::string type;
    std::string busId;          // pci_busid of PCI devices and bridges
    std::string cpuset;         // as hwloc writes it: "0x0000ffff,0xffffffff"
    int osIndex = -1;
    std::vector<const HwlocObject*> ancestors;
};

std::vector<HwlocObject> ParseHwlocXml(const std::string& xml);

// "0x0000000f,0xffffffff" to CPU numbers, ascending.
std::vector<unsigned> HwlocSetCpus(const std::string& set);

}  // namespace dksml::realtools
