#pragma once

namespace dksml {

class DkHbm {
public:
    virtual ~DkHbm() = default;
};

}  // namespace dksml
