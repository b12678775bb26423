#pragma once

namespace dksml {

class DkDravLink {
public:
    virtual ~DkDravLink() = default;
};

}  // namespace dksml
