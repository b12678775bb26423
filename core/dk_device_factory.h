// Creates device objects for discovery; tests may hand discovery another factory.
#pragma once

#include <memory>
#include <string>

#include "core/idk_device.h"

namespace dksml {

class IDkDeviceFactory {
public:
    virtual ~IDkDeviceFactory() = default;
    // A device whose directory will be built under `searchPath` (a host path).
    virtual std::shared_ptr<IDkDevice> CreateNewDevice(const std::string& searchPath) = 0;
};

class DkDeviceFactory final : public IDkDeviceFactory {
public:
    std::shared_ptr<IDkDevice> CreateNewDevice(const std::string& searchPath) override;
};

}  // namespace dksml
