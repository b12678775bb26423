// A read session: each record is read from the driver once while it is open,
// a write drops what was kept, and nothing is kept without one.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "driver/dk_read_session.h"
#include "dk_handler_fixture.h"

namespace dksml {
namespace {

using ReadSessionTest = test::HandlerTest;

TEST_F(ReadSessionTest, KeepsAnswersAndRefusalsPerDie) {
    m_dir.Write("dev/smi/showtemp", "die0\n");
    m_dir.Write("dev/smi1/showtemp", "die1\n");
    const DkReadSession session;
    EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWTEMP), "die0\n");
    EXPECT_EQ(Fetch(1, DRAVIK_SMI_SHOWTEMP), "die1\n");
    EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWVBIOS, DK_SML_ERROR_NOT_SUPPORTED), "untouched");

    // Changed, removed and created meanwhile: the session answers as before.
    m_dir.Write("dev/smi/showtemp", "changed\n");
    std::remove((m_smi1 + "showtemp").c_str());
    m_dir.Write("dev/smi/showvbios", "1.0\n");
    EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWTEMP), "die0\n");
    EXPECT_EQ(Fetch(2, DRAVIK_SMI_SHOWTEMP), "die1\n");  // every die past 0 is "smi1"
    EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWVBIOS, DK_SML_ERROR_NOT_SUPPORTED), "untouched");
}

TEST_F(ReadSessionTest, AWriteDropsWhatWasKept) {
    m_dir.Write("dev/smi/showclocks", "before\n");
    const DkReadSession session;
    EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWCLOCKS), "before\n");
    ASSERT_EQ(m_handler.SetData(0, DRAVIK_SMI_SHOWCLOCKS, "after"), DK_SML_SUCCESS);
    EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWCLOCKS), "after\n");
}

TEST_F(ReadSessionTest, EndsWithItsScopeAndNests) {
    m_dir.Write("dev/smi/showuse", "1\n");
    {
        const DkReadSession outer;
        EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWUSE), "1\n");
        {
            const DkReadSession inner;
            m_dir.Write("dev/smi/showuse", "2\n");
            EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWUSE), "1\n");
        }
        EXPECT_EQ(DkReadSession::Current(), &outer);
        EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWUSE), "1\n");
    }
    EXPECT_EQ(DkReadSession::Current(), nullptr);
    EXPECT_EQ(Fetch(0, DRAVIK_SMI_SHOWUSE), "2\n");
}

// A session of a large host keeps more records than its first table holds:
// every one is still found, with its own text or refusal, after the table grew.
TEST(ReadSession, KeepsEveryRecordOfManyDevicesAcrossGrowth) {
    const std::shared_ptr<const void> devices[] = {std::make_shared<int>(0), std::make_shared<int>(1)};
    constexpr int c_ops = 300;
    constexpr int c_records = 2 * 2 * c_ops;  // devices x dies x requests
    const DkReadSession session;
    int reads = 0;
    for (int pass = 0; pass < 2; ++pass) {
        for (int record = 0; record < c_records; ++record) {
            const int op = record % c_ops;
            const auto die = static_cast<unsigned int>(record / c_ops % 2);
            const bool refused = op % 7 == 0;
            const std::string expected = std::to_string(record);
            std::string text;
            const auto read = [&](std::string& out) {
                ++reads;
                out = expected;
                return refused ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_SUCCESS;
            };
            const DkSmlReturn status =
                DkReadSession::Current()->Fetch(devices[record / (2 * c_ops)], die, op, text, read);
            EXPECT_EQ(status, refused ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_SUCCESS);
            EXPECT_EQ(text, refused ? "" : expected);  // a refusal leaves it untouched
        }
    }
    EXPECT_EQ(reads, c_records);  // the second pass read nothing
}

}  // namespace
}  // namespace dksml
