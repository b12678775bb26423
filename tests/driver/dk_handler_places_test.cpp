// Requests the request table places outside the smi directories: the PCI
// function's directory and its upstream port, the layout node, the places
// the handler opens at each access, indexed names and listings.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "driver/dk_driver_data_handler.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::ReadWholeFile;
using test::TempDir;

std::string g_placeRoot;  // the test's directory of per-access places

std::string PlaceDir(DkRequestPlace place) {
    switch (place) {
        case DkRequestPlace::LayoutNodes: return g_placeRoot + "/layout";
        case DkRequestPlace::Firmware: return g_placeRoot + "/dmi";
        default: return {};  // the debug directory is left out: absent
    }
}

class HandlerPlacesTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_dir.Write("bridge/max_link_speed", "16.0 GT/s PCIe\n");
        m_dir.Write("bridge/fn/max_link_width", "16\n");
        m_dir.Write("bridge/fn/sgpu/sgpu2/meminfo", "1 2 3\n");
        m_dir.Write("bridge/fn/sgpu/sgpu2/vram_quota", "0\n");
        m_dir.Write("bridge/fn/sgpu/create", "");
        m_dir.Write("node/direct_links/1/properties", "to 3\ntype 4\n");
        m_dir.Write("layout/7/unique_id", "abc\n");
        m_dir.Write("dmi/DMI", "table");
        g_placeRoot = m_dir.Path().string();
        DkDriverDataSource source;
        source.functionPath = m_dir / "bridge/fn";
        source.nodePath = m_dir / "node";
        source.placeDir = PlaceDir;
        m_handler.Attach(std::move(source));
    }

    TempDir m_dir;
    DkLinuxDriverDataHandler m_handler;
    std::string m_text;
};

TEST_F(HandlerPlacesTest, EachPlaceAnswersFromItsDirectory) {
    const struct {
        unsigned int index;
        dravik_smi_opcode op;
        DkSmlReturn status;
        const char* text;
    } cases[] = {
        {0, DRAVIK_SMI_MAXLINKWIDTH, DK_SML_SUCCESS, "16\n"},
        {0, DRAVIK_SMI_UPSTREAMMAXLINKSPEED, DK_SML_SUCCESS, "16.0 GT/s PCIe\n"},
        {0, DRAVIK_SMI_MAXLINKSPEED, DK_SML_ERROR_NOT_SUPPORTED, ""},
        {2, DRAVIK_SMI_SGPU_SLICE_MEMINFO, DK_SML_SUCCESS, "1 2 3\n"},
        {3, DRAVIK_SMI_SGPU_SLICE_MEMINFO, DK_SML_ERROR_NOT_SUPPORTED, ""},
        {2, DRAVIK_SMI_SGPU_SLICE, DK_SML_ERROR_SYSFS, ""},  // a directory is never text
        {3, DRAVIK_SMI_SGPU_SLICE, DK_SML_ERROR_NOT_SUPPORTED, ""},
        {1, DRAVIK_SMI_NODE_DIRECT_LINK_PROPERTIES, DK_SML_SUCCESS, "to 3\ntype 4\n"},
        {7, DRAVIK_SMI_LAYOUT_NODE_UNIQUE_ID, DK_SML_SUCCESS, "abc\n"},
        {0, DRAVIK_SMI_DMITABLE, DK_SML_SUCCESS, "table"},
        {0, DRAVIK_SMI_SELECTGPUID, DK_SML_ERROR_NOT_SUPPORTED, ""},
        {4294967295u, DRAVIK_SMI_LAYOUT_NODE_ACTIVE, DK_SML_ERROR_NOT_SUPPORTED, ""},
    };
    for (const auto& c : cases) {
        m_text = "kept";
        EXPECT_EQ(m_handler.FetchIndexedData(c.index, c.op, m_text), c.status) << c.op << "/" << c.index;
        EXPECT_EQ(m_text, c.status == DK_SML_SUCCESS ? c.text : "kept") << c.op << "/" << c.index;
    }
}

TEST_F(HandlerPlacesTest, AFifoInTheFunctionDirectoryAnswersAtOnce) {
    ASSERT_EQ(mkfifo((m_dir / "bridge/fn/max_link_speed").c_str(), 0644), 0);
    EXPECT_EQ(m_handler.FetchData(0, DRAVIK_SMI_MAXLINKSPEED, m_text), DK_SML_ERROR_SYSFS);
}

TEST_F(HandlerPlacesTest, WritesAndListings) {
    ASSERT_EQ(m_handler.SetIndexedData(2, DRAVIK_SMI_SGPU_SLICE_VRAM_QUOTA, "64"), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(m_dir / "bridge/fn/sgpu/sgpu2/vram_quota"), "64\n");
    EXPECT_EQ(m_handler.SetIndexedData(5, DRAVIK_SMI_SGPU_SLICE_VRAM_QUOTA, "64"), DK_SML_ERROR_NOT_SUPPORTED);
    ASSERT_EQ(m_handler.SetData(0, DRAVIK_SMI_SGPU_CREATE, "8"), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(m_dir / "bridge/fn/sgpu/create"), "8\n");
    // Command files are created when absent, as a virtual host needs.
    ASSERT_EQ(m_handler.SetData(0, DRAVIK_SMI_SGPU_REMOVE, "2"), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(m_dir / "bridge/fn/sgpu/remove"), "2\n");
    EXPECT_EQ(m_handler.SetData(0, DRAVIK_SMI_SGPU_MODE, "sgpu"), DK_SML_ERROR_NOT_SUPPORTED);

    std::vector<std::string> names{"stale"};
    ASSERT_EQ(m_handler.ListData(0, DRAVIK_SMI_SGPU_DIR, names), DK_SML_SUCCESS);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"create", "remove", "sgpu2"}));
    EXPECT_EQ(m_handler.ListData(0, DRAVIK_SMI_NODE_INDIRECT_LINKS, names), DK_SML_ERROR_NOT_SUPPORTED);
}

}  // namespace
}  // namespace dksml
