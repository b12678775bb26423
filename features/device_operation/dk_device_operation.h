#pragma once

namespace dksml {

class DkDeviceOperation {
public:
    virtual ~DkDeviceOperation() = default;
};

}  // namespace dksml
