#pragma once

namespace dksml {

class DkUtilizationInternal {
public:
    virtual ~DkUtilizationInternal() = default;
};

}  // namespace dksml
