#pragma once

namespace dksml {

class DkVpu {
public:
    virtual ~DkVpu() = default;
};

}  // namespace dksml
