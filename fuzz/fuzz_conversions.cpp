// Conversions: ExtractNumber for every supported type is checked against
// std::istringstream, the non-throwing stoi family against std::sto*; the
// throwing forms and the GetValue readers may only throw DK_SML_ERROR_NOT_SUPPORTED or DK_SML_ERROR_SYSFS.
#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

#include "fuzz_common.h"

using namespace dksml;

namespace {

template <typename T>
void SameAsStream(std::string_view text) {
    std::istringstream stream{std::string(text)};
    T expected = T(42);
    stream >> expected;
    const bool streamOk = !stream.fail();
    T got = T(42);
    const bool ok = ExtractNumber<T>(text, got);
    fuzz::Check(ok == streamOk, "ExtractNumber success matches the stream");
    if (ok) {
        fuzz::Check(std::memcmp(&got, &expected, sizeof(T)) == 0, "ExtractNumber value matches the stream");
    } else {
        fuzz::Check(got == T(42), "ExtractNumber leaves the output on failure");
    }
}

template <typename Fn>
auto StdResult(Fn&& fn, bool& ok) -> decltype(fn()) {
    try {
        ok = true;
        return fn();
    } catch (const std::exception&) {
        ok = false;
        return {};
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const fuzz::Input in = fuzz::Split(data, size);
    const std::string_view text = in.text;

    // The stream comparison copies the text: keep it to sane sizes.
    if (text.size() <= 4096) {
        SameAsStream<int>(text);
        SameAsStream<unsigned int>(text);
        SameAsStream<long>(text);
        SameAsStream<unsigned long>(text);
        SameAsStream<long long>(text);
        SameAsStream<unsigned long long>(text);
        SameAsStream<short>(text);
        SameAsStream<unsigned short>(text);
        SameAsStream<float>(text);
        SameAsStream<double>(text);
    } else {
        int i;
        double d;
        (void)ExtractNumber(text, i);
        (void)ExtractNumber(text, d);
    }

    static const int bases[] = {0, 10, 16, 8, 2, 36, 1, 37, -1};
    const int base = bases[in.control % (sizeof bases / sizeof bases[0])];
    const std::string copy(text);
    if (base == 1 || base > 36 || base < 0) {
        // std::sto* cannot be asked here (strtol leaves its end pointer unset).
        int i = 5;
        unsigned long ul = 5;
        unsigned int u = 5;
        fuzz::Check(!stoi_nt(text, i, base) && !stoul_nt(text, ul, base) && !stoui_nt(text, u, base) &&
                        i == 5 && ul == 5 && u == 5,
                    "invalid bases fail");
    } else {
        int gotInt = 5;
        bool intOk = false;
        const int expectedInt = StdResult([&] { return std::stoi(copy, nullptr, base); }, intOk);
        const bool okInt = stoi_nt(text, gotInt, base);
        fuzz::Check(okInt == intOk && (okInt ? gotInt == expectedInt : gotInt == 5), "stoi_nt matches std::stoi");

        unsigned long gotUl = 5;
        bool ulOk = false;
        const unsigned long expectedUl = StdResult([&] { return std::stoul(copy, nullptr, base); }, ulOk);
        const bool okUl = stoul_nt(text, gotUl, base);
        fuzz::Check(okUl == ulOk && (okUl ? gotUl == expectedUl : gotUl == 5), "stoul_nt matches std::stoul");
        unsigned int low = 5;
        fuzz::Check(stoui_nt(text, low, base) == ulOk && (!ulOk || low == static_cast<unsigned int>(expectedUl)),
                    "stoui_nt keeps the low 32 bits");
    }
    {
        float got = 5;
        bool stdOk = false;
        const float expected = StdResult([&] { return std::stof(copy); }, stdOk);
        const bool ok = stof_nt(text, got);
        fuzz::Check(ok == stdOk, "stof_nt matches std::stof");
        if (ok && !std::isnan(expected)) fuzz::Check(got == expected, "stof_nt value");
    }
    fuzz::ExpectOnlyDkThrows([&] { (void)dksml::stoi(text, base); });
    fuzz::ExpectOnlyDkThrows([&] { (void)dksml::stoul(text, base); });
    fuzz::ExpectOnlyDkThrows([&] { (void)dksml::stol(text); });
    fuzz::ExpectOnlyDkThrows([&] { (void)dksml::stof(text); });
    (void)IsNumber(text);
    (void)IntToHexString(static_cast<int>(text.size()) - 1000);

    // Every throwing reader on every line.
    DkTextLines lines(text);
    while (!lines.AtEnd()) {
        switch (in.control % 11) {
            case 0: fuzz::ExpectOnlyDkThrows([&] { std::string s; GetValue(lines, s); }); break;
            case 1: fuzz::ExpectOnlyDkThrows([&] { unsigned short v; GetValue(lines, v); }); break;
            case 2: fuzz::ExpectOnlyDkThrows([&] { unsigned int v; GetValue(lines, v, base); }); break;
            case 3: fuzz::ExpectOnlyDkThrows([&] { int v; GetValue(lines, v); }); break;
            case 4: fuzz::ExpectOnlyDkThrows([&] { long v; GetValue(lines, v); }); break;
            case 5: fuzz::ExpectOnlyDkThrows([&] { unsigned long v; GetValue(lines, v); }); break;
            case 6: fuzz::ExpectOnlyDkThrows([&] { unsigned int v; GetValueSpace(lines, v); }); break;
            case 7: fuzz::ExpectOnlyDkThrows([&] { int v; GetValueD(lines, v); }); break;
            case 8: fuzz::ExpectOnlyDkThrows([&] { unsigned int v; GetValueD(lines, v); }); break;
            case 9: fuzz::ExpectOnlyDkThrows([&] { unsigned long v; GetValueD(lines, v); }); break;
            default: {
                std::string_view line;
                (void)lines.Next(line);
                break;
            }
        }
    }
    return 0;
}
