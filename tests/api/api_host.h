// A virtual host with a fresh discovery, shared by the API tests.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include <gtest/gtest.h>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::test {

// Indices that no device has on the "empty" host (and on most others).
constexpr uint32_t c_absentIndices[] = {0, 1, 99, 100, 4242, 0xFFFFFFFFu};

// `null` selects the null form of a pointer argument in the export tables.
template <typename T>
T* P(bool null, T& value) {
    return null ? nullptr : &value;
}
template <typename T, std::size_t N>
T* P(bool null, T (&values)[N]) {
    return null ? nullptr : values;
}

// Output storage for the export tables, which check only statuses: one
// aligned buffer, large enough for any record or array a table passes, stands
// for every output, and `Any(null)` converts to whatever pointer type the
// parameter has. In/out capacities have their own words, starting at 4.
struct TableOutputs {
    struct Pointer {
        void* address;
        template <typename T>
        operator T*() const {
            return static_cast<T*>(address);
        }
    };
    Pointer Any(bool null = false) { return Pointer{null ? nullptr : bytes}; }
    uint32_t count = 4;
    uint32_t count2 = 4;
    alignas(std::max_align_t) unsigned char bytes[16384] = {};
};

// The compatibility handle of compute-stack number `index`.
inline DkSmlExDevice HandleAt(uint32_t index) {
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(index, &handle), DK_SML_EX_SUCCESS) << index;
    return handle;
}

// Forces a discovery on the host so no earlier test's devices linger.
inline std::unique_ptr<vhost::ScopedHost> MakeHost(std::string_view profile) {
    auto host = std::make_unique<vhost::ScopedHost>(profile);
    (void)dkSmlInitWithFlags(1);
    return host;
}

}  // namespace dksml::test
