#pragma once

namespace dksml {

class DkEcc {
public:
    virtual ~DkEcc() = default;
};

}  // namespace dksml
