#pragma once

namespace dksml {

class DkRas {
public:
    virtual ~DkRas() = default;
};

}  // namespace dksml
