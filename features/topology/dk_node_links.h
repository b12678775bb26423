// The link records of one layout node ("direct_links/N/properties",
// "indirect_links/N/properties"), read relative to the node's directory.
// Every GPU has an indirect record for every other GPU, so these are N² files
// on an N-GPU host: only the topology tables read them, when first asked.
#pragma once

#include <vector>

#include "core/dk_system_manager.h"

namespace dksml {

// The records of both link directories in numeric order; a record without
// "to" or "type" is left out, an absent directory gives none.
void ReadNodeLinks(int nodeDirFd, std::vector<DkLinkAttr>& direct, std::vector<DkLinkAttr>& indirect);

}  // namespace dksml
