// The parsed, validated form of a host profile. The JSON profile is read once
// into these records; the tree writers only ever see validated data.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace dksml::vhost {

// Attribute or file name to its text; an empty optional means "do not write".
using TextOverrides = std::map<std::string, std::optional<std::string>>;

enum class FunctionKind { Physical, Virtual, Other };

struct DieSpec {
    TextOverrides attributes;
};

struct DeviceSpec {
    std::string busId;                 // "0000:3b:00.0"
    FunctionKind kind = FunctionKind::Physical;
    std::string model;                 // product name; empty for other functions
    int brand = 0;                     // product brand of the model
    uint32_t vendorId = 0;
    uint32_t deviceId = 0;
    uint32_t subsystemVendorId = 0;
    uint32_t subsystemDeviceId = 0;
    std::string pciClass;              // "0x120000"
    std::string driver;                // "dkcd", "DKGVM", another driver, or ""
    std::string parent;                // bus id of the hosting physical function (VFs)
    std::string rootComplex;           // "pci0000:17"
    std::vector<std::string> bridges;  // root port first, then switch ports; empty: on the root bus
    int numaNode = -1;
    std::string localCpuList;
    std::vector<DieSpec> dies;         // GPU functions only
    TextOverrides attributes;          // every die
    TextOverrides files;               // relative to the PCI function directory
    bool layoutNode = true;
    uint32_t nodeId = 0;
    uint32_t gpuId = 0;
    std::string uniqueId;
    int card = -1;                     // /dev/dri/cardN; -1: none
    uint32_t topologyPosition = 0;
    uint32_t socket = 0;
    std::string sensorBoard = "emc";   // "emc" or "tmp435"
    bool xpuClock = false;             // reports the six-value xpu clock line
    unsigned seed = 0;                 // varies the generated readings per device

    bool IsGpu() const { return kind != FunctionKind::Other; }
};

struct CpuNodeSpec {
    uint32_t nodeId = 0;
    std::string cpuList;
};

struct LinkSpec {
    std::string from;                  // bus id
    std::string to;                    // bus id, or "cpu:N" for a CPU layout node
    uint32_t type = 0;
    uint32_t distance = 0;
};

struct ProcessSpec {
    uint32_t pid = 0;
    uint32_t nspid = 0;
    std::string name;
    std::map<uint32_t, uint64_t> vram;  // driver GPU id -> bytes
    std::vector<uint32_t> ringbufGpuIds;
    bool holdsDeviceNode = true;        // an fd on /dev/dkcd in the host /proc
};

// Which build of each compute-stack library the host carries: the runtime
// is "absent", "present", "no_symbol" (no version function) or "failing"
// (the call reports an error); the SDK is "absent" or "present".
struct ComputeStackSpec {
    std::string runtime = "absent";
    std::string sdk = "absent";
};

// Throws std::runtime_error for an unknown key or variant.
ComputeStackSpec ParseComputeStack(const nlohmann::json& section);

struct HostSpec {
    std::string name;
    bool driverLoaded = true;
    bool virtualMachine = false;
    uint32_t operatingMode = 0;
    std::vector<CpuNodeSpec> cpuNodes;
    std::vector<DeviceSpec> devices;   // in profile order
    std::vector<LinkSpec> links;
    std::vector<ProcessSpec> processes;
    TextOverrides files;               // absolute host paths
    ComputeStackSpec computeStack;

    const DeviceSpec* FindDevice(const std::string& busId) const;
};

// Validates and completes a profile (defaults, derived ids). Throws
// std::runtime_error naming the offending entry.
HostSpec ParseProfile(const nlohmann::json& profile);

}  // namespace dksml::vhost
