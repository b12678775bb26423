#pragma once

namespace dksml {

class DkVersion {
public:
    virtual ~DkVersion() = default;
};

}  // namespace dksml
