// The configuration-space encoder's bridge header, checked by decoding it the
// way a PCI tool does: fixed header offsets, then the capability pointers.
// (lspci reads every function of the shipped profiles in tests/realtools:
// ids, subsystem, revision, links and the SR-IOV capability.)
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vhost/vhost_config_space.h"
#include "vhost/vhost_cpu_topology.h"

namespace dksml::vhost {
namespace {

uint32_t Read(const std::string& space, size_t offset, unsigned bytes) {
    uint32_t value = 0;
    for (unsigned i = 0; i < bytes; ++i) value |= static_cast<uint32_t>(static_cast<uint8_t>(space.at(offset + i))) << (8 * i);
    return value;
}

// Walks the standard capability list; 0 when the id is absent.
size_t FindCapability(const std::string& space, uint8_t id) {
    if ((Read(space, 0x06, 2) & 0x10) == 0) return 0;
    for (size_t at = Read(space, 0x34, 1), hops = 0; at != 0 && hops < 48; at = Read(space, at + 1, 1), ++hops) {
        if (Read(space, at, 1) == id) return at;
    }
    return 0;
}

TEST(ConfigSpace, BridgeCarriesBusNumbersAndPortType) {
    ConfigSpaceSpec spec;
    spec.vendorId = 0x1000;
    spec.deviceId = 0xc030;
    spec.classCode = 0x060400;
    spec.bridge = true;
    spec.primaryBus = 0x19;
    spec.secondaryBus = 0x1d;
    spec.subordinateBus = 0x1e;
    spec.portType = PciePortType::DownstreamPort;
    spec.portNumber = 0x18;
    spec.maxLink = spec.currentLink = {5, 16};
    const std::string space = EncodeConfigSpace(spec);
    EXPECT_EQ(Read(space, 0x0e, 1) & 0x7f, 1u);
    EXPECT_EQ(Read(space, 0x18, 1), 0x19u);
    EXPECT_EQ(Read(space, 0x19, 1), 0x1du);
    EXPECT_EQ(Read(space, 0x1a, 1), 0x1eu);
    EXPECT_GT(Read(space, 0x20, 2), Read(space, 0x22, 2));  // memory window closed
    const size_t pcie = FindCapability(space, 0x10);
    ASSERT_NE(pcie, 0u);
    EXPECT_EQ((Read(space, pcie + 2, 2) >> 4) & 0xf, 6u);
    EXPECT_EQ(Read(space, pcie + 0x0c, 4) >> 24, 0x18u);
    EXPECT_NE(Read(space, pcie + 0x12, 2) & (1u << 13), 0u);  // link up below the port
}

TEST(CpuLists, ParseAndMask) {
    struct Case {
        const char* list;
        unsigned bits;
        size_t count;
        const char* mask;
    };
    const Case cases[] = {
        {"0-15", 16, 16, "ffff"},
        {"0-31,64-95", 128, 64, "00000000,ffffffff,00000000,ffffffff"},
        {"32-35", 36, 4, "f,00000000"},
        {"3,1,1", 4, 2, "a"},
    };
    for (const Case& c : cases) {
        const std::vector<unsigned> cpus = ParseCpuList(c.list);
        EXPECT_EQ(cpus.size(), c.count) << c.list;
        EXPECT_EQ(CpuMaskText(cpus, c.bits), c.mask) << c.list;
    }
    for (const char* bad : {"", "3-1", "1,", ",1", "a", "1-", "-1", "0-99999"}) {
        EXPECT_TRUE(ParseCpuList(bad).empty()) << bad;
    }
}

}  // namespace
}  // namespace dksml::vhost
