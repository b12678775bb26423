#pragma once

namespace dksml {

class DkSdma {
public:
    virtual ~DkSdma() = default;
};

}  // namespace dksml
