// An invalid profile must fail loudly, naming the entry, and before it touches
// the target directory.
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::ThrowsMessage;

struct InvalidCase {
    const char* name;
    const char* profile;
    const char* message;  // must appear in the error
};

const InvalidCase c_invalidCases[] = {
    {"UnknownModel", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKX9"}]})", "unknown model \"DKX9\""},
    {"UpperCaseBusId", R"({"devices": [{"bus_id": "0000:3B:00.0", "model": "DKK2"}]})", "bad bus id"},
    {"ShortBusId", R"({"devices": [{"bus_id": "3b:00.0", "model": "DKK2"}]})", "bad bus id"},
    {"FunctionEight", R"({"devices": [{"bus_id": "0000:3b:00.8", "model": "DKK2"}]})", "bad bus id"},
    {"MissingBusId", R"({"devices": [{"model": "DKK2"}]})", "bus_id"},
    {"GpuWithoutModel", R"({"devices": [{"bus_id": "0000:3b:00.0"}]})", "needs a \"model\""},
    {"MisspelledKey", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "die": 2}]})", "unknown key \"die\""},
    {"MisspelledTopKey", R"({"device": []})", "unknown key \"device\""},
    {"ThreeDies", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "dies": 3}]})", "dies must be 1 or 2"},
    {"BadVendor", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "vendor": "acme"}]})",
     "bad hexadecimal id \"acme\""},
    {"DuplicateBusId",
     R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2"}, {"bus_id": "0000:3b:00.0", "model": "DKK3"}]})",
     "duplicate bus id"},
    {"OrphanVirtualFunction",
     R"({"devices": [{"bus_id": "0000:3b:00.1", "function": "vf", "model": "DKK2", "parent": "0000:3b:00.0"}]})",
     "parent 0000:3b:00.0 is not a physical function"},
    {"LinkToNowhere",
     R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2"}],
         "links": [{"from": "0000:3b:00.0", "to": "0000:5e:00.0", "type": 4}]})",
     "to is not a GPU function"},
    {"CpuLinkWithoutNumber",
     R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2"}],
         "links": [{"from": "0000:3b:00.0", "to": "cpu:x", "type": 3}]})",
     "cpu:N"},
    {"DuplicateGpuId",
     R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "gpu_id": 7},
                     {"bus_id": "0000:5e:00.0", "model": "DKK2", "gpu_id": 7}]})",
     "duplicate gpu_id 7"},
    {"NodeClashesWithCpu",
     R"({"cpu_nodes": [{"node": 0, "cpus": "0-7"}],
         "devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "node_id": 0}]})",
     "layout node 0 is taken"},
    {"AttributeNotText", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "attributes": {"showtemp": 5}}]})",
     "showtemp"},
    {"OtherWithoutDeviceId", R"({"devices": [{"bus_id": "0000:3b:00.0", "function": "other", "vendor": "0x8086"}]})",
     "needs a \"device_id\""},
    {"BridgeWithChildrenOnTwoBuses",
     R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "bridges": ["0000:3a:00.0"]},
                     {"bus_id": "0000:3c:00.0", "model": "DKK2", "bridges": ["0000:3a:00.0"]}]})",
     "children sit on two buses"},
    {"BridgeUnderTwoParents",
     R"({"devices": [{"bus_id": "0000:12:00.0", "model": "DKK2", "bridges": ["0000:10:00.0", "0000:11:00.0"]},
                     {"bus_id": "0000:12:00.1", "model": "DKK2", "bridges": ["0000:05:00.0", "0000:11:00.0"]}]})",
     "placed under two parents"},
    {"ChildAboveItsBridge", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "bridges": ["0000:3c:00.0"]}]})",
     "not on a higher bus"},
    {"LinkGenerationSeven", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "pcie": {"max_gen": 7}}]})",
     "generation must be 1 to 6"},
    {"LinkWidthThree", R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "pcie": {"width": 3}}]})",
     "PCIe width"},
    {"LinkAboveItsMaximum",
     R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2", "pcie": {"max_gen": 3, "gen": 4}}]})",
     "exceeds the maximum"},
    {"LinkOfAnUnknownBridge",
     R"({"devices": [{"bus_id": "0000:3b:00.0", "model": "DKK2"}], "bridge_links": {"0000:99:00.0": {}}})",
     "no device lists it"},
    {"BadCpuList", R"({"cpu_nodes": [{"node": 0, "cpus": "0-"}]})", "bad cpu list"},
    {"ThreadsNotDividingTheNode", R"({"cpu_nodes": [{"node": 0, "cpus": "0-6", "threads_per_core": 2}]})",
     "threads_per_core"},
};

class InvalidProfile : public testing::TestWithParam<InvalidCase> {};

TEST_P(InvalidProfile, ThrowsWithAClearMessageAndLeavesTheDirectoryAlone) {
    const fs::path root = fs::temp_directory_path() / ("dkvhost-invalid-" + std::string(GetParam().name));
    fs::create_directories(root);
    std::ofstream(root / "keep") << "x";
    EXPECT_THAT([&] { WriteHost(json::parse(GetParam().profile), root); },
                ThrowsMessage<std::runtime_error>(HasSubstr(GetParam().message)));
    EXPECT_TRUE(fs::exists(root / "keep"));
    fs::remove_all(root);
}

INSTANTIATE_TEST_SUITE_P(Cases, InvalidProfile, testing::ValuesIn(c_invalidCases),
                         [](const testing::TestParamInfo<InvalidCase>& param) { return param.param.name; });

TEST(LoadProfile, UnknownNameOrMalformedJsonNamesTheFile) {
    const fs::path file = fs::temp_directory_path() / "dkvhost-malformed.json";
    std::ofstream(file) << "{\"devices\": [";
    const std::pair<std::string, std::string> cases[] = {{"no-such-profile", "no-such-profile.json"},
                                                         {file.string(), file.string() + " is not valid JSON"}};
    for (const auto& [name, message] : cases) {
        EXPECT_THAT([&] { LoadProfile(name); }, ThrowsMessage<std::runtime_error>(HasSubstr(message))) << name;
    }
    fs::remove(file);
}

}  // namespace
}  // namespace dksml::vhost
