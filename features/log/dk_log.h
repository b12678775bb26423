#pragma once

namespace dksml {

class DkLog {
public:
    virtual ~DkLog() = default;
};

}  // namespace dksml
