#include "core/dk_sys_utils.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <pthread.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include "core/dk_host_root.h"

namespace dksml {

uid_t DkSysUtils::GetEuid() { return geteuid(); }

uid_t DkSysUtils::GetUid() { return getuid(); }

int DkSysUtils::System(const char* command) { return std::system(command); }

int DkSysUtils::PthreadSetaffinityNp(unsigned long thread, unsigned long cpuSetSize,
                                     const cpu_set_t* cpuSet) {
    return pthread_setaffinity_np(static_cast<pthread_t>(thread), cpuSetSize, cpuSet);
}

int DkSysUtils::GetNprocs() { return get_nprocs(); }

int DkSysUtils::Kill(pid_t pid, int signal) {
    if (IsSimulatedHost()) {
        if (signal == 0) return 0;
        errno = EPERM;
        return -1;
    }
    return kill(pid, signal);
}

}  // namespace dksml
