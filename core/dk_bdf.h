// PCI bus ids ("domain:bus:device.function", hexadecimal fields).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace dksml {

struct DkBdf {
    uint32_t domain = 0;
    uint32_t bus = 0;
    uint32_t device = 0;
    uint32_t function = 0;
};

// Splits a bus id: domain before the first ':', bus up to the last ':',
// device up to the first '.' after it, function the rest. Every field must be
// a non-empty run of hexadecimal digits of any width that fits 32 bits.
bool ParseBdf(std::string_view text, DkBdf& bdf);

// domain << 16 | bus << 8 | device << 3 | function.
uint32_t BdfToUint(const DkBdf& bdf);

}  // namespace dksml
