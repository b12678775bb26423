// The plain table collects only what it prints; the detail view collects
// everything. With records missing, the table must still say what the detail
// view says.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <vector>

#include "dksmi/dksmi_runner.h"

namespace dksmi::test {
namespace {


using DksmiSummary = DksmiTest;

// Cells of a table line: columns are two or more blanks apart.
std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    size_t at = 0;
    while (at < line.size()) {
        size_t end = line.find("  ", at);
        if (end == std::string::npos) end = line.size();
        cells.push_back(line.substr(at, end - at));
        at = line.find_first_not_of(' ', end);
        if (at == std::string::npos) break;
    }
    return cells;
}

// Row of the device table by its IDX cell, keyed by header.
std::map<std::string, std::string> Row(const std::string& table, const std::string& index) {
    std::istringstream in(table);
    std::string line;
    std::vector<std::string> headers;
    while (std::getline(in, line)) {
        if (line.rfind("IDX  NAME", 0) == 0) headers = Cells(line);
        if (headers.empty() || line.rfind(index + " ", 0) != 0) continue;
        const std::vector<std::string> cells = Cells(line);
        std::map<std::string, std::string> row;
        for (size_t c = 0; c < headers.size() && c < cells.size(); ++c) row[headers[c]] = cells[c];
        return row;
    }
    return {};
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

    const std::map<std::string, std::string> first = Row(table.out, "0");
    ASSERT_FALSE(first.empty()) << table.out;
    EXPECT_EQ(first.at("HOTSPOT"), DetailValue(RunDksmi("-i 0").out, "Hot spot")) << table.out;
    EXPECT_EQ(first.at("HOTSPOT"), "N/A");

    const std::map<std::string, std::string> second = Row(table.out, "1");
    ASSERT_FALSE(second.empty()) << table.out;
    EXPECT_EQ(second.at("XCORE MHZ"), "N/A") << table.out;
    EXPECT_EQ(DetailValue(RunDksmi("-i 1").out, "Clocks (MHz)"), "N/A");
    EXPECT_EQ(second.at("HOTSPOT"), DetailValue(RunDksmi("-i 1").out, "Hot spot"));
}

}  // namespace
}  // namespace dksmi::test
