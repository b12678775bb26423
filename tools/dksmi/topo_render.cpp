#include "topo_render.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace dksmi {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kNa = "N/A";

// The level names operators read in GPU topology matrices.
struct LevelRow {
    uint32_t level;
    const char* name;
    const char* meaning;
};
constexpr LevelRow kLevels[] = {
    {DK_SML_TOPOLOGY_SAME_DEVICE, "X", "self"},
    {DK_SML_TOPOLOGY_SINGLE_SWITCH, "PIX", "behind one PCIe switch"},
    {DK_SML_TOPOLOGY_MULTIPLE_SWITCHES, "PXB", "behind several PCIe switches under one root port"},
    {DK_SML_TOPOLOGY_HOST_BRIDGE, "PHB", "under the same PCIe host bridge"},
    {DK_SML_TOPOLOGY_NUMA_NODE, "NODE", "on the same NUMA node, across host bridges"},
    {DK_SML_TOPOLOGY_DRAVIK_LINK, "DL", "joined by DravikLink"},
    {DK_SML_TOPOLOGY_SYSTEM, "SYS", "across NUMA nodes"},
    {DK_SML_TOPOLOGY_DRAVIK_LINK2, "DL2", "joined by the second DravikLink relation"},
    {DK_SML_TOPOLOGY_UNKNOWN, "N/A", "no relation known"},
};

// The driver's port states are its own numbers 0..4; 5 is "unknown".
constexpr uint32_t kUnknownPortState = 5;

std::string PortStateName(uint32_t state) { return state < kUnknownPortState ? std::to_string(state) : "?"; }

std::string LinkText(const std::optional<DkSmlPcieInfo>& info) {
    return info ? fmt::format("{:.1f} GT/s x{}", info->speed, info->width) : kNa;
}

std::string BandwidthText(const std::optional<std::vector<DkSmlDravikLinkBandwidth>>& links) {
    if (!links) return kNa;
    std::vector<std::string> parts;
    for (const DkSmlDravikLinkBandwidth& link : *links) parts.push_back(fmt::format("{}/{}", link.values[0], link.values[1]));
    return fmt::format("{}", fmt::join(parts, " "));
}

Json PcieInfoJson(const std::optional<DkSmlPcieInfo>& info) {
    if (!info) return nullptr;
    return Json{{"speed_gts", info->speed}, {"width", info->width}};
}

Json BandwidthJson(const std::optional<std::vector<DkSmlDravikLinkBandwidth>>& links) {
    if (!links) return nullptr;
    Json out = Json::array();
    for (const DkSmlDravikLinkBandwidth& link : *links) out.push_back({link.values[0], link.values[1]});
    return out;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> PcieAndLinkFields(const DeviceReport& device) {
    const PcieReport& pcie = device.pcie;
    const LinkReport& links = device.links;
    std::vector<std::pair<std::string, std::string>> fields{
        {"PCIe link", LinkText(pcie.current)},
        {"PCIe max link", LinkText(pcie.maximum)},
        {"PCIe slot", pcie.slot ? std::to_string(*pcie.slot) : kNa},
        {"PCIe throughput", pcie.throughput ? fmt::format("rx {} B, tx {} B", pcie.throughput->rx, pcie.throughput->tx)
                                            : kNa},
        {"DravikLink", links.state ? fmt::format("{} ({})", *links.state != 0 ? "on" : "off", links.stateText) : kNa},
    };
    std::string ports = kNa;
    if (links.portStates) {
        std::vector<std::string> names;
        for (uint32_t state : *links.portStates) names.push_back(PortStateName(state));
        ports = fmt::format("{}", fmt::join(names, " "));
    }
    fields.emplace_back("Port states", ports);
    fields.emplace_back("Link bandwidth in", BandwidthText(links.inbound));
    fields.emplace_back("Link bandwidth out", BandwidthText(links.outbound));
    return fields;
}

Json PcieJson(const PcieReport& pcie) {
    Json throughput = nullptr;
    if (pcie.throughput) throughput = Json{{"rx_bytes", pcie.throughput->rx}, {"tx_bytes", pcie.throughput->tx}};
    return Json{{"current", PcieInfoJson(pcie.current)},
                {"maximum", PcieInfoJson(pcie.maximum)},
                {"slot", pcie.slot ? Json(*pcie.slot) : Json(nullptr)},
                {"throughput", throughput}};
}

Json LinksJson(const LinkReport& links) {
    Json ports = nullptr;
    if (links.portStates) {
        ports = Json::array();
        for (uint32_t state : *links.portStates) ports.push_back(state);
    }
    return Json{{"state", links.state ? Json(*links.state) : Json(nullptr)},
                {"state_text", links.state ? Json(links.stateText) : Json(nullptr)},
                {"port_states", ports},
                {"bandwidth_inbound", BandwidthJson(links.inbound)},
                {"bandwidth_outbound", BandwidthJson(links.outbound)}};
}

std::string LevelName(uint32_t level) {
    for (const LevelRow& row : kLevels) {
        if (row.level == level) return row.name;
    }
    return kNa;
}

std::string LevelLegend() {
    std::string text = "Legend:\n";
    for (const LevelRow& row : kLevels) text += fmt::format("  {:<5} {}\n", row.name, row.meaning);
    return text;
}

}  // namespace dksmi
