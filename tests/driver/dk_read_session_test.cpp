// A read session: each record is read from the driver once while it is open,
// a write drops what was kept, and nothing is kept without one.
#include <gtest/gtest.h>

#include <cstdio>
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

}  // namespace
}  // namespace dksml
