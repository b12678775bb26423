#include "core/dk_unavailable_reason.h"

#include "dksml.h"

namespace dksml {
namespace {

struct DkReasonRow {
    uint32_t reason;
    const char* text;
};

constexpr DkReasonRow c_reasonTexts[] = {
    {DK_SML_UNAVAILABLE_DRIVER_NOT_FOUND, "Dravik Kernel Driver Not Found"},
    {DK_SML_UNAVAILABLE_LAYOUT_NODE_NOT_FOUND, "Layout Node Not Found"},
    {DK_SML_UNAVAILABLE_SYSFS_INACCESSIBLE, "Dravik Sysfs File Unaccessible"},
    {DK_SML_UNAVAILABLE_VBIOS_INCOMPATIBLE, "Driver And Vbios Compatibility Check Failed"},
};

}  // namespace

const char* DkUnavailableReasonText(uint32_t reason) {
    for (const DkReasonRow& row : c_reasonTexts)
        if (row.reason == reason) return row.text;
    return "";
}

}  // namespace dksml
