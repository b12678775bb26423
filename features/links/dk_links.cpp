// Interconnect texts of the driver (per die, in "/smi/" and "/smi1/"):
//   "showdvlkibandwidth" / "showdvlktbandwidth": two lines per link, the
//       current and the maximum bandwidth after a colon; die 1 ends with the
//       pair of its PM port.
//   "dvlki_traffic_stat" / "dvlkt_traffic_stat": "portN: <packets> <bytes>".
//   "showdvlkaer": "portN: <correctable> <uncorrectable>".
//   "showdvlkspeed" / "showdvlkwidth" / "showdvlkstatus": "portN: <value>".
//   "dravlink_ctrl": the on/off state on line 1, the driver's text on line 2;
//       written as one decimal number.
#include "features/links/dk_links.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "core/dk_system_manager.h"
#include "core/idk_device.h"
#include "driver/dk_opcode.h"
#include "driver/dk_text.h"
#include "features/links/dk_link_ports.h"
#include "features/topology/dk_topology.h"

namespace dksml {
namespace {

constexpr uint32_t c_unknownPortState = 5;
constexpr int c_unsetPortState = -1;

thread_local std::string t_scratch;

bool Refused(const IDkDevice* device) { return device == nullptr || device->IsPf() || device->IsVf(); }

// Dies a device form visits: both on a multi-chip device, else die 0.
unsigned int DieCountOf(const IDkDevice* device) { return device->IsDkMCM() ? device->GetDieCount() : 1; }

DkSmlReturn FetchNonEmpty(IDkDevice* device, unsigned int dieId, dravik_smi_opcode op) {
    const DkSmlReturn result = device->FetchDriverData(dieId, op, t_scratch);
    if (result != DK_SML_SUCCESS) return result;
    return TrimView(t_scratch, " \t\r\n").empty() ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_SUCCESS;
}

// Runs a die operation that fills part of a caller-sized array on every die
// of the device form, die 0's entries first; the count becomes the total.
template <typename Entry, typename DieCall>
DkSmlReturn CombineDies(IDkDevice* device, uint32_t* count, Entry* entries, DieCall&& call) {
    const uint32_t capacity = *count;
    uint32_t total = 0;
    bool overflow = false;
    for (unsigned int die = 0; die < DieCountOf(device); ++die) {
        const uint32_t offset = std::min(total, capacity);
        uint32_t dieCount = capacity - offset;
        const DkSmlReturn result = call(die, &dieCount, entries + offset);
        if (result == DK_SML_ERROR_INSUFFICIENT_SIZE) overflow = true;
        else if (result != DK_SML_SUCCESS) return result;
        total += dieCount;
    }
    *count = total;
    return overflow || total > capacity ? DK_SML_ERROR_INSUFFICIENT_SIZE : DK_SML_SUCCESS;
}

DkSmlReturn PortPairs(IDkDevice* device, unsigned int dieId, dravik_smi_opcode op, uint32_t* count,
                      uint64_t (*out)[2]) {
    if (const DkSmlReturn result = FetchNonEmpty(device, dieId, op)) return result;
    uint64_t pairs[DK_SML_DRAVIK_LINK_MAX_PORTS][2] = {};
    uint32_t ports = 0;
    if (const DkSmlReturn result = GetDklkPortPairs(t_scratch, pairs, DK_SML_DRAVIK_LINK_MAX_PORTS, ports)) {
        return result;
    }
    const uint32_t stored = std::min(ports, *count);
    for (uint32_t i = 0; i < stored; ++i) {
        out[i][0] = pairs[i][0];
        out[i][1] = pairs[i][1];
    }
    const bool overflow = ports > *count;
    *count = ports;
    return overflow ? DK_SML_ERROR_INSUFFICIENT_SIZE : DK_SML_SUCCESS;
}

}  // namespace

// ----- bandwidth -------------------------------------------------------------

DkSmlReturn DkDravLink::GetDravLinkBandwidth(IDkDevice* device, DkSmlDravikLinkType type, uint32_t* count,
                                             DkSmlDravikLinkBandwidth* links) {
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return CombineDies(device, count, links, [&](unsigned int die, uint32_t* n, DkSmlDravikLinkBandwidth* out) {
        return GetDieDravLinkBandwidth(device, die, type, n, out);
    });
}

DkSmlReturn DkDravLink::GetDieDravLinkBandwidth(IDkDevice* device, unsigned int dieId, DkSmlDravikLinkType type,
                                                uint32_t* count, DkSmlDravikLinkBandwidth* links) {
    if (count == nullptr || links == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    const dravik_smi_opcode op = type == DK_SML_DRAVIK_LINK_INBOUND ? DRAVIK_SMI_SHOWDVLKIBANDWIDTH
                                                                     : DRAVIK_SMI_SHOWDVLKTBANDWIDTH;
    if (const DkSmlReturn result = FetchNonEmpty(device, dieId, op)) return result;
    // Die 1's PM port closes its text: it lands after the links and counts
    // like one.
    DkTextLines lines(t_scratch);
    std::string_view line;
    uint32_t found = 0;
    while (lines.Next(line)) {
        if (TrimView(line, " \t\r").empty()) continue;
        DkSmlDravikLinkBandwidth entry{};
        if (const DkSmlReturn result = ProcessValueByColon(line, &entry.values[0])) return result;
        if (const DkSmlReturn result = ReadStringStream(lines, &ProcessValueByColon<unsigned int>, &entry.values[1])) {
            return result;
        }
        if (found < *count) links[found] = entry;
        ++found;
    }
    const bool overflow = found > *count;
    *count = found;
    return overflow ? DK_SML_ERROR_INSUFFICIENT_SIZE : DK_SML_SUCCESS;
}

// ----- traffic and error counters ------------------------------------------

DkSmlReturn DkDravLink::GetDravLinkTrafficStat(IDkDevice* device, DkSmlDravikLinkType type, uint32_t* count,
                                               DkSmlDravikLinkTrafficStat* links) {
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return CombineDies(device, count, links, [&](unsigned int die, uint32_t* n, DkSmlDravikLinkTrafficStat* out) {
        return GetDieDravLinkTrafficStat(device, die, type, n, out);
    });
}

DkSmlReturn DkDravLink::GetDieDravLinkTrafficStat(IDkDevice* device, unsigned int dieId, DkSmlDravikLinkType type,
                                                  uint32_t* count, DkSmlDravikLinkTrafficStat* links) {
    if (count == nullptr || links == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    const dravik_smi_opcode op = type == DK_SML_DRAVIK_LINK_INBOUND ? DRAVIK_SMI_DVLKI_TRAFFIC_STAT
                                                                     : DRAVIK_SMI_DVLKT_TRAFFIC_STAT;
    uint64_t pairs[DK_SML_DRAVIK_LINK_MAX_PORTS][2] = {};
    uint32_t n = std::min<uint32_t>(*count, DK_SML_DRAVIK_LINK_MAX_PORTS);
    const uint32_t capacity = *count;
    const DkSmlReturn result = PortPairs(device, dieId, op, &n, pairs);
    if (result != DK_SML_SUCCESS && result != DK_SML_ERROR_INSUFFICIENT_SIZE) return result;
    for (uint32_t i = 0; i < std::min(n, capacity); ++i) links[i] = {pairs[i][0], pairs[i][1]};
    *count = n;
    return n > capacity ? DK_SML_ERROR_INSUFFICIENT_SIZE : DK_SML_SUCCESS;
}

DkSmlReturn DkDravLink::GetDravLinkAer(IDkDevice* device, uint32_t* count, DkSmlDravikLinkAer* links) {
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return CombineDies(device, count, links, [&](unsigned int die, uint32_t* n, DkSmlDravikLinkAer* out) {
        return GetDieDravLinkAer(device, die, n, out);
    });
}

DkSmlReturn DkDravLink::GetDieDravLinkAer(IDkDevice* device, unsigned int dieId, uint32_t* count,
                                          DkSmlDravikLinkAer* links) {
    if (count == nullptr || links == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    uint64_t pairs[DK_SML_DRAVIK_LINK_MAX_PORTS][2] = {};
    uint32_t n = std::min<uint32_t>(*count, DK_SML_DRAVIK_LINK_MAX_PORTS);
    const uint32_t capacity = *count;
    const DkSmlReturn result = PortPairs(device, dieId, DRAVIK_SMI_SHOWDVLKAER, &n, pairs);
    if (result != DK_SML_SUCCESS && result != DK_SML_ERROR_INSUFFICIENT_SIZE) return result;
    for (uint32_t i = 0; i < std::min(n, capacity); ++i) {
        links[i] = {static_cast<uint32_t>(pairs[i][0]), static_cast<uint32_t>(pairs[i][1])};
    }
    *count = n;
    return n > capacity ? DK_SML_ERROR_INSUFFICIENT_SIZE : DK_SML_SUCCESS;
}

// ----- speed, width and states of the ports --------------------------------

DkSmlReturn DkDravLink::GetDieDravLinkInfo(IDkDevice* device, unsigned int dieId, DkSmlDravikLinkInfo* info) {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlDravikLinkInfo parsed{};
    parsed.portCount = LinkPortCount(dieId);
    if (const DkSmlReturn result = FetchNonEmpty(device, dieId, DRAVIK_SMI_SHOWDVLKSPEED)) return result;
    if (const DkSmlReturn result = GetDklkPortValue(t_scratch, parsed.speed, parsed.portCount)) return result;
    if (const DkSmlReturn result = FetchNonEmpty(device, dieId, DRAVIK_SMI_SHOWDVLKWIDTH)) return result;
    if (const DkSmlReturn result = GetDklkPortValue(t_scratch, parsed.width, parsed.portCount)) return result;
    *info = parsed;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDravLink::GetDravLinkInfo(IDkDevice* device, DkSmlDravikLinkInfo* info) {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlDravikLinkInfo combined{};
    for (unsigned int die = 0; die < DieCountOf(device); ++die) {
        DkSmlDravikLinkInfo one{};
        if (const DkSmlReturn result = GetDieDravLinkInfo(device, die, &one)) return result;
        for (uint32_t port = 0; port < one.portCount && combined.portCount < DK_SML_DRAVIK_LINK_MAX_PORTS; ++port) {
            combined.speed[combined.portCount] = one.speed[port];
            combined.width[combined.portCount++] = one.width[port];
        }
    }
    *info = combined;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDravLink::GetDklkInfo(IDkDevice* device, DkSmlDravikLinkInfo_v2* info) {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlDravikLinkInfo links{};
    if (const DkSmlReturn result = GetDravLinkInfo(device, &links)) return result;
    uint32_t states[DK_SML_DRAVIK_LINK_MAX_PORTS] = {};
    uint32_t count = DK_SML_DRAVIK_LINK_MAX_PORTS;
    if (const DkSmlReturn result = GetDravikLinkPortState(device, states, &count)) return result;
    DkSmlDravikLinkInfo_v2 out{};
    out.portCount = links.portCount;
    std::copy(std::begin(links.speed), std::end(links.speed), out.speed);
    std::copy(std::begin(links.width), std::end(links.width), out.width);
    for (uint32_t port = 0; port < DK_SML_DRAVIK_LINK_MAX_PORTS; ++port) {
        out.state[port] = port < count ? states[port] : c_unknownPortState;
    }
    *info = out;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDravLink::GetDieDravikLinkPortState(IDkDevice* device, unsigned int dieId, uint32_t* states,
                                                  uint32_t* count) {
    if (states == nullptr || count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    const uint32_t ports = LinkPortCount(dieId);
    if (*count < ports) {
        *count = ports;
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }
    if (const DkSmlReturn result = FetchNonEmpty(device, dieId, DRAVIK_SMI_SHOWDVLKSTATUS)) return result;
    int parsed[c_die1LinkPorts];
    std::fill(std::begin(parsed), std::end(parsed), c_unsetPortState);
    if (const DkSmlReturn result = GetDklkPortValue(t_scratch, parsed, ports)) return result;
    for (uint32_t port = 0; port < ports; ++port) {
        const int state = parsed[port];
        states[port] = state != c_unsetPortState && state >= 0 && state < static_cast<int>(c_unknownPortState)
                           ? static_cast<uint32_t>(state) : c_unknownPortState;
    }
    *count = ports;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDravLink::GetDravikLinkPortState(IDkDevice* device, uint32_t* states, uint32_t* count) {
    if (states == nullptr || count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    uint32_t needed = 0;
    for (unsigned int die = 0; die < DieCountOf(device); ++die) needed += LinkPortCount(die);
    if (*count < needed) {
        *count = needed;
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }
    uint32_t filled = 0;
    for (unsigned int die = 0; die < DieCountOf(device); ++die) {
        uint32_t dieCount = *count - filled;
        if (const DkSmlReturn result = GetDieDravikLinkPortState(device, die, states + filled, &dieCount)) return result;
        filled += dieCount;
    }
    *count = filled;
    return DK_SML_SUCCESS;
}

// ----- link topology ----------------------------------------------------------

// The driver reports the interconnect peers in the layout's link records;
// the topology object holds them per device in the driver's order, so the
// die form answers for the device's links as a whole.
DkSmlReturn DkDravLink::GetDieDravLinkTopo(IDkDevice* device, unsigned int, uint32_t* count, DkSmlDravikLinkTopo* ports) {
    return GetDravLinkTopo(device, count, ports);
}

DkSmlReturn DkDravLink::GetDravLinkTopo(IDkDevice* device, uint32_t* count, DkSmlDravikLinkTopo* ports) {
    if (count == nullptr || ports == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    std::shared_ptr<DkTopology> topology = DkSystemManager::GetInstance().GetTopology();
    if (!topology) return DK_SML_ERROR_NOT_SUPPORTED;
    const uint32_t self = device->GetDeviceId();
    uint32_t found = 0;
    DkSmlDravikLinkRemoteInfo remote{};
    while (topology->GetDravikLinkRemoteInfo(self, found, &remote) == DK_SML_SUCCESS) {
        // The peer's port is the position of the reverse record among its links.
        uint32_t remotePort = UINT32_MAX;
        DkSmlDravikLinkRemoteInfo back{};
        for (uint32_t i = 0; topology->GetDravikLinkRemoteInfo(remote.remoteDeviceIndex, i, &back) == DK_SML_SUCCESS;
             ++i) {
            if (back.remoteDeviceIndex == self) {
                remotePort = i;
                break;
            }
        }
        if (found < *count) ports[found] = {found, remote.remoteDeviceIndex, remotePort};
        ++found;
    }
    const bool overflow = found > *count;
    *count = found;
    return overflow ? DK_SML_ERROR_INSUFFICIENT_SIZE : DK_SML_SUCCESS;
}

// ----- on/off ---------------------------------------------------------------------

DkSmlReturn DkDravLink::GetDieDravikLinkState(IDkDevice* device, unsigned int dieId, uint32_t* state, char* text,
                                              uint32_t* size) {
    if (state == nullptr || text == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    if (const DkSmlReturn result = FetchNonEmpty(device, dieId, DRAVIK_SMI_DRAVLINK_CTRL)) return result;
    DkTextLines lines(t_scratch);
    std::string_view line;
    uint32_t value = 0;
    if (!lines.Next(line) || !ExtractNumber(line, value)) return DK_SML_ERROR_SYSFS;
    *state = value;
    std::string_view description;
    if (lines.Next(description)) description = TrimView(description, "\r");
    const uint32_t capacity = *size;
    *size = static_cast<uint32_t>(description.size() + 1);
    if (capacity <= description.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    std::memcpy(text, description.data(), description.size());
    text[description.size()] = '\0';
    return DK_SML_SUCCESS;
}

// On a multi-chip device the interconnect is on only when both dies are.
DkSmlReturn DkDravLink::GetDravikLinkState(IDkDevice* device, uint32_t* state, char* text, uint32_t* size) {
    if (state == nullptr || text == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    if (const DkSmlReturn result = GetDieDravikLinkState(device, 0, state, text, size)) return result;
    for (unsigned int die = 1; die < DieCountOf(device); ++die) {
        uint32_t other = 0;
        char ignored[64];
        uint32_t ignoredSize = sizeof(ignored);
        const DkSmlReturn result = GetDieDravikLinkState(device, die, &other, ignored, &ignoredSize);
        if (result != DK_SML_SUCCESS && result != DK_SML_ERROR_INSUFFICIENT_SIZE) return result;
        if (other == 0) *state = 0;
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDravLink::SetDieDravikLinkState(IDkDevice* device, unsigned int dieId, uint32_t state) {
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    return device->SetDriverData(dieId, DRAVIK_SMI_DRAVLINK_CTRL, std::to_string(state));
}

DkSmlReturn DkDravLink::SetDravikLinkState(IDkDevice* device, uint32_t state) {
    if (Refused(device)) return DK_SML_ERROR_NOT_SUPPORTED;
    for (unsigned int die = 0; die < DieCountOf(device); ++die) {
        if (const DkSmlReturn result = SetDieDravikLinkState(device, die, state)) return result;
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
