// Power and utilisation parsers: the allocation-free key/value walk (checked
// against ParseKeyValue), the PMBus fragment lookup, engine usage, the AP
// table with an exact-size caller array, and the memory pools.
//
// Input: a control byte (capacities), then up to four texts separated by
// '\x01': deviceinfo, showxcuse, showuse, showmeminfo/showmemuse.
#include <memory>
#include <string>
#include <vector>

#include "driver/dk_key_value_scan.h"
#include "features/power/dk_power_tables.h"
#include "features/utilization/dk_utilization.h"
#include "fuzz_common.h"
#include "support/dk_fake_device.h"

using namespace dksml;

namespace {

std::vector<std::string> Parts(std::string_view text) {
    std::vector<std::string> parts;
    for (int i = 0; i < 3; ++i) {
        const std::size_t cut = text.find('\x01');
        if (cut == std::string_view::npos) break;
        parts.emplace_back(text.substr(0, cut));
        text.remove_prefix(cut + 1);
    }
    parts.emplace_back(text);
    while (parts.size() < 4) parts.emplace_back(parts.front());
    return parts;
}

class Device : public test::FakeDevice {
public:
    bool IsPf() const override { return false; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const fuzz::Input in = fuzz::Split(data, size);

    // The scan keeps exactly the lines the container parser keeps.
    DkKeyValueList list;
    const DkSmlReturn listed = ParseKeyValue(in.text, list);
    std::size_t visited = 0;
    bool same = true;
    const DkSmlReturn scanned = ScanKeyValueLines(in.text, [&](std::string_view label, std::string_view) {
        if (visited >= list.size() || list[visited].first != label) same = false;
        ++visited;
        (void)FindPmbusFragment(label);
    });
    fuzz::Check(listed == scanned, "scan and ParseKeyValue agree on the code");
    if (listed == DK_SML_SUCCESS) fuzz::Check(same && visited == list.size(), "scan visits the kept lines");

    const std::vector<std::string> parts = Parts(in.text);
    Device device;
    device.Serve(0, DRAVIK_SMI_DEVICEINFO, parts[0]);
    device.Serve(0, DRAVIK_SMI_SHOWXCUSE, parts[1]);
    device.Serve(0, DRAVIK_SMI_SHOWUSE, parts[2]);
    device.Serve(0, DRAVIK_SMI_SHOWMEMINFO, parts[3]);
    device.Serve(0, DRAVIK_SMI_SHOWMEMUSE, parts[3]);
    DkUtilization service;

    for (int ip = 0; ip <= 5; ++ip) {
        int32_t usage = 0;
        const DkSmlReturn r = service.GetDieUsage(&device, 0, static_cast<DkSmlUsageIp>(ip), &usage);
        fuzz::Check(r == DK_SML_SUCCESS || r == DK_SML_ERROR_NOT_SUPPORTED || r == DK_SML_ERROR_SYSFS ||
                        r == DK_SML_ERROR_INVALID_INPUT,
                    "usage code");
    }

    // The caller's array is exactly capacity-sized on the heap.
    const uint32_t dpcCapacity = in.control & 0x0f;
    const uint32_t apCapacity = in.control >> 4;
    const std::size_t slots = static_cast<std::size_t>(dpcCapacity) * apCapacity;
    std::unique_ptr<uint32_t[]> table(new uint32_t[slots == 0 ? 1 : slots]);
    uint32_t dpcs = dpcCapacity;
    uint32_t aps = apCapacity;
    const DkSmlReturn r = service.GetDieXcoreApUsageInfo(&device, 0, table.get(), &dpcs, &aps);
    if (r == DK_SML_SUCCESS) fuzz::Check(dpcs <= dpcCapacity && aps <= slots, "stored within the capacity");

    DkSmlMemoryInfo memory{};
    (void)service.GetDieMemoryInfo(&device, 0, &memory);
    return 0;
}
