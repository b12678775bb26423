// Shared helpers: a virtual host plus the C calls the discovery tests repeat.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::test {

// A shipped profile's host, discovered as it was written.
inline std::unique_ptr<vhost::ScopedHost> Discovered(std::string_view profile) {
    auto host = std::make_unique<vhost::ScopedHost>(profile);
    EXPECT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS) << "discovery on " << profile;
    return host;
}

inline std::string DevicePath(const std::string& bdf, const std::string& rest = "") {
    return "/sys/bus/pci/devices/" + bdf + rest;
}

inline std::string SmiFile(const std::string& bdf, const std::string& file) {
    return DevicePath(bdf, "/smi/" + file);
}

// The layout node directory (host path) whose "location" names `bdf`.
inline std::string LayoutNodeOf(const vhost::ScopedHost& host, const std::string& bdf) {
    const std::string nodes = "/sys/class/dravik/dkcd/layout/nodes/";
    for (const auto& entry : std::filesystem::directory_iterator(host.Path(nodes))) {
        const std::string node = nodes + entry.path().filename().string();
        if (host.ReadFile(node + "/location") == bdf + "\n") return node;
    }
    return {};
}

inline DkSmlDeviceInfo InfoOf(uint32_t index) {
    DkSmlDeviceInfo info{};
    EXPECT_EQ(dkSmlGetDeviceInfo(index, &info), DK_SML_SUCCESS) << "device " << index;
    return info;
}

inline std::vector<uint32_t> LimitedIndices() {
    uint32_t indices[16] = {};
    uint32_t count = 16;
    EXPECT_EQ(dkSmlGetAllLimitedDevices(&count, indices), DK_SML_SUCCESS);
    return {indices, indices + count};
}

inline DkSmlDeviceUnavailableReasonInfo ReasonOf(uint32_t index) {
    DkSmlDeviceUnavailableReasonInfo info{};
    EXPECT_EQ(dkSmlGetDeviceUnavailableReason(index, &info), DK_SML_SUCCESS) << "device " << index;
    return info;
}

}  // namespace dksml::test
