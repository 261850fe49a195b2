// A log as columns of numbers, read from the plotter's files, from dyno runs, and from other programs' tables of
// values: separator, decimal comma and a row of units are found by looking. A row that cannot be read is left out and
// told with its line; the rest is there.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::analysis {

struct Column {
    std::string title;
    std::string unit;          // empty where the file tells none
    std::vector<float> values; // NaN where the field is empty or no number
};

struct LogFault {
    std::size_t line = 0; // from 1
    std::string text;
};

struct LogTable {
    std::string fault;            // nothing could be read; empty: the rest holds
    std::vector<Column> columns;  // of the same size
    std::vector<LogFault> faults; // the first hundred
    std::size_t fault_count = 0;

    std::size_t rows() const { return columns.empty() ? 0 : columns.front().values.size(); }
    const Column* find(std::string_view title) const; // null when there is none
};

LogTable read_log(const std::filesystem::path& path);
LogTable parse_log(std::string_view content);

} // namespace ecu::analysis
