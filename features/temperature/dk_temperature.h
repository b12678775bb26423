#pragma once

namespace dksml {

class DkTemperature {
public:
    virtual ~DkTemperature() = default;
};

}  // namespace dksml
