// Array readers: GetArrayValue (int, unsigned int) and GetHexArrayValue into
// arrays of fuzzed, exact size; AddValueForArray; GetBitState.
#include <memory>
#include <vector>

#include "fuzz_common.h"

using namespace dksml;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const fuzz::Input in = fuzz::Split(data, size);
    const std::size_t count = in.control % 64;

    {
        std::unique_ptr<int[]> values(new int[count + 0]);
        DkTextLines lines(in.text);
        while (!lines.AtEnd()) {
            fuzz::ExpectOnlyDkThrows([&] { GetArrayValue<int>(lines, values.get(), count, -1); });
        }
        AddValueForArray(values.get(), count, 1);
    }
    {
        std::unique_ptr<unsigned int[]> values(new unsigned int[count + 0]);
        DkTextLines lines(in.text);
        while (!lines.AtEnd()) {
            fuzz::ExpectOnlyDkThrows([&] { GetArrayValue<unsigned int>(lines, values.get(), count, 7u); });
        }
        AddValueForArray(values.get(), count, 3u);
    }
    {
        std::unique_ptr<unsigned int[]> values(new unsigned int[count + 0]);
        DkTextLines lines(in.text);
        while (!lines.AtEnd()) {
            fuzz::ExpectOnlyDkThrows([&] { GetHexArrayValue(lines, values.get(), count, 0xFFFFFFFFu); });
        }
    }
    {
        std::unique_ptr<int[]> bits(new int[count + 0]);
        fuzz::ExpectOnlyDkThrows([&] { GetBitState(in.text, bits.get(), count); });
    }
    {
        DkTextLines lines(in.text);
        fuzz::ExpectOnlyDkThrows([&] {
            int v[1];
            GetArrayValue<int>(lines, v, 1, 0);
            GetArrayValue<int>(lines, v, 1, 0);  // may run out of lines: throws DK_SML_ERROR_SYSFS
        });
    }
    return 0;
}
