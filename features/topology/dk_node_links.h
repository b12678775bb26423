// The link records of one layout node ("direct_links/N/properties",
// "indirect_links/N/properties"), read through the device's requests.
// Every GPU has an indirect record for every other GPU, so these are N² files
// on an N-GPU host: only the topology tables read them, when first asked.
#pragma once

#include <vector>

#include "core/dk_system_manager.h"

namespace dksml {

// The records of both link directories in numeric order; a record without
// "to" or "type" is left out, an absent directory gives none.
// A device without a layout node has none.
void ReadNodeLinks(IDkDevice* device, std::vector<DkLinkAttr>& direct, std::vector<DkLinkAttr>& indirect);

}  // namespace dksml
