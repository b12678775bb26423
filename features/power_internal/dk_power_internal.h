#pragma once

namespace dksml {

class DkPowerInternal {
public:
    virtual ~DkPowerInternal() = default;
};

}  // namespace dksml
