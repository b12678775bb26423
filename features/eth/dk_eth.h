#pragma once

namespace dksml {

class DkEth {
public:
    virtual ~DkEth() = default;
};

}  // namespace dksml
