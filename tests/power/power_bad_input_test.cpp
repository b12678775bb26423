// Every power, usage and memory reader fed broken attribute files through the
// C API: each answers a defined failure code, writes nothing past the
// caller's array and reports nothing half-read as success.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "api/api_host.h"

namespace dksml::test {
namespace {

constexpr const char* c_device = "/sys/bus/pci/devices/0000:b0:00.0/smi/";  // DKK6U, one die
constexpr uint32_t c_guard = 0xfeedu;

struct Reader {
    const char* name;
    std::vector<const char*> files;  // every file is broken at once
    std::function<DkSmlReturn(uint32_t index, TableOutputs& outputs)> call;
};

// The calls whose outputs are arrays keep one guard word past the array;
// the others write into the shared output storage.
const std::vector<Reader>& Readers() {
    static const std::vector<Reader> readers{
        {"pmbus", {"showpmbusvol", "showpmbuscur", "showpmbuspower"},
         [](uint32_t i, TableOutputs& o) { return dkSmlGetPmbusInfo(i, DK_SML_PMBUS_UNIT_SOC, o.Any()); }},
        {"board", {"showboardpowerinfo"},
         [](uint32_t i, TableOutputs&) {
             DkSmlBoardWayElectricInfo ways[3]{};
             ways[2].values[0] = c_guard;
             uint32_t count = 2;
             const DkSmlReturn result = dkSmlGetBoardPowerInfo(i, &count, ways);
             EXPECT_EQ(ways[2].values[0], c_guard);
             return result;
         }},
        {"limit", {"config_tbp"}, [](uint32_t i, TableOutputs& o) { return dkSmlGetBoardPowerLimit(i, o.Any()); }},
        {"pci state", {"pcipowerstate"}, [](uint32_t i, TableOutputs& o) { return dkSmlGetPciPowerState(i, o.Any()); }},
        {"ip states", {"ippowerstate"},
         [](uint32_t i, TableOutputs&) {
             int32_t states[13];
             states[12] = static_cast<int32_t>(c_guard);
             uint32_t count = 12;
             const DkSmlReturn result = dkSmlGetPowerStateInfo(i, DK_SML_DPM_IP_XCORE, states, &count);
             EXPECT_EQ(states[12], static_cast<int32_t>(c_guard));
             return result;
         }},
        {"engine usage", {"showuse"},
         [](uint32_t i, TableOutputs& o) { return dkSmlGetDeviceIpUsage(i, DK_SML_USAGE_IP_VPUD, o.Any()); }},
        {"xcore usage", {"showxcuse"},
         [](uint32_t i, TableOutputs& o) { return dkSmlGetDeviceIpUsage(i, DK_SML_USAGE_IP_XCORE, o.Any()); }},
        {"ap table", {"deviceinfo", "showxcuse"},
         [](uint32_t i, TableOutputs&) {
             std::vector<uint32_t> table(12 * 4 + 1, 0);
             table.back() = c_guard;
             uint32_t dpcs = 12;
             uint32_t aps = 4;
             const DkSmlReturn result = dkSmlGetXcoreApUsage(i, table.data(), &dpcs, &aps);
             EXPECT_EQ(table.back(), c_guard);
             return result;
         }},
        {"ap switch", {"apuseageswitch"},
         [](uint32_t i, TableOutputs& o) { return dkSmlGetApUsageToggle(i, o.Any()); }},
        {"memory", {"showmeminfo", "showmemuse"},
         [](uint32_t i, TableOutputs& o) { return dkSmlGetMemoryInfo(i, o.Any()); }},
    };
    return readers;
}

// Files that are no regular file go through the read every reader shares:
// the API read-path tests plant those.
struct Content {
    const char* name;
    std::string text;  // written as the file
    bool remove = false;
};

std::vector<Content> Contents() {
    return {
        {"missing", "", true},
        {"empty", ""},
        {"whitespace", "  \n\t\n \n"},
        {"garbage", "lorem ipsum\ndolor: sit amet\n"},
        {"huge", std::string(70000, '7')},
        {"huge lines", std::string(70000, ':') + "\n" + std::string(70000, 'f') + "\n"},
        {"binary", std::string("\x00\x01\xfe\xff:\x00\x7f\n\x80", 9)},
        {"out of range", "soc voltage: 99999999999999999999\ndpc_count 99999999999\nap_per_dpc 4\n"
                         "vpud use: 99999999999999999999\nx: 99999999999999999999\n"},
    };
}

// Null outputs, unknown devices and dies beyond the device are in the API
// frame tests; the kinds out of range are not.
TEST(PowerBadInput, EveryReaderAnswersADefinedFailure) {
    auto host = std::make_unique<vhost::ScopedHost>("server");
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    const uint32_t index = 4;
    DkSmlDeviceInfo info{};
    ASSERT_EQ(dkSmlGetDeviceInfo(index, &info), DK_SML_SUCCESS);
    ASSERT_STREQ(info.bdfId, "0000:b0:00.0");
    int32_t usage = 0;
    EXPECT_EQ(dkSmlGetDeviceIpUsage(index, static_cast<DkSmlUsageIp>(77), &usage), DK_SML_ERROR_INVALID_INPUT);
    DkSmlPmbusInfo pmbus{};
    EXPECT_EQ(dkSmlGetPmbusInfo(index, static_cast<DkSmlPmbusUnit>(77), &pmbus), DK_SML_ERROR_NOT_SUPPORTED);

    TableOutputs outputs;
    for (const Reader& reader : Readers()) {
        std::vector<std::string> saved;
        for (const char* file : reader.files) saved.push_back(host->ReadFile(std::string(c_device) + file));
        ASSERT_EQ(reader.call(index, outputs), DK_SML_SUCCESS) << reader.name << " on the host as written";
        for (const Content& content : Contents()) {
            for (const char* file : reader.files) {
                const std::string path = std::string(c_device) + file;
                host->Remove(path);
                if (!content.remove) host->WriteFile(path, content.text);
            }
            const DkSmlReturn result = reader.call(index, outputs);
            EXPECT_NE(result, DK_SML_SUCCESS) << reader.name << " / " << content.name;
            EXPECT_TRUE(result == DK_SML_ERROR_FAILURE || result == DK_SML_ERROR_NOT_SUPPORTED ||
                        result == DK_SML_ERROR_SYSFS)
                << reader.name << " / " << content.name << " answered " << result;
        }
        for (std::size_t f = 0; f < reader.files.size(); ++f) {
            const std::string path = std::string(c_device) + reader.files[f];
            host->Remove(path);
            host->WriteFile(path, saved[f]);
        }
    }
}

}  // namespace
}  // namespace dksml::test
