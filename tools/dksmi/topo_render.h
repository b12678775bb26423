// Rendering of the PCIe and interconnect readings (detail view and JSON) and
// the names of topology levels shared with `dksmi topo`.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "snapshot.h"

namespace dksmi {

// Label/value lines of the detail view, in display order.
std::vector<std::pair<std::string, std::string>> PcieAndLinkFields(const DeviceReport& device);

nlohmann::ordered_json PcieJson(const PcieReport& pcie);
nlohmann::ordered_json LinksJson(const LinkReport& links);

// Short matrix name of a topology level ("X", "DL", "PIX", ...) and its legend line.
std::string LevelName(uint32_t level);
std::string LevelLegend();

}  // namespace dksmi
