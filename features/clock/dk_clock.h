#pragma once

namespace dksml {

class DkClock {
public:
    virtual ~DkClock() = default;
};

}  // namespace dksml
