#include "vhost/vhost_config_space.h"

#include <array>

namespace dksml::vhost {
namespace {

// One register: its offset (relative to the table's base), its size in bytes
// and how its value follows from the specification.
struct Field {
    uint16_t offset;
    uint8_t bytes;
    uint32_t (*value)(const ConfigSpaceSpec&);
};

using S = const ConfigSpaceSpec&;

constexpr uint16_t c_commandMemoryAndBusMaster = 0x0006;
constexpr uint16_t c_statusCapabilityList = 0x0010;
constexpr uint8_t c_pcieCapabilityId = 0x10;
constexpr uint16_t c_sriovExtendedCapabilityId = 0x0010;

bool HasLinkBelow(S s) {
    return s.portType == PciePortType::RootPort || s.portType == PciePortType::DownstreamPort;
}

// Standard header, both types.
constexpr std::array c_commonHeader{
    Field{0x00, 2, [](S s) -> uint32_t { return s.vendorId; }},
    Field{0x02, 2, [](S s) -> uint32_t { return s.deviceId; }},
    Field{0x04, 2, [](S) -> uint32_t { return c_commandMemoryAndBusMaster; }},
    Field{0x06, 2, [](S) -> uint32_t { return c_statusCapabilityList; }},
    Field{0x08, 1, [](S s) -> uint32_t { return s.revision; }},
    Field{0x09, 3, [](S s) -> uint32_t { return s.classCode; }},
    Field{0x0e, 1, [](S s) -> uint32_t { return s.bridge ? 1u : 0u; }},
    Field{0x34, 1, [](S) -> uint32_t { return c_pcieCapabilityOffset; }},
};

// Header type 0 (endpoints).
constexpr std::array c_endpointHeader{
    Field{0x2c, 2, [](S s) -> uint32_t { return s.subsystemVendorId; }},
    Field{0x2e, 2, [](S s) -> uint32_t { return s.subsystemDeviceId; }},
};

// Header type 1 (bridges). Base above limit closes the I/O, memory and
// prefetchable windows: the virtual host assigns no address ranges.
constexpr std::array c_bridgeHeader{
    Field{0x18, 1, [](S s) -> uint32_t { return s.primaryBus; }},
    Field{0x19, 1, [](S s) -> uint32_t { return s.secondaryBus; }},
    Field{0x1a, 1, [](S s) -> uint32_t { return s.subordinateBus; }},
    Field{0x1c, 1, [](S) -> uint32_t { return 0xf0; }},
    Field{0x1d, 1, [](S) -> uint32_t { return 0x00; }},
    Field{0x20, 2, [](S) -> uint32_t { return 0xfff0; }},
    Field{0x22, 2, [](S) -> uint32_t { return 0x0000; }},
    Field{0x24, 2, [](S) -> uint32_t { return 0xfff1; }},
    Field{0x26, 2, [](S) -> uint32_t { return 0x0001; }},
};

// PCI Express capability (version 2), last in the standard list.
constexpr std::array c_pcieCapability{
    Field{0x00, 1, [](S) -> uint32_t { return c_pcieCapabilityId; }},
    Field{0x02, 2, [](S s) -> uint32_t {
        return 0x2u | static_cast<uint32_t>(s.portType) << 4 | (HasLinkBelow(s) ? 1u << 8 : 0u);  // slot implemented
    }},
    Field{0x04, 4, [](S) -> uint32_t { return 0x8002; }},  // 512-byte payload, role-based errors
    Field{0x08, 2, [](S) -> uint32_t { return 0x2020; }},  // 256-byte payload, 512-byte read requests
    Field{0x0c, 4, [](S s) -> uint32_t {
        return s.maxLink.generation | s.maxLink.width << 4 | (HasLinkBelow(s) ? 1u << 20 : 0u) |
               static_cast<uint32_t>(s.portNumber) << 24;
    }},
    Field{0x12, 2, [](S s) -> uint32_t {
        return s.currentLink.generation | s.currentLink.width << 4 | (HasLinkBelow(s) ? 1u << 13 : 0u);
    }},
    Field{0x2c, 4, [](S s) -> uint32_t { return ((1u << s.maxLink.generation) - 1u) << 1; }},  // speeds vector
    Field{0x30, 2, [](S s) -> uint32_t { return s.maxLink.generation; }},                     // target speed
};

// SR-IOV extended capability (version 1), the only extended capability.
constexpr std::array c_sriovCapability{
    Field{0x00, 4, [](S) -> uint32_t { return c_sriovExtendedCapabilityId | 1u << 16; }},
    Field{0x08, 2, [](S s) -> uint32_t { return s.sriov->numVfs > 0 ? 0x9u : 0u; }},  // VF enable, VF memory space
    Field{0x0c, 2, [](S s) -> uint32_t { return s.sriov->totalVfs; }},                // initial VFs
    Field{0x0e, 2, [](S s) -> uint32_t { return s.sriov->totalVfs; }},
    Field{0x10, 2, [](S s) -> uint32_t { return s.sriov->numVfs; }},
    Field{0x14, 2, [](S s) -> uint32_t { return s.sriov->firstVfOffset; }},
    Field{0x16, 2, [](S s) -> uint32_t { return s.sriov->vfStride; }},
    Field{0x1a, 2, [](S s) -> uint32_t { return s.sriov->vfDeviceId; }},
    Field{0x1c, 4, [](S) -> uint32_t { return 0x553; }},  // supported page sizes 4K..4M
    Field{0x20, 4, [](S) -> uint32_t { return 0x1; }},    // 4K system pages
};

template <size_t N>
void Encode(std::string& space, size_t base, const std::array<Field, N>& table, S spec) {
    for (const Field& field : table) {
        const uint32_t value = field.value(spec);
        for (unsigned byte = 0; byte < field.bytes; ++byte) {  // little endian, as the bus is
            space[base + field.offset + byte] = static_cast<char>((value >> (8 * byte)) & 0xffu);
        }
    }
}

}  // namespace

std::string EncodeConfigSpace(const ConfigSpaceSpec& spec) {
    std::string space(spec.sriov ? c_extendedConfigSpaceSize : c_configSpaceSize, '\0');
    Encode(space, 0, c_commonHeader, spec);
    if (spec.bridge) {
        Encode(space, 0, c_bridgeHeader, spec);
    } else {
        Encode(space, 0, c_endpointHeader, spec);
    }
    Encode(space, c_pcieCapabilityOffset, c_pcieCapability, spec);
    if (spec.sriov) Encode(space, c_sriovCapabilityOffset, c_sriovCapability, spec);
    return space;
}

}  // namespace dksml::vhost
