#pragma once

namespace dksml {

class DkEeprom {
public:
    virtual ~DkEeprom() = default;
};

}  // namespace dksml
