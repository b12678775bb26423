#pragma once

namespace dksml {

class DkDeviceReset {
public:
    virtual ~DkDeviceReset() = default;
};

}  // namespace dksml
