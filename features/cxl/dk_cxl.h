#pragma once

namespace dksml {

class DkCxl {
public:
    virtual ~DkCxl() = default;
};

}  // namespace dksml
