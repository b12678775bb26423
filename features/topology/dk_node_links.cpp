#include "features/topology/dk_node_links.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

// The driver gives a link's far end as a 32-bit id whose low half is the node.
constexpr uint32_t c_linkNodeModulus = 65536;

// "key value" lines; false for a line that is not one.
bool SplitKeyValue(std::string_view line, std::string_view& key, std::string_view& value) {
    line = TrimView(line, " \t\r");
    const size_t blank = line.find_first_of(" \t");
    if (blank == std::string_view::npos) return false;
    key = line.substr(0, blank);
    value = TrimView(line.substr(blank + 1), " \t");
    return true;
}

bool ParseLinkProperties(std::string_view text, DkLinkAttr& link) {
    bool hasTo = false, hasType = false;
    DkTextLines lines(text);
    std::string_view line, key, value;
    while (lines.Next(line)) {
        unsigned long number = 0;
        if (!SplitKeyValue(line, key, value) || !stoul_nt(value, number)) continue;
        if (key == "to") {
            link.to = static_cast<uint32_t>(number % c_linkNodeModulus);
            hasTo = true;
        } else if (key == "type") {
            link.type = static_cast<uint32_t>(number);
            hasType = true;
        } else if (key == "distance") {
            link.distance = static_cast<uint32_t>(number);
        }
    }
    return hasTo && hasType;
}

// One link directory: its numbered entries in numeric order, each entry's
// "properties" read through the device's layout node requests.
void ReadLinkDirectory(IDkDevice& device, dravik_smi_opcode listOp, dravik_smi_opcode propertiesOp,
                       std::vector<DkLinkAttr>& links) {
    std::vector<std::string> names;
    if (device.ListDriverData(0, listOp, names) != DK_SML_SUCCESS) return;
    std::vector<uint32_t> numbers;
    for (const std::string& entryName : names) {
        unsigned int number = 0;
        if (IsNumber(entryName) && stoui_nt(entryName, number)) numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    std::string text;
    for (uint32_t number : numbers) {
        DkLinkAttr link;
        if (device.FetchIndexedDriverData(number, propertiesOp, text) == DK_SML_SUCCESS &&
            ParseLinkProperties(text, link))
            links.push_back(link);
    }
}

}  // namespace

void ReadNodeLinks(IDkDevice* device, std::vector<DkLinkAttr>& direct, std::vector<DkLinkAttr>& indirect) {
    if (device == nullptr) return;
    ReadLinkDirectory(*device, DRAVIK_SMI_NODE_DIRECT_LINKS, DRAVIK_SMI_NODE_DIRECT_LINK_PROPERTIES, direct);
    ReadLinkDirectory(*device, DRAVIK_SMI_NODE_INDIRECT_LINKS, DRAVIK_SMI_NODE_INDIRECT_LINK_PROPERTIES, indirect);
}

}  // namespace dksml
