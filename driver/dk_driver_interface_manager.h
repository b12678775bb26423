// The request table: driver request number -> attribute file name.
#pragma once

#include <map>
#include <string>

#include "driver/dk_opcode.h"

namespace dksml {

class DkDriverInterfaceManager {
public:
    // Attribute name of a request, or "" when the request has none.
    static std::string GetDriverInterface(dravik_smi_opcode op);
    // Zero-copy form for hot paths; empty when the request has no name.
    static const std::string& GetDriverInterfaceRef(dravik_smi_opcode op);

    static const std::map<dravik_smi_opcode, std::string> m_driverInterfaceMap;
};

}  // namespace dksml
