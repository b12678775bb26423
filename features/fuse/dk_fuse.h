#pragma once

namespace dksml {

class DkFuse {
public:
    virtual ~DkFuse() = default;
};

}  // namespace dksml
