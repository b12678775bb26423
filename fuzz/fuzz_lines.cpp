// Line readers: DkTextLines, the extractors, TrimView, the ReadSysfs cursor
// forms (one and several values of every supported type), ReadStringStream
// and ProcessValueByColon.
#include <string>
#include <vector>

#include "fuzz_common.h"

using namespace dksml;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const fuzz::Input in = fuzz::Split(data, size);

    // The cursor must cover the text exactly: lines + newlines = text.
    {
        DkTextLines lines(in.text);
        std::string_view line;
        std::size_t covered = 0;
        std::size_t count = 0;
        while (lines.Next(line)) {
            fuzz::Check(line.data() >= in.text.data() &&
                            line.data() + line.size() <= in.text.data() + in.text.size(),
                        "line inside the text");
            fuzz::Check(line.find('\n') == std::string_view::npos, "no newline in a line");
            covered += line.size() + 1;
            ++count;
            const std::string_view raw = ExtractRawValueStr(line);
            const std::string_view colon = ExtractValueStrByColon(line);
            const std::string_view space = ExtractValueStrSeparatedBySpace(line);
            fuzz::Check(raw.size() == line.size() && colon.size() <= line.size() && space.size() <= line.size(),
                        "extractors stay inside the line");
            const std::string_view trimmed = TrimView(line);
            fuzz::Check(trimmed.size() <= line.size(), "trim shrinks");
        }
        fuzz::Check(lines.AtEnd(), "at end");
        fuzz::Check(covered == in.text.size() || covered == in.text.size() + 1, "lines cover the text");
        (void)count;
    }

    const ValueExtractor extractors[] = {ExtractRawValueStr, ExtractValueStrByColon,
                                         ExtractValueStrSeparatedBySpace};
    const ValueExtractor extractor = extractors[in.control % 3];

    {
        DkTextLines lines(in.text);
        int i = 0;
        unsigned int u = 0;
        long l = 0;
        unsigned long ul = 0;
        long long ll = 0;
        unsigned long long ull = 0;
        short s = 0;
        unsigned short us = 0;
        float f = 0;
        double d = 0;
        bool b = false;
        std::string str;
        const DkSmlReturn r = ReadSysfs(lines, extractor, i, u, l, ul, ll, ull, s, us, f, d, b, str);
        fuzz::Check(r == DK_SML_SUCCESS || r == DK_SML_ERROR_NOT_SUPPORTED || r == DK_SML_ERROR_SYSFS,
                    "ReadSysfs code");
    }
    {
        DkTextLines lines(in.text);
        int one = 0;
        const DkSmlReturn r = ReadSysfs(lines, extractor, one);
        fuzz::Check(r == DK_SML_SUCCESS || r == DK_SML_ERROR_NOT_SUPPORTED || r == DK_SML_ERROR_SYSFS,
                    "ReadSysfs one code");
    }
    {
        const std::size_t count = in.control % 8;
        std::vector<unsigned long long> out(count);
        DkTextLines lines(in.text);
        const DkSmlReturn r =
            ReadSysfs<unsigned long long>(lines, ProcessValueByColon<unsigned long long>, out.data(), count);
        fuzz::Check(r == DK_SML_SUCCESS || r == DK_SML_ERROR_SYSFS, "line parser code");
        std::vector<int> ints(count);
        DkTextLines again(in.text);
        (void)ReadSysfs<int>(again, ProcessValueByColon<int>, ints.data(), count);
        std::vector<long> longs(count);
        DkTextLines third(in.text);
        (void)ReadSysfs<long>(third, ProcessValueByColon<long>, longs.data(), count);
    }
    {
        DkTextLines lines(in.text);
        unsigned int u = 0;
        while (!lines.AtEnd()) {
            const DkSmlReturn r = ReadStringStream<unsigned int>(lines, ProcessValueByColon<unsigned int>, &u);
            fuzz::Check(r == DK_SML_SUCCESS || r == DK_SML_ERROR_SYSFS, "ReadStringStream code");
        }
        fuzz::Check(ReadStringStream<unsigned int>(lines, ProcessValueByColon<unsigned int>, &u) ==
                        DK_SML_ERROR_SYSFS,
                    "no line gives 4");
    }
    return 0;
}
