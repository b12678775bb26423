#pragma once

namespace dksml {

class DkEvent {
public:
    virtual ~DkEvent() = default;
};

}  // namespace dksml
