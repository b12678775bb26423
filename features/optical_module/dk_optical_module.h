#pragma once

namespace dksml {

class DkOpticalModule {
public:
    virtual ~DkOpticalModule() = default;
};

}  // namespace dksml
