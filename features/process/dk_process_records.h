// The process records: a fresh version 3 record, and the older record
// versions produced from it field by field.
#pragma once

#include <cstring>

#include "dksml.h"

namespace dksml {

// All zero, every entry's slice id -1 (not a slice).
inline void ResetRecord(DkSmlProcessInfo_v3& record) {
    std::memset(&record, 0, sizeof(record));
    for (DkSmlProcessGpuInfo_v3& entry : record.gpuInfo) entry.sgpuId = -1;
}

template <typename Out>
void CopyHeader(const DkSmlProcessInfo_v3& in, Out& out) {
    out.pid = in.pid;
    std::memcpy(out.processName, in.processName, sizeof(out.processName));
    out.gpuCount = in.gpuCount;
}

inline void ConvertV3toV1(const DkSmlProcessInfo_v3& in, DkSmlProcessInfo& out) {
    std::memset(&out, 0, sizeof(out));
    CopyHeader(in, out);
    for (uint32_t i = 0; i < DK_SML_PROCESS_MAX_GPUS; ++i) {
        std::memcpy(out.gpuInfo[i].bdf, in.gpuInfo[i].bdf, sizeof(out.gpuInfo[i].bdf));
        out.gpuInfo[i].deviceId = in.gpuInfo[i].deviceId;
        out.gpuInfo[i].memoryUsed = in.gpuInfo[i].memoryUsed;
    }
}

inline void ConvertV3toV2(const DkSmlProcessInfo_v3& in, DkSmlProcessInfo_v2& out) {
    std::memset(&out, 0, sizeof(out));
    CopyHeader(in, out);
    for (uint32_t i = 0; i < DK_SML_PROCESS_MAX_GPUS; ++i) {
        std::memcpy(out.gpuInfo[i].bdf, in.gpuInfo[i].bdf, sizeof(out.gpuInfo[i].bdf));
        out.gpuInfo[i].deviceId = in.gpuInfo[i].deviceId;
        out.gpuInfo[i].memoryUsed = in.gpuInfo[i].memoryUsed;
        out.gpuInfo[i].vramTag = in.gpuInfo[i].vramTag;
    }
}

}  // namespace dksml
