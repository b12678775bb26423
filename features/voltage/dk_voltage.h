#pragma once

namespace dksml {

class DkVoltageMonitor {
public:
    virtual ~DkVoltageMonitor() = default;
};

}  // namespace dksml
