#include "analysis/log_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <limits>

namespace ecu::analysis {

namespace {

constexpr std::size_t most_faults = 100;
constexpr std::size_t most_columns = 1000;
constexpr float nothing = std::numeric_limits<float>::quiet_NaN();
constexpr std::string_view spaces = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(spaces);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

std::string_view unquoted(std::string_view text) {
    text = trimmed(text);
    return text.size() > 1 && text.front() == '"' && text.back() == '"' ? text.substr(1, text.size() - 2) : text;
}

struct Form {
    char separator = ',';
    bool decimal_comma = false;
};

// A decimal comma is told by a separator that is another character.
Form form_of(std::string_view header, std::string_view first_row) {
    Form form;
    std::ptrdiff_t most = std::ranges::count(header, ',');
    for (const char candidate : {';', '\t'}) {
        const std::ptrdiff_t there = std::ranges::count(header, candidate);
        if (there > 0 && there >= most) {
            most = there;
            form.separator = candidate;
        }
    }
    form.decimal_comma = form.separator != ',' && first_row.find(',') != std::string_view::npos &&
                         first_row.find('.') == std::string_view::npos;
    return form;
}

void split(std::string_view line, char separator, std::vector<std::string_view>& fields) {
    fields.clear();
    for (;;) {
        const std::size_t end = line.find(separator);
        fields.push_back(line.substr(0, end));
        if (end == std::string_view::npos || fields.size() > most_columns) {
            return;
        }
        line.remove_prefix(end + 1);
    }
}

// Empty fields are nothing and no fault. A time of day counts in seconds since midnight.
bool number_of(std::string_view field, bool decimal_comma, float& value) {
    field = unquoted(field);
    value = nothing;
    if (field.empty()) {
        return true;
    }
    std::array<char, 40> plain{};
    if (decimal_comma && field.size() <= plain.size() && field.find(',') != std::string_view::npos) {
        std::ranges::replace_copy(field, plain.begin(), ',', '.');
        field = {plain.data(), field.size()};
    }
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    if (error == std::errc() && stop == end) {
        return true;
    }
    int hours = 0;
    int minutes = 0;
    float seconds = 0;
    const auto first = std::from_chars(field.data(), end, hours);
    if (first.ec == std::errc() && first.ptr != end && *first.ptr == ':') {
        const auto second = std::from_chars(first.ptr + 1, end, minutes);
        if (second.ec == std::errc() && second.ptr != end && *second.ptr == ':' &&
            std::from_chars(second.ptr + 1, end, seconds).ptr == end) {
            value = static_cast<float>(hours * 3600 + minutes * 60) + seconds;
            return true;
        }
    }
    value = nothing;
    return false;
}

// Texts that stand for a state, as a hexadecimal status, make no row unreadable.
bool is_text_column(const Column& column) { return column.title == "O2_ERRS"; }

class Reader {
public:
    explicit Reader(std::string_view content) : rest_(content) {
        if (rest_.starts_with("\xEF\xBB\xBF")) {
            rest_.remove_prefix(3);
        }
    }

    LogTable read() {
        std::string_view header;
        if (!next(header) || trimmed(header).empty()) {
            table_.fault = "The file is empty. Choose a log with a line of titles and rows of numbers.";
            return std::move(table_);
        }
        if (header.find('\0') != std::string_view::npos) {
            table_.fault = "Line 1 holds bytes that are no text. Choose a log, a table of values separated by commas.";
            return std::move(table_);
        }
        skip_own_header();
        form_ = form_of(header, rest_.substr(0, rest_.find('\n')));
        header_ = header;
        split(header, form_.separator, fields_);
        for (const std::string_view title : fields_) {
            table_.columns.push_back({.title = std::string(unquoted(title)), .unit = {}, .values = {}});
        }
        take_units();
        const auto rows = static_cast<std::size_t>(std::ranges::count(rest_, '\n')) + 1;
        for (Column& column : table_.columns) {
            column.values.reserve(rows);
        }
        for (std::string_view line; next(line);) {
            take_row(line);
        }
        if (table_.rows() == 0) {
            table_.fault = "There is no row of numbers beneath the titles.";
        }
        return std::move(table_);
    }

private:
    bool next(std::string_view& line) {
        if (rest_.empty()) {
            return false;
        }
        const std::size_t end = rest_.find('\n');
        line = rest_.substr(0, end);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        ++line_;
        return true;
    }

    // "Log Begins on ...", the format's name and an empty line.
    void skip_own_header() {
        std::string_view line;
        if (rest_.starts_with("Log Begins on ")) {
            for (int i = 0; i < 3; ++i) {
                next(line);
            }
        }
    }

    // A row without one number, as long as the titles', beneath them.
    void take_units() {
        const std::string_view line = rest_.substr(0, rest_.find('\n'));
        split(line, form_.separator, fields_);
        float value = 0;
        const bool has_number = std::ranges::any_of(fields_, [&](std::string_view field) {
            return !unquoted(field).empty() && number_of(field, form_.decimal_comma, value);
        });
        if (has_number || trimmed(line).empty() || fields_.size() != table_.columns.size()) {
            return;
        }
        std::string_view units;
        next(units);
        split(units, form_.separator, fields_);
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            table_.columns[i].unit = unquoted(fields_[i]);
        }
        form_ = {form_.separator, form_of(header_, rest_.substr(0, rest_.find('\n'))).decimal_comma};
    }

    void take_row(std::string_view line) {
        if (trimmed(line).empty()) {
            return;
        }
        if (line.find('\0') != std::string_view::npos) {
            return refuse("holds NUL bytes, as after a power cut");
        }
        if (trimmed(line) == trimmed(header_)) {
            return refuse("repeats the titles");
        }
        split(line, form_.separator, fields_);
        if (fields_.size() == table_.columns.size() + 1 && trimmed(fields_.back()).empty()) {
            fields_.pop_back(); // a separator at the end
        }
        if (fields_.size() != table_.columns.size()) {
            return refuse("has " + std::to_string(fields_.size()) + " values, where the titles are " +
                          std::to_string(table_.columns.size()));
        }
        values_.resize(fields_.size());
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (!number_of(fields_[i], form_.decimal_comma, values_[i]) && !is_text_column(table_.columns[i])) {
                return refuse("has \"" + std::string(unquoted(fields_[i]).substr(0, 20)) + "\" for " +
                              table_.columns[i].title);
            }
        }
        for (std::size_t i = 0; i < values_.size(); ++i) {
            table_.columns[i].values.push_back(values_[i]);
        }
    }

    void refuse(std::string text) {
        if (++table_.fault_count <= most_faults) {
            table_.faults.push_back(
                {line_, "Line " + std::to_string(line_) + " " + std::move(text) + ". It is left out."});
        }
    }

    std::string_view rest_;
    std::string_view header_;
    std::size_t line_ = 0;
    Form form_;
    LogTable table_;
    std::vector<std::string_view> fields_;
    std::vector<float> values_;
};

} // namespace

const Column* LogTable::find(std::string_view title) const {
    const auto found = std::ranges::find(columns, title, &Column::title);
    return found == columns.end() ? nullptr : &*found;
}

LogTable parse_log(std::string_view content) { return Reader(content).read(); }

LogTable read_log(const std::filesystem::path& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || !file.is_open()) {
        LogTable table;
        table.fault = error ? error.message() : "it could not be opened";
        return table;
    }
    std::string content(static_cast<std::size_t>(size), '\0');
    file.read(content.data(), static_cast<std::streamsize>(size));
    content.resize(static_cast<std::size_t>(file.gcount()));
    return parse_log(content);
}

} // namespace ecu::analysis
