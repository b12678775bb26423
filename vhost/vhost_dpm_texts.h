// The DPM attribute texts of a die, as the driver prints them: one row per
// domain, the label exactly the domain name (layouts in include/dksml.h).
#pragma once

#include <string>

#include "vhost/vhost_attributes.h"

namespace dksml::vhost {

std::string DpmCountText(const DieContext& c);      // "dpmcount": levels allowed
std::string PerfLevelText(const DieContext& c);     // "showperflevel" / "setperflevel": level in force
std::string DpmIntervalText(const DieContext& c);   // "dpminterval": ms per domain
std::string ClockRangeText(const DieContext& c);    // "showclkrange": MHz of each level
std::string DpmVoltageText(const DieContext& c);    // "dpmctl": mV of each level
std::string DpmUsageText(const DieContext& c);      // "dpmusage": ms at each level
std::string DpmFeatureText(const DieContext& c);    // "dpmfeature": levels enabled
std::string DpmTableText(const DieContext& c);      // "dpm_table_ctrl"

}  // namespace dksml::vhost
