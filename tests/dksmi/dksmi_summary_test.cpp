// The plain table collects only what it prints; the detail view collects
// everything. With records missing, the table must still say what the detail
// view says.
#include <gtest/gtest.h>

#include <sstream>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {

using DksmiSummary = DksmiTest;

// The cell under `column` in the table row of device `index`: dksmi pads
// every column, so a cell starts where its header does and ends at the next
// run of blanks.
std::string Cell(const std::string& table, const std::string& index, const std::string& column) {
    const size_t header = table.find("IDX  NAME");
    const size_t title = table.find(column, header);
    const size_t row = table.find("\n" + index + " ", header);
    if (header == std::string::npos || title == std::string::npos || row == std::string::npos) return "<no cell>";
    const std::string line = table.substr(row + 1, table.find('\n', row + 1) - row - 1);
    const size_t offset = title - header;
    return offset < line.size() ? line.substr(offset, line.find("  ", offset) - offset) : "<no cell>";
}

// The line of the detail view that starts with `label` (after its indent).
std::string DetailValue(const std::string& detail, const std::string& label) {
    std::istringstream in(detail);
    std::string line;
    while (std::getline(in, line)) {
        const size_t start = line.find_first_not_of(' ');
        if (start != std::string::npos && line.compare(start, label.size(), label) == 0) {
            const size_t value = line.find_first_not_of(' ', start + label.size());
            return value == std::string::npos ? "" : line.substr(value);
        }
    }
    return "<missing>";
}

TEST_F(DksmiSummary, TableAgreesWithTheDetailWhenDieZeroRecordsAreMissing) {
    ScopedHost host("server"sv);
    // Device 0: die 0's temperature record gone, so its hot spot is not asked
    // for even though die 1 still reports one. Device 1: die 0's clocks gone.
    host.Remove(DieDirectory("0000:1b:00.0", 0) + "showtemp");
    host.Remove(DieDirectory("0000:1c:00.0", 0) + "showclocks");
    const RunResult table = RunDksmi("");
    ASSERT_EQ(table.exitCode, 0) << table.err;

    EXPECT_EQ(Cell(table.out, "0", "HOTSPOT"), DetailValue(RunDksmi("-i 0").out, "Hot spot")) << table.out;
    EXPECT_EQ(Cell(table.out, "0", "HOTSPOT"), "N/A");
    EXPECT_EQ(Cell(table.out, "1", "XCORE MHZ"), "N/A") << table.out;
    EXPECT_EQ(DetailValue(RunDksmi("-i 1").out, "Clocks (MHz)"), "N/A");
    EXPECT_EQ(Cell(table.out, "1", "HOTSPOT"), DetailValue(RunDksmi("-i 1").out, "Hot spot"));
}

}  // namespace
}  // namespace dksmi::test
