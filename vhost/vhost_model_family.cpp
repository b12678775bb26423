#include "vhost/vhost_model_family.h"

#include <algorithm>
#include <array>

#include "dksml.h"

namespace dksml::vhost {
namespace {

const std::array<ModelFamily, 4> c_families{{
    {DK_SML_BRAND_DKQ, "3.1", 17, {"csc", "dla", "mc", "vpue", "vpud", "soc", "gpu"}, 16, 4, 4, 0},
    {DK_SML_BRAND_DKK, "5.2", 24, {"csc", "dla", "mc0", "mc1", "vpue", "vpud", "soc", "dnoc", "xcore"}, 32, 8, 4, 7},
    {DK_SML_BRAND_DKZ, "7.0", 40, {"csc", "dla", "mc", "soc", "dnoc", "gpu", "ccx"}, 8, 2, 4, 0},
    {DK_SML_BRAND_DKK_X, "6.1", 33, {"csc", "mc0", "mc1", "vpue", "vpud", "soc", "dnoc", "ccx", "xcore"}, 64, 12, 4, 7},
}};

}  // namespace

const ModelFamily& FamilyOfBrand(int brand) {
    const auto it = std::find_if(c_families.begin(), c_families.end(),
                                 [&](const ModelFamily& f) { return f.brand == brand; });
    return it == c_families.end() ? c_families[1] : *it;
}

}  // namespace dksml::vhost
