// Memory totals ("showmeminfo") and use ("showmemuse"), three pools each, KiB.
#include <string>

#include "core/idk_device.h"
#include "driver/dk_key_value_scan.h"
#include "features/utilization/dk_utilization.h"

namespace dksml {
namespace {

// One value after a colon per line, into the pools' `field` in pool order.
DkSmlReturn ReadPools(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, uint64_t DkSmlMemoryPool::*field,
                      DkSmlMemoryInfo& info) {
    std::string& text = ScratchText();
    const DkSmlReturn result = device.FetchDriverData(dieId, op, text);
    if (result != DK_SML_SUCCESS) return result;
    DkTextLines lines(text);
    for (DkSmlMemoryPool& pool : info.pool) {
        unsigned long long value = 0;
        const DkSmlReturn line = ReadStringStream<unsigned long long>(lines, &ProcessValueByColon<unsigned long long>,
                                                                       &value);
        if (line != DK_SML_SUCCESS) return line;
        pool.*field = value;
    }
    return DK_SML_SUCCESS;
}

}  // namespace

DkSmlReturn DkUtilization::GetDieMemoryInfo(IDkDevice* device, unsigned int dieId, DkSmlMemoryInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsPf()) return DK_SML_ERROR_NOT_SUPPORTED;
    *info = DkSmlMemoryInfo{};
    const DkSmlReturn result = ReadPools(*device, dieId, DRAVIK_SMI_SHOWMEMINFO, &DkSmlMemoryPool::total, *info);
    if (result != DK_SML_SUCCESS) return result;
    return ReadPools(*device, dieId, DRAVIK_SMI_SHOWMEMUSE, &DkSmlMemoryPool::used, *info);
}

// The first two pools add up over the dies; the third is die 0's alone
// (every die reports the same shared pool).
DkSmlReturn DkUtilization::GetMemoryInfo(IDkDevice* device, DkSmlMemoryInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn result = GetDieMemoryInfo(device, 0, info);
    if (result != DK_SML_SUCCESS) return result;
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 1; die < dieCount; ++die) {
        DkSmlMemoryInfo dieInfo{};
        result = GetDieMemoryInfo(device, die, &dieInfo);
        if (result != DK_SML_SUCCESS) return result;
        for (int pool = 0; pool < 2; ++pool) {
            info->pool[pool].total += dieInfo.pool[pool].total;
            info->pool[pool].used += dieInfo.pool[pool].used;
        }
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
