#include "features/process/dk_linux_process_management.h"

#include "core/dk_host_root.h"

namespace dksml {

// The scan of the driver's client directories is not wired up in this
// version: the queries answer DK_SML_ERROR_NOT_SUPPORTED.

std::shared_ptr<IDkProcessManagement> DkProcessManagementFactory::CreateProcessManagement(DkSmlDeviceBrand,
                                                                                          const std::string&) {
    return std::make_shared<DkLinuxProcessManagement>();
}

DkSmlReturn DkLinuxProcessManagement::GetProcessInfo(DkSmlProcessInfo*, uint32_t, uint32_t*, uint32_t, bool) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}
DkSmlReturn DkLinuxProcessManagement::GetProcessInfo_v2(DkSmlProcessInfo_v2*, uint32_t, uint32_t*, uint32_t, bool,
                                                        bool) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}
DkSmlReturn DkLinuxProcessManagement::GetProcessInfo_v3(DkSmlProcessInfo_v3*, uint32_t, uint32_t*, uint32_t, bool) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}
DkSmlReturn DkLinuxProcessManagement::KillAllProcess() { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkLinuxProcessManagement::GetProcessInfoImpl(DkSmlProcessInfo_v3*, uint32_t, uint32_t*, uint32_t, bool,
                                                         bool) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}
void DkLinuxProcessManagement::GetProcessRefDkcd(DkSmlProcessInfo_v3*, uint32_t, uint32_t*) {}

std::string DkLinuxProcessManagement::GetRealFile(const std::string& path) { return RealHostPath(path); }

}  // namespace dksml
