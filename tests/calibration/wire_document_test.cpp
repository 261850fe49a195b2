// docs/formats/wire.md tells every item's messages a second time, for people: it must say what the rows say.
#include "calibration/parameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <charconv>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace ecu::calibration {
namespace {

using Cells = std::vector<std::string>;

// "| `OPTIONS` | `C` | 21 |" without the bars; a bar behind a backslash belongs to its cell.
Cells cells_of(const std::string& line) {
    Cells cells;
    std::string cell;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '\\') {
            cell += line[++i];
        } else if (line[i] == '|') {
            cells.push_back(cell.substr(1, cell.size() - 2));
            cell.clear();
        } else {
            cell += line[i];
        }
    }
    return cells;
}

// "`C`" as its code; "32 (blank)" and "176, 0, 0, 0" by their leading number.
int code_of(const std::string& cell) {
    int code = -1;
    if (cell.starts_with('`')) {
        return static_cast<unsigned char>(cell.at(1));
    }
    std::from_chars(cell.data(), cell.data() + cell.size(), code);
    return code;
}

std::string arguments_of(WriteForm form) {
    switch (form) {
    case WriteForm::byte:
        return "v, 0, 0";
    case WriteForm::word:
        return "low, high, 0";
    case WriteForm::element_byte:
        return "n, v, 0";
    case WriteForm::element_word:
        return "n, low, high";
    }
    return "";
}

std::string value_of(const Parameter& row) {
    const std::string one = row.read.width == Width::byte   ? "byte"
                            : row.read.width == Width::word ? "word"
                                                            : "signed word";
    return row.is_vector() ? std::to_string(row.count) + " " + one + "s" : one;
}

TEST(WireDocument, SaysOfEveryItemAndTableWhatItsRowSays) {
    std::ifstream in(ECU_DOCUMENTS "/formats/wire.md");
    std::map<std::string, Cells> items;
    std::map<std::string, Cells> tables;
    bool in_tables = false;
    for (std::string line; std::getline(in, line);) {
        in_tables = in_tables || line.starts_with("| table | addresses");
        if (!line.starts_with("| `")) {
            continue;
        }
        const Cells cells = cells_of(line);
        const std::string key = cells[0].substr(1, cells[0].size() - 2);
        if (cells.size() == 8 && key.size() > 1) {
            EXPECT_TRUE(items.emplace(key, cells).second) << key << " stands there twice";
        } else if (in_tables && cells.size() == 3 && find_table(key) != nullptr) {
            EXPECT_TRUE(tables.emplace(key, cells).second) << key << " stands there twice";
        }
    }
    for (const Parameter& row : parameters) {
        SCOPED_TRACE(row.key);
        const Cells& cells = items[std::string(row.key)];
        ASSERT_EQ(cells.size(), 8U) << "missing in wire.md";
        EXPECT_EQ(code_of(cells[1]), row.read.command);
        EXPECT_EQ(cells[1].ends_with(", 0, 0, 0"), row.read.zeros);
        EXPECT_EQ(cells[2], std::to_string(row.read.reply));
        EXPECT_EQ(cells[3], std::to_string(row.read.offset));
        EXPECT_EQ(cells[4], value_of(row));
        EXPECT_EQ(code_of(cells[5]), row.write.command);
        EXPECT_EQ(cells[6], arguments_of(row.write.form));
        EXPECT_EQ(cells[7], std::to_string(row.write.reply));
    }
    EXPECT_EQ(items.size(), parameters.size()) << "wire.md tells of an item that has no row";
    for (const Table& row : calibration::tables) {
        SCOPED_TRACE(row.key);
        EXPECT_THAT(tables[std::string(row.key)],
                    testing::ElementsAre(testing::_,
                                         std::to_string(row.base) + " to " + std::to_string(row.base + row.cells() - 1),
                                         std::to_string(row.cells())));
    }
}

} // namespace
} // namespace ecu::calibration
