#pragma once

namespace dksml {

class DkDidt {
public:
    virtual ~DkDidt() = default;
};

}  // namespace dksml
