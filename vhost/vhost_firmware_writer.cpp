// The firmware's SMBIOS table ("/sys/firmware/dmi/tables/DMI"), built byte by
// byte: BIOS and system information, one system slot (type 9) per physical
// GPU in bus order with slot IDs 1, 2, ..., an empty slot, and the end marker.
#include <cstdint>
#include <string>

#include "vhost/vhost_fs.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {
namespace {

constexpr const char* c_dmiTable = "/sys/firmware/dmi/tables/DMI";
constexpr uint8_t c_slotLength = 0x11;        // SMBIOS 2.6 system slot
constexpr uint8_t c_emptySlotBus = 0xff;

class DmiTable {
public:
    // Formatted area (type, length, handle, then `fields`), then the string set.
    void Add(uint8_t type, const std::string& fields, std::initializer_list<std::string> strings) {
        m_bytes += static_cast<char>(type);
        m_bytes += static_cast<char>(4 + fields.size());
        m_bytes += static_cast<char>(m_handle & 0xff);
        m_bytes += static_cast<char>(m_handle++ >> 8);
        m_bytes += fields;
        for (const std::string& text : strings) m_bytes += text + '\0';
        if (strings.size() == 0) m_bytes += '\0';
        m_bytes += '\0';
    }
    const std::string& Bytes() const { return m_bytes; }

private:
    std::string m_bytes;
    uint16_t m_handle = 0;
};

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (int value : values) bytes += static_cast<char>(value);
    return bytes;
}

// Fields after the header: designation string 1, PCIe x16, in use, long,
// slot ID, characteristics, segment 0, bus, device/function.
std::string SlotFields(uint16_t slotId, uint8_t usage, uint8_t bus, uint8_t devfn) {
    return Bytes({1, 0xb6, 0x0d, usage, 0x04, slotId & 0xff, slotId >> 8, 0x0c, 0x01, 0, 0, bus, devfn});
}

uint8_t HexByte(const std::string& text) { return static_cast<uint8_t>(std::stoul(text, nullptr, 16)); }

}  // namespace

void WriteFirmwareTables(const std::filesystem::path& root, const HostSpec& host) {
    DmiTable table;
    table.Add(0, Bytes({1, 2, 0x00, 0xf0, 3, 0x0f, 0x80, 0x98, 0x8b, 0x3f, 0x01, 0x00, 0x00, 0x00, 0x03, 0x0d, 1, 0,
                        0xff, 0xff}),
              {"Dravik Systems", "2.14.0", "03/18/2026"});
    table.Add(1, Bytes({1, 2, 3, 4, 0x4c, 0x4c, 0x44, 0x44, 0x54, 0x30, 0x4a, 0x31, 0x10, 0x38, 0x80, 0x42, 0xc0,
                        0x4f, 0x33, 0x31, 0x06, 5, 6}),
              {"Dravik Systems", host.name.empty() ? "vhost" : host.name, "1.0", "VH0001", "SKU-1", "Server"});
    uint16_t slotId = 1;
    for (const DeviceSpec& device : host.devices) {
        if (device.kind != FunctionKind::Physical) continue;
        // "0000:1b:00.0": bus at 5, device at 8, function at 11.
        const uint8_t bus = HexByte(device.busId.substr(5, 2));
        const uint8_t devfn = static_cast<uint8_t>(HexByte(device.busId.substr(8, 2)) << 3);
        const std::string name = "PCIE" + std::to_string(slotId);
        table.Add(9, SlotFields(slotId, 0x04, bus, devfn), {name});
        ++slotId;
    }
    table.Add(9, SlotFields(slotId, 0x03, c_emptySlotBus, c_emptySlotBus), {"PCIE" + std::to_string(slotId)});
    table.Add(127, {}, {});
    static_assert(c_slotLength == 4 + 13, "a system slot carries 13 bytes after its header");
    WriteText(root, c_dmiTable, table.Bytes());
}

}  // namespace dksml::vhost
