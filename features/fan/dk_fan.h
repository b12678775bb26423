#pragma once

namespace dksml {

class DkFan {
public:
    virtual ~DkFan() = default;
};

}  // namespace dksml
