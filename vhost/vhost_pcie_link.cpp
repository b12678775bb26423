#include "vhost/vhost_pcie_link.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "dksml.h"

namespace dksml::vhost {
namespace {

// Index: generation; the kernel's text for each transfer rate.
constexpr std::array<const char*, 7> c_speedTexts{
    "Unknown", "2.5 GT/s PCIe", "5.0 GT/s PCIe", "8.0 GT/s PCIe", "16.0 GT/s PCIe", "32.0 GT/s PCIe",
    "64.0 GT/s PCIe"};
constexpr std::array<unsigned, 7> c_widths{1, 2, 4, 8, 12, 16, 32};

unsigned Generation(const nlohmann::json& value, const std::string& where) {
    const unsigned generation = value.get<unsigned>();
    if (generation < 1 || generation >= c_speedTexts.size()) {
        throw std::runtime_error("profile: " + where + ": PCIe generation must be 1 to 6");
    }
    return generation;
}

unsigned Width(const nlohmann::json& value, const std::string& where) {
    const unsigned width = value.get<unsigned>();
    if (std::find(c_widths.begin(), c_widths.end(), width) == c_widths.end()) {
        throw std::runtime_error("profile: " + where + ": PCIe width must be 1, 2, 4, 8, 12, 16 or 32");
    }
    return width;
}

}  // namespace

PcieLinkSpec DefaultFunctionLink(int brand) {
    const unsigned generation = brand == DK_SML_BRAND_DKK_X ? 5 : 4;
    return {generation, 16, generation, 16};
}

PcieLinkSpec DefaultBridgeLink() { return {5, 16, 5, 16}; }

PcieLinkSpec ParsePcieLink(const nlohmann::json& value, PcieLinkSpec base, const std::string& where) {
    if (!value.is_object()) throw std::runtime_error("profile: " + where + ": must be an object");
    for (const auto& [key, item] : value.items()) {
        if (key != "max_gen" && key != "max_width" && key != "gen" && key != "width") {
            throw std::runtime_error("profile: " + where + ": unknown key \"" + key + "\"");
        }
    }
    PcieLinkSpec link = base;
    if (value.contains("max_gen")) link.maxGeneration = link.generation = Generation(value["max_gen"], where);
    if (value.contains("max_width")) link.maxWidth = link.width = Width(value["max_width"], where);
    if (value.contains("gen")) link.generation = Generation(value["gen"], where);
    if (value.contains("width")) link.width = Width(value["width"], where);
    if (link.generation > link.maxGeneration || link.width > link.maxWidth) {
        throw std::runtime_error("profile: " + where + ": the current link exceeds the maximum");
    }
    return link;
}

std::string LinkSpeedText(unsigned generation) {
    return c_speedTexts[generation < c_speedTexts.size() ? generation : 0];
}

}  // namespace dksml::vhost
