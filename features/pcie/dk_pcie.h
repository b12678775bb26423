#pragma once

namespace dksml {

class DkPcie {
public:
    virtual ~DkPcie() = default;
};

}  // namespace dksml
