#pragma once

namespace dksml {

class DkPptable {
public:
    virtual ~DkPptable() = default;
};

}  // namespace dksml
