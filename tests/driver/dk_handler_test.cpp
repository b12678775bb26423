// DkLinuxDriverDataHandler and the request table, on real files in a
// temporary directory.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/dk_host_root.h"
#include "core/idk_device.h"
#include "driver/dk_driver_data_handler.h"
#include "driver/dk_driver_interface_manager.h"
#include "driver/dk_text.h"
#include "dk_driver_test_util.h"
#include "dk_handler_fixture.h"
#include "support/dk_fake_device.h"

namespace dksml {
namespace {

using test::ReadWholeFile;
using test::ScopedEnv;
using test::FakeDevice;
using test::TempDir;

using test::HandlerTest;

// --- request table --------------------------------------------------------------

// A reserved number, an absent one and numbers past the end of the flat table
// give the empty name, without a read past the table. The names themselves are
// read back by the tests on real files here and on the virtual hosts, whose
// attribute names the host builder spells on its own.
TEST(RequestTable, UnnamedAndOutOfRangeNumbersGiveTheEmptyName) {
    for (uint32_t op : {1u, 149u, static_cast<uint32_t>(DRAVIK_SMI_OPCODE_END), 0xFFFFFFFFu}) {
        EXPECT_EQ(DkDriverInterfaceManager::GetDriverInterface(static_cast<dravik_smi_opcode>(op)), "") << op;
    }
}

// --- paths ----------------------------------------------------------------------

// Before an update the path is just the name. Which directory each die reads
// is pinned by FetchTable below, which reads the files back.
TEST(Handler, PathBeforeAnUpdateIsTheName) {
    DkLinuxDriverDataHandler notUpdated;
    EXPECT_EQ(notUpdated.GetDriverInterfaceFile(0, DRAVIK_SMI_SHOWCLOCKS), "showclocks");
    EXPECT_EQ(notUpdated.GetDriverInterfaceFile(1, DRAVIK_SMI_SHOWTEMP), "showtemp");
}

// --- fetch ----------------------------------------------------------------------

// Each die reads its directory (every die past 0 "smi1"), the whole text of
// small and large files; an absent file is 3, one that cannot be read as a
// file 4, and both leave the output alone.
TEST_F(HandlerTest, FetchTable) {
    std::string big;
    for (int i = 0; big.size() < 70000; ++i) big += "row" + std::to_string(i) + ": 1 2 3\n";
    m_dir.Write("dev/smi/showclocks", "GFX: 1200\nMEM: 800\n");
    m_dir.Write("dev/smi/showtemp", "die0\n");
    m_dir.Write("dev/smi1/showtemp", "die1\n");
    m_dir.Write("dev/smi/dumppptable", big);
    m_dir.Mkdir("dev/smi/showuse");
    const struct {
        unsigned int die;
        dravik_smi_opcode op;
        DkSmlReturn code;
        std::string text;
    } cases[] = {
        {0, DRAVIK_SMI_SHOWCLOCKS, DK_SML_SUCCESS, "GFX: 1200\nMEM: 800\n"},
        {2, DRAVIK_SMI_SHOWTEMP, DK_SML_SUCCESS, "die1\n"},
        {1, DRAVIK_SMI_SHOWTEMP, DK_SML_SUCCESS, "die1\n"},
        {0, DRAVIK_SMI_SHOWTEMP, DK_SML_SUCCESS, "die0\n"},
        {0, DRAVIK_SMI_DUMPPPTABLE, DK_SML_SUCCESS, big},
        {0, DRAVIK_SMI_SHOWVBIOS, DK_SML_ERROR_NOT_SUPPORTED, "untouched"},
        {0, DRAVIK_SMI_SHOWUSE, DK_SML_ERROR_SYSFS, "untouched"},
    };
    for (const auto& c : cases) EXPECT_EQ(Fetch(c.die, c.op, c.code), c.text) << c.op << "/" << c.die;
}

TEST(Handler, LongPathsTakeTheAllocatingRoute) {
    TempDir dir;
    std::string deep;
    for (int i = 0; i < 12; ++i) deep += std::string(60, static_cast<char>('a' + i)) + "/";
    const std::string smi = dir.Mkdir(deep + "smi") + "/";
    ASSERT_GT(smi.size(), 600u);
    dir.Write(deep + "smi/showclocks", "GFX: 1\n");
    DkLinuxDriverDataHandler handler;
    FakeDevice device(smi, smi, dir / "node");
    handler.UpdateDeviceProperties(&device);
    std::string text;
    ASSERT_EQ(handler.FetchData(0, DRAVIK_SMI_SHOWCLOCKS, text), DK_SML_SUCCESS);
    EXPECT_EQ(text, "GFX: 1\n");
    EXPECT_EQ(handler.FetchData(0, DRAVIK_SMI_SHOWTEMP, text), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(handler.FetchData(0, static_cast<dravik_smi_opcode>(1), text), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(text, "GFX: 1\n");
}

// --- set ------------------------------------------------------------------------

TEST_F(HandlerTest, SetWritesTextAndNewline) {
    const std::string path = m_dir.Write("dev/smi/setperflevel", "previous content\n");
    ASSERT_EQ(m_handler.SetData(0, DRAVIK_SMI_SETPERFLEVEL, "3"), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(path), "3\n");
    const std::string path1 = m_dir.Write("dev/smi1/setperflevel", "");
    ASSERT_EQ(m_handler.SetData(5, DRAVIK_SMI_SETPERFLEVEL, "gfx 2 1"), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(path1), "gfx 2 1\n");
}

// An absent file is 3 and is not created; an empty or absent name is 4; a
// refused write is 5.
TEST_F(HandlerTest, SetFailures) {
    EXPECT_EQ(m_handler.SetData(0, DRAVIK_SMI_FAN_CTRL, "1"), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_FALSE(CheckIfFileExist(m_smi0 + "fan_ctrl"));
    EXPECT_EQ(m_handler.SetData(0, static_cast<dravik_smi_opcode>(1), "1"), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(m_handler.SetData(1, static_cast<dravik_smi_opcode>(158), "1"), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(m_handler.SetData(0, static_cast<dravik_smi_opcode>(19), "1"), DK_SML_ERROR_SYSFS);  // absent
    // A symbolic link to /dev/full exists and refuses every write.
    if (!CheckIfFileExist("/dev/full")) GTEST_SKIP();
    ASSERT_EQ(symlink("/dev/full", (m_smi0 + "loglevel").c_str()), 0);
    EXPECT_EQ(m_handler.SetData(0, DRAVIK_SMI_LOGLEVEL, "1"), DK_SML_ERROR_SYSFS_WRITE);
}

// --- node files -----------------------------------------------------------------

TEST_F(HandlerTest, NodeActive) {
    struct Case {
        const char* content;
        DkSmlReturn code;
        int value;
    };
    const Case cases[] = {
        {"1\n", DK_SML_SUCCESS, 1},        {"0\n", DK_SML_SUCCESS, 0},
        {"  7\n", DK_SML_SUCCESS, 7},      {"abc\n", DK_SML_ERROR_SYSFS, -9},
        {"", DK_SML_ERROR_SYSFS, -9},      {"not supported\n", DK_SML_ERROR_NOT_SUPPORTED, -9},
        {nullptr, DK_SML_ERROR_SYSFS, -9},  // absent
    };
    for (const Case& c : cases) {
        if (c.content != nullptr) m_dir.Write("nodes/3/active", c.content);
        if (c.content == nullptr) std::remove((m_node + "/active").c_str());
        int active = -9;
        EXPECT_EQ(m_handler.FetchNodeDataActive(active), c.code) << (c.content ? c.content : "absent");
        EXPECT_EQ(active, c.value) << (c.content ? c.content : "absent");
    }
}

TEST_F(HandlerTest, NodeInactiveReason) {
    m_dir.Write("nodes/3/inactive_reason", "reason 0\n");
    m_dir.Write("nodes/3/inactive_reason2", "reason 2\n");
    std::string text = "keep";
    ASSERT_EQ(m_handler.FetchNodeDataInactiveReason(0, text), DK_SML_SUCCESS);
    EXPECT_EQ(text, "reason 0\n");
    ASSERT_EQ(m_handler.FetchNodeDataInactiveReason(2, text), DK_SML_SUCCESS);
    EXPECT_EQ(text, "reason 2\n");
    text = "keep";
    EXPECT_EQ(m_handler.FetchNodeDataInactiveReason(1, text), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(text, "keep");
    m_dir.Mkdir("nodes/3/inactive_reason3");
    EXPECT_EQ(m_handler.FetchNodeDataInactiveReason(3, text), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(text, "keep");
}

// --- register dump --------------------------------------------------------------

TEST_F(HandlerTest, WriteRegisterLineWithTheVariable) {
    const std::string debug = m_dir.Mkdir("debug");
    ScopedEnv env("ROOT_PATH_REG_DUMP", debug.c_str());
    ASSERT_EQ(m_handler.WriteRegister(0, 0x2000, 0x1), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(debug + "/reg_dump"), "0x0000000100002000\n");
    ASSERT_EQ(m_handler.WriteRegister(1, 0x123456789UL, 0xDEADBEEF), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(debug + "/reg_dump"), "0xdeadbeef123456789\n");
}

// Under a host root the device's paths are used as they are, and the register
// lines go under the root when ROOT_PATH_REG_DUMP is unset.
TEST_F(HandlerTest, HostRootKeepsDevicePathsAndHoldsTheRegisterLines) {
    ScopedEnv env("ROOT_PATH_REG_DUMP", nullptr);
    ScopedEnv root("DK_SMI_FSROOT", m_dir.Path().c_str());
    LoadHostRoot();
    DkLinuxDriverDataHandler handler;
    FakeDevice device("/already/full/smi/", "/already/full/smi1/", "/already/node");
    handler.UpdateDeviceProperties(&device);
    EXPECT_EQ(handler.GetDriverInterfaceFile(0, DRAVIK_SMI_SHOWUSE), "/already/full/smi/showuse");
    const std::string debug = m_dir.Mkdir("sys/kernel/debug/dkcd");
    EXPECT_EQ(m_handler.WriteRegister(0, 0x2000, 0x1), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(debug + "/reg_dump"), "0x0000000100002000\n");
    std::string text = "keep";
    EXPECT_EQ(m_handler.ReadRegister(0, 0x123456789UL, text), DK_SML_SUCCESS);
    EXPECT_EQ(text, "0x123456789\n");  // a plain file reads back the command
    EXPECT_EQ(m_handler.ReadRegister(0, 0x10, text), DK_SML_SUCCESS);
    EXPECT_EQ(text, "0x00000010\n");
    unsetenv("DK_SMI_FSROOT");
    LoadHostRoot();
}

// A missing directory is 4; a refused write (a link to /dev/full) is 5. The
// read writes its command first, so it fails the same way.
TEST_F(HandlerTest, RegisterDumpFailures) {
    if (!CheckIfFileExist("/dev/full")) GTEST_SKIP();
    const std::string refusing = m_dir.Mkdir("refusing");
    ASSERT_EQ(symlink("/dev/full", (refusing + "/reg_dump").c_str()), 0);
    const std::pair<std::string, DkSmlReturn> cases[] = {{m_dir / "no/such/dir", DK_SML_ERROR_SYSFS},
                                                         {refusing, DK_SML_ERROR_SYSFS_WRITE}};
    for (const auto& [debug, code] : cases) {
        ScopedEnv env("ROOT_PATH_REG_DUMP", debug.c_str());
        EXPECT_EQ(m_handler.WriteRegister(0, 0x2000, 1), code) << debug;
        std::string text = "keep";
        EXPECT_EQ(m_handler.ReadRegister(0, 0x2000, text), code) << debug;
        EXPECT_EQ(text, "keep");
    }
}

}  // namespace
}  // namespace dksml
