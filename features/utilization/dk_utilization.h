#pragma once

namespace dksml {

class DkUtilization {
public:
    virtual ~DkUtilization() = default;
};

}  // namespace dksml
