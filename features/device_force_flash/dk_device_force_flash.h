#pragma once

namespace dksml {

class DkDeviceForceFlash {
public:
    virtual ~DkDeviceForceFlash() = default;
};

}  // namespace dksml
