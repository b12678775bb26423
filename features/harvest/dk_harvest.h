#pragma once

namespace dksml {

class DkHarvest {
public:
    virtual ~DkHarvest() = default;
};

}  // namespace dksml
