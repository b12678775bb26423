// A handler on real files: a device directory with "smi/" and "smi1/" and a
// layout node directory in a temporary directory.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "driver/dk_driver_data_handler.h"
#include "dk_driver_test_util.h"
#include "support/dk_fake_device.h"

namespace dksml::test {

class HandlerTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_smi0 = m_dir.Mkdir("dev/smi") + "/";
        m_smi1 = m_dir.Mkdir("dev/smi1") + "/";
        m_node = m_dir.Mkdir("nodes/3");
        FakeDevice device(m_smi0, m_smi1, m_node);
        m_handler.UpdateDeviceProperties(&device);
    }

    // The fetched text, "untouched" when the fetch leaves it alone.
    std::string Fetch(unsigned int die, dravik_smi_opcode op, DkSmlReturn expected = DK_SML_SUCCESS) {
        std::string text = "untouched";
        EXPECT_EQ(m_handler.FetchData(die, op, text), expected) << op << "/" << die;
        return text;
    }

    TempDir m_dir;
    std::string m_smi0, m_smi1, m_node;
    DkLinuxDriverDataHandler m_handler;
};

}  // namespace dksml::test
