#pragma once

namespace dksml {

class DkPower {
public:
    virtual ~DkPower() = default;
};

}  // namespace dksml
