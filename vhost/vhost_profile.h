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

// One PCI Express link as the function's link registers and sysfs
// max_link_*/current_link_* files report it: generation 1 (2.5 GT/s) to 6
// (64 GT/s) and lanes.
struct PcieLinkSpec {
    unsigned maxGeneration = 0;
    unsigned maxWidth = 0;
    unsigned generation = 0;
    unsigned width = 0;
};

struct DieSpec {
    TextOverrides attributes;
};

// One slice of a device in slice mode (its "sgpu<id>" directory and layout node).
struct SliceSpec {
    uint32_t id = 0;
    uint32_t gpuId = 0;
    uint32_t nodeId = 0;               // 0: derived from the parent's node id
    uint32_t vramQuota = 0;
    uint32_t computeQuota = 0;
    uint32_t priority = 0;
    uint32_t online = 1;
    uint32_t minor = 0;
    uint32_t utilization = 0;
    uint32_t active = 1;
    uint64_t memory[3] = {};           // "meminfo": total, used, free
    std::string alias;
    std::string annotations;           // whole file, lines of key=value;...
    std::string uniqueId;
    std::vector<uint32_t> overrun;     // one value per scheduling period
};

// A device in slice mode ("model" reads "sgpu").
struct SgpuSpec {
    uint32_t totalVramQuota = 0;
    uint32_t timeslice = 0;
    uint32_t schedClass = 0;
    std::vector<SliceSpec> slices;
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
    PcieLinkSpec link;                 // the function's upstream link
    uint32_t revision = 0;
    std::optional<SgpuSpec> sgpu;      // slice mode (physical GPUs only)
    std::string boardSerial;           // "showe2prominfo"; devices of one board share it
    bool boardMaster = true;           // the board's power readings are reported by this device

    bool IsGpu() const { return kind != FunctionKind::Other; }
};

struct CpuNodeSpec {
    uint32_t nodeId = 0;
    std::string cpuList;
    unsigned threadsPerCore = 1;       // the k-th and (k + n/threads)-th CPU of the node share a core
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
    bool driverDir = true;              // a client directory in the driver's debugfs
    uint32_t domains = 1;               // memory domains (vram_ tags 0..domains-1) per GPU
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
    std::map<std::string, PcieLinkSpec> bridgeLinks;  // bridge bus id -> its link, when not the default
    ComputeStackSpec computeStack;

    const DeviceSpec* FindDevice(const std::string& busId) const;
};

// Validates and completes a profile (defaults, derived ids). Throws
// std::runtime_error naming the offending entry.
HostSpec ParseProfile(const nlohmann::json& profile);

// The "sgpu" section of a physical GPU (vhost_sgpu_profile.cpp).
SgpuSpec ParseSgpu(const nlohmann::json& section, const std::string& where);

}  // namespace dksml::vhost
