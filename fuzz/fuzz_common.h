// Shared helpers of the fuzz targets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "driver/dk_text.h"

namespace dksml::fuzz {

// Splits the input into a control byte and the text (the text is a view of
// the fuzzer's buffer, not NUL-terminated, so any over-read is caught).
struct Input {
    uint8_t control = 0;
    std::string_view text;
};

inline Input Split(const uint8_t* data, std::size_t size) {
    Input in;
    if (size == 0) return in;
    in.control = data[0];
    in.text = std::string_view(reinterpret_cast<const char*>(data + 1), size - 1);
    return in;
}

// Runs a throwing helper; only DK_SML_ERROR_NOT_SUPPORTED or
// DK_SML_ERROR_SYSFS may come out of it.
template <typename Fn>
void ExpectOnlyDkThrows(Fn&& fn) {
    try {
        fn();
    } catch (DkSmlReturn code) {
        if (code != DK_SML_ERROR_NOT_SUPPORTED && code != DK_SML_ERROR_SYSFS) {
            std::fprintf(stderr, "unexpected code %d\n", static_cast<int>(code));
            std::abort();
        }
    }
}

inline void Check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "check failed: %s\n", what);
        std::abort();
    }
}

}  // namespace dksml::fuzz
