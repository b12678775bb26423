#pragma once

namespace dksml {

class DkSliceGpu {
public:
    virtual ~DkSliceGpu() = default;
};

}  // namespace dksml
