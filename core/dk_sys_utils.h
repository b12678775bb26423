// System calls that callers (tests, simulated hosts) may need to replace:
// identity checks, shell commands, thread pinning, CPU count and signals.
#pragma once

#include <sched.h>
#include <sys/types.h>

namespace dksml {

class DkSysUtils {
public:
    virtual ~DkSysUtils() = default;
    virtual uid_t GetEuid();
    virtual uid_t GetUid();
    virtual int System(const char* command);
    virtual int PthreadSetaffinityNp(unsigned long thread, unsigned long cpuSetSize,
                                     const cpu_set_t* cpuSet);
    virtual int GetNprocs();
    // Signals go through here so that a simulated host never reaches a real
    // process: under a host root the default object only reports success for
    // signal 0 and refuses everything else.
    virtual int Kill(pid_t pid, int signal);
};

}  // namespace dksml
