// The request table: driver request number -> attribute file name.
#pragma once

#include <map>
#include <string>

#include "driver/dk_opcode.h"

namespace dksml {

// The directory a request's name is relative to.
enum class DkRequestPlace : unsigned char {
    Smi,          // the die's "smi/" (die 0) or "smi1/" directory
    Function,     // the PCI function's own directory
    Node,         // the device's layout node directory
    LayoutNodes,  // the layout root, one numbered directory per node
    Debug,        // the driver's debug directory
    Firmware,     // the firmware's DMI tables directory
};

class DkDriverInterfaceManager {
public:
    // Attribute name of a request, or "" when the request has none.
    static std::string GetDriverInterface(dravik_smi_opcode op);
    // Zero-copy form for hot paths; empty when the request has no name.
    static const std::string& GetDriverInterfaceRef(dravik_smi_opcode op);

    // Directory the request's name is relative to (Smi for unknown numbers).
    static DkRequestPlace GetRequestPlace(dravik_smi_opcode op);
    // True for the command files a write creates when absent (the service
    // wrote them with creation before they became requests; a driver
    // directory refuses the creation, so only a virtual host sees it).
    static bool CreatesOnWrite(dravik_smi_opcode op);
    // Whether a write of `op` leaves out the trailing newline.
    static bool WritesVerbatim(dravik_smi_opcode op);

    static const std::map<dravik_smi_opcode, std::string> m_driverInterfaceMap;
};

}  // namespace dksml
