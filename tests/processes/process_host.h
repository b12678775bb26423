// The "slices" host with a fresh discovery, and the process-accounting object
// discovery created for it.
#pragma once

#include <memory>
#include <set>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/dk_sys_utils.h"
#include "core/dk_system_manager.h"
#include "dksml.h"
#include "api/dk_service_manager.h"
#include "features/process/idk_process_management.h"
#include "features/slicegpu/dk_slicegpu.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::test {

// Client pids of the "slices" profile.
constexpr uint32_t c_trainPid = 4242;      // two GPUs, ring buffers
constexpr uint32_t c_containerPid = 5120;  // namespace pid 12, on slice 1
constexpr uint32_t c_idlePid = 6001;       // under the threshold, no ring buffer
constexpr uint32_t c_widePid = 7007;       // 80 (GPU, domain) pairs
constexpr uint32_t c_monitorPid = 8080;    // only holds the device node
constexpr uint32_t c_plainDevice = 0;      // two dies, GPU ids 48651 and die 1
constexpr uint32_t c_sliceDevice = 1;      // slice mode, slices 0, 1, 3
constexpr uint32_t c_plainGpuId = 48651;

class SlicesHost : public ::testing::Test {
protected:
    void SetUp() override {
        host = std::make_unique<vhost::ScopedHost>("slices");
        ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    }
    IDkProcessManagement& Processes() {
        auto p = DkSystemManager::GetInstance().GetProcessManagement();
        EXPECT_NE(p, nullptr);
        return *p;
    }
    std::unique_ptr<vhost::ScopedHost> host;
};

// Pids of the first `count` records.
template <typename Record>
std::vector<uint32_t> PidsOf(const Record* records, uint32_t count) {
    std::vector<uint32_t> pids;
    for (uint32_t i = 0; i < count; ++i) pids.push_back(records[i].pid);
    return pids;
}

}  // namespace dksml::test
