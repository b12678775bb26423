// What the driver reports differently per product family: instruction-set
// version, board type, clock domains, memory size and compute layout.
#pragma once

#include <string_view>
#include <vector>

namespace dksml::vhost {

struct ModelFamily {
    int brand;
    std::string_view isaVersion;
    unsigned boardType;
    std::vector<std::string_view> clockIps;
    unsigned memoryGiB;
    unsigned dpcCount;
    unsigned apPerDpc;
    unsigned linkPorts;  // interconnect ports of die 0; 0 = no interconnect
};

// The family of a product brand; unknown brands get the training-line family.
const ModelFamily& FamilyOfBrand(int brand);

}  // namespace dksml::vhost
