// The binary PCI configuration space sysfs exposes as a function's "config"
// file. Tools that walk the PCI tree (lspci, hwloc) read ids, header type,
// bridge bus numbers and the PCI Express and SR-IOV capabilities from it, so
// the virtual host writes one per function and bridge.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace dksml::vhost {

// PCI Express device/port type (PCI Express capabilities register, bits 7:4).
enum class PciePortType : uint8_t { Endpoint = 0, RootPort = 4, UpstreamPort = 5, DownstreamPort = 6 };

struct PcieLinkState {
    unsigned generation = 0;  // 1 = 2.5 GT/s ... 6 = 64 GT/s
    unsigned width = 0;       // lanes
};

struct SriovState {
    uint16_t totalVfs = 0;
    uint16_t numVfs = 0;
    uint16_t firstVfOffset = 1;  // routing-id distance of VF 1 from the PF
    uint16_t vfStride = 1;
    uint16_t vfDeviceId = 0;
};

struct ConfigSpaceSpec {
    uint16_t vendorId = 0;
    uint16_t deviceId = 0;
    uint32_t classCode = 0;  // base class, sub-class, programming interface: 0x120000
    uint8_t revision = 0;
    uint16_t subsystemVendorId = 0;  // header type 0 only
    uint16_t subsystemDeviceId = 0;
    bool bridge = false;             // header type 1
    uint8_t primaryBus = 0;
    uint8_t secondaryBus = 0;
    uint8_t subordinateBus = 0;
    PciePortType portType = PciePortType::Endpoint;
    uint8_t portNumber = 0;
    PcieLinkState maxLink;
    PcieLinkState currentLink;
    std::optional<SriovState> sriov;  // needs the extended space
};

// Where the capabilities sit; the decoder in tests and the tools follow the
// pointers, these only fix the layout the encoder writes.
inline constexpr size_t c_pcieCapabilityOffset = 0x40;
inline constexpr size_t c_sriovCapabilityOffset = 0x100;
inline constexpr size_t c_configSpaceSize = 256;
inline constexpr size_t c_extendedConfigSpaceSize = 4096;

// 256 bytes, or 4096 when an extended capability is present.
std::string EncodeConfigSpace(const ConfigSpaceSpec& spec);

}  // namespace dksml::vhost
