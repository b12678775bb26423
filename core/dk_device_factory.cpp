#include "core/dk_device_factory.h"

#include "core/dk_device.h"

namespace dksml {

std::shared_ptr<IDkDevice> DkDeviceFactory::CreateNewDevice(const std::string& searchPath) {
    return std::make_shared<DkDevice>(searchPath);
}

}  // namespace dksml
