// The operating mode lives in the driver manager directory's
// "system_maintenance" file: read as one number, written as one decimal line.
#include "core/dk_host_root.h"
#include "core/dk_system_manager.h"
#include "driver/dk_text.h"

namespace dksml {

namespace {

std::string OpModePath(const DkSystemManager& manager) {
    return HostPath(manager.GetSystemManagerPath() + "/system_maintenance");
}

}  // namespace

DkSmlReturn DkSystemManager::GetOpMode(uint32_t* mode) const {
    unsigned int value = 0;
    DkSmlReturn result = ReadSysfs(OpModePath(*this), ExtractRawValueStr, value);
    if (result == DK_SML_SUCCESS) *mode = value;
    return result;
}

// Writability is tested first so that a caller without rights hears 8, not a
// generic open failure.
DkSmlReturn DkSystemManager::SetOpMode(uint32_t mode) const {
    const std::string path = OpModePath(*this);
    if (!CheckIfFileWritable(path)) return DK_SML_ERROR_PERMISSION;
    return WriteSysfs(path, mode);
}

}  // namespace dksml
