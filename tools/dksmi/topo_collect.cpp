#include "topo_collect.h"

namespace dksmi {
namespace {

constexpr uint32_t kMaxLinks = DK_SML_DRAVIK_LINK_MAX_PORTS;

std::optional<std::vector<DkSmlDravikLinkBandwidth>> Bandwidth(uint32_t index, DkSmlDravikLinkType type) {
    std::vector<DkSmlDravikLinkBandwidth> links(kMaxLinks);
    uint32_t count = kMaxLinks;
    if (dkSmlGetDravikLinkBandwidth(index, type, &count, links.data()) != DK_SML_SUCCESS) return std::nullopt;
    links.resize(count);
    return links;
}

}  // namespace

void CollectPcieAndLinks(uint32_t index, DeviceReport& report) {
    PcieReport& pcie = report.pcie;
    DkSmlPcieInfo info{};
    if (dkSmlGetPcieInfo(index, &info) == DK_SML_SUCCESS) pcie.current = info;
    if (dkSmlGetPcieMaxLinkInfo(index, &info) == DK_SML_SUCCESS) pcie.maximum = info;
    uint32_t slot = 0;
    if (dkSmlGetDeviceSlot(index, &slot) == DK_SML_SUCCESS) pcie.slot = slot;
    DkSmlPcieThroughput throughput{};
    if (dkSmlGetPcieThroughput(index, &throughput) == DK_SML_SUCCESS) pcie.throughput = throughput;

    LinkReport& links = report.links;
    uint32_t state = 0;
    char text[128] = {};
    uint32_t size = sizeof(text);
    if (dkSmlGetDravikLinkState(index, &state, text, &size) == DK_SML_SUCCESS) {
        links.state = state;
        links.stateText = text;
    }
    std::vector<uint32_t> states(kMaxLinks);
    uint32_t count = kMaxLinks;
    if (dkSmlGetDravikLinkPortState(index, &count, states.data()) == DK_SML_SUCCESS) {
        states.resize(count);
        links.portStates = states;
    }
    links.inbound = Bandwidth(index, DK_SML_DRAVIK_LINK_INBOUND);
    links.outbound = Bandwidth(index, DK_SML_DRAVIK_LINK_OUTBOUND);
}

}  // namespace dksmi
