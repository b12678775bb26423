#pragma once

namespace dksml {

class DkMemoryController {
public:
    virtual ~DkMemoryController() = default;
};

}  // namespace dksml
