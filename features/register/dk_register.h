#pragma once

namespace dksml {

class DkRegister {
public:
    virtual ~DkRegister() = default;
};

}  // namespace dksml
