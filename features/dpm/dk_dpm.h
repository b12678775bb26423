#pragma once

namespace dksml {

class DkDpm {
public:
    virtual ~DkDpm() = default;
};

}  // namespace dksml
