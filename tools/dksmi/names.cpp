#include "names.h"

#include <map>

namespace dksmi {

std::string BrandName(DkSmlDeviceBrand brand) {
    static const std::map<DkSmlDeviceBrand, std::string> kNames{
        {DK_SML_BRAND_UNKNOWN, "unknown"}, {DK_SML_BRAND_DKQ, "DKQ"}, {DK_SML_BRAND_DKK, "DKK"},
        {DK_SML_BRAND_DKZ, "DKZ"},         {DK_SML_BRAND_DKK_X, "DKK-X"},
    };
    auto found = kNames.find(brand);
    return found != kNames.end() ? found->second : "unknown";
}

std::string RoleKey(DeviceRole role) {
    static const std::map<DeviceRole, std::string> kKeys{
        {DeviceRole::Physical, "physical"},
        {DeviceRole::PhysicalFunction, "physical_function"},
        {DeviceRole::VirtualFunction, "virtual_function"},
    };
    return kKeys.at(role);
}

std::string StatusText(DkSmlReturn status) {
    const char* text = dkSmlGetErrorString(status);
    return text ? text : "";
}

}  // namespace dksmi
