// Key/value parsers: ParseKeyValue (list and map), GetKVData/GetData with a
// buffer of fuzzed size, ExtractTagValue and ParseValueAfterColon, and the
// allocation-free VisitKeyValue against ParseKeyValue.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_common.h"

using namespace dksml;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const fuzz::Input in = fuzz::Split(data, size);

    DkKeyValueList list;
    const DkSmlReturn rl = ParseKeyValue(in.text, list);
    DkKeyValueMap map;
    const DkSmlReturn rm = ParseKeyValue(in.text, map);
    fuzz::Check(rl == rm, "list and map forms agree on the code");
    fuzz::Check(rl == DK_SML_SUCCESS || rl == DK_SML_ERROR_SYSFS, "ParseKeyValue code");
    if (rl == DK_SML_SUCCESS) {
        fuzz::Check(map.size() <= list.size(), "map no larger than the list");
        for (const auto& [label, values] : list) {
            fuzz::Check(!label.empty() && !values.empty(), "recorded entries are complete");
            fuzz::Check(map.count(label) == 1, "every label is in the map");
        }
    } else {
        fuzz::Check(list.empty() && map.empty(), "failure leaves the output alone");
    }

    // The allocation-free walk visits exactly the list's entries, in order.
    std::size_t visited = 0;
    bool same = true;
    const DkSmlReturn rv = VisitKeyValue(in.text, [&](std::string_view label, const int64_t* values, std::size_t count) {
        if (rl != DK_SML_SUCCESS) return;
        if (visited >= list.size()) {
            same = false;
            return;
        }
        const auto& [l, v] = list[visited++];
        same = same && l == label && count == std::min(v.size(), c_kvVisitMaxNumbers) &&
               std::equal(values, values + count, v.begin());
    });
    fuzz::Check(rv == rl, "VisitKeyValue code matches ParseKeyValue");
    if (rl == DK_SML_SUCCESS) fuzz::Check(same && visited == list.size(), "VisitKeyValue visits the list");

    // An exact-size heap buffer so that any overflow is caught.
    const std::size_t bufferSize = in.control;
    std::unique_ptr<char[]> buffer(bufferSize > 0 ? new char[bufferSize] : nullptr);
    const DkSmlReturn rk = GetKVData(in.text, buffer.get(), bufferSize);
    fuzz::Check(rk == DK_SML_SUCCESS || rk == DK_SML_ERROR_SYSFS, "GetKVData code");
    if (rk == DK_SML_SUCCESS && bufferSize > 0) {
        fuzz::Check(std::char_traits<char>::length(buffer.get()) < bufferSize, "terminated inside the buffer");
    }
    {
        DkTextLines lines(in.text);
        fuzz::ExpectOnlyDkThrows([&] { GetData(lines, buffer.get(), bufferSize); });
    }

    {
        DkTextLines lines(in.text);
        std::string_view line;
        while (lines.Next(line)) {
            std::string_view tag, value;
            if (ExtractTagValue(line, tag, value)) {
                fuzz::Check(tag.size() + value.size() == line.size() && !tag.empty() && tag.back() == ':',
                            "tag and value split the line");
            }
        }
    }

    std::vector<int> ints;
    const DkSmlReturn ri = ParseValueAfterColon<int>(in.text, ints);
    std::vector<unsigned int> uints;
    const DkSmlReturn ru = ParseValueAfterColon<unsigned int>(in.text, uints);
    fuzz::Check((ri == DK_SML_SUCCESS || ri == DK_SML_ERROR_SYSFS) && ri == ru, "ParseValueAfterColon code");
    return 0;
}
