#include "calibration/setup_file.h"

#include "platform/display_mask.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"
#include "platform/text_encoding.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <optional>
#include <system_error>

namespace ecu::calibration {

namespace {

using platform::masked;

constexpr std::int32_t file_revision = 10000;
constexpr std::string_view table_mask = "##0";
constexpr std::string_view line_end = "\r\n";
constexpr std::string_view padding = "     "; // the reader's, behind every line
constexpr std::size_t key_width = 8;
constexpr std::size_t indexed_key_width = 4;
constexpr std::size_t index_column = 5; // counted from 0
constexpr std::size_t index_width = 3;
constexpr std::string_view retired_table = "SUPM"; // of older files; nothing is sent for it
constexpr std::array<std::string_view, 3> headers{"SET_REV", "FW_REV", "SW_REV"};
constexpr std::streamsize longest_file = 16 << 20; // no text of 2,126 lines comes near

std::string indexed(std::string_view key, int i) { return std::string(key) + "[" + masked(i, "000") + "]"; }

// The ten columns of a line that has no index.
std::string field(std::string_view key) {
    std::string text(key);
    text.resize(std::max(key_width, key.size()), ' ');
    return text + "= ";
}

std::string_view without_trailing_blanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view without_blanks_around(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

// In single precision; blanks do not count wherever they stand.
float number_in(std::string_view text) {
    std::string dense;
    std::ranges::copy_if(text, std::back_inserter(dense), [](char c) { return c != ' ' && c != '\t'; });
    constexpr double highest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(platform::leading_number(dense), -highest, highest));
}

struct Range {
    std::int32_t low;
    std::int32_t high;
};

// What building the message can take. A message that carries only the low byte takes any value that is not negative.
Range message_range(const FileKey& key) {
    constexpr std::int32_t any = std::numeric_limits<std::int32_t>::max();
    if (key.table != nullptr) {
        return {0, key.table->file_masks ? any : 255};
    }
    const Parameter& row = *key.parameter;
    const bool wide = row.write.file_form == WriteForm::word || row.write.file_form == WriteForm::element_word;
    // A negative number of a signed item is raised by 65536 first, and only then has to fit.
    return {row.read.width == Width::signed_word ? -65536 : 0, wide ? 65535 : any};
}

std::optional<LineStop> misfit(const FileKey& key, float value, std::string_view text) {
    const auto stop = [&](std::string reason) {
        return LineStop{key_text(key), platform::printable(without_blanks_around(text)), std::move(reason),
                        "Correct the value"};
    };
    const Range range = message_range(key);
    const double whole = std::nearbyint(static_cast<double>(value));
    if (whole < range.low) {
        return stop(range.low == 0 ? "the value is negative, which this item's message cannot carry"
                                   : "the value is below " + std::to_string(range.low) +
                                         ", the least that this item's message can carry");
    }
    if (whole > range.high) {
        return stop("the value is above " + std::to_string(range.high) +
                    ", the most that this item's message can carry");
    }
    return std::nullopt;
}

// One decimal number, with blanks around it at most. What stands behind the second "=" of a doubled line is not looked
// at: it never reaches the controller.
bool is_number(const FileKey& key, std::string_view text) {
    text = without_blanks_around(text);
    if (key.parameter != nullptr && key.parameter->file == FileForm::vector_doubled && text.starts_with('=')) {
        return true;
    }
    if (text.starts_with('+') || text.starts_with('-')) {
        text.remove_prefix(1);
    }
    if (text.empty() || text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) {
        return false; // also what only looks like a number: hexadecimal ones, infinity, nan
    }
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ptr == text.data() + text.size();
}

LineMeaning message_for(const FileKey& key, std::string_view value_text) {
    const float number = number_in(value_text);
    if (auto stop = misfit(key, number, value_text)) {
        return *std::move(stop);
    }
    LineMessage out{.key = key, .value = platform::round_to_even(static_cast<double>(number))};
    out.number = is_number(key, value_text);
    if (key.table != nullptr) {
        out.message = cell_write_message(key.table->base + key.index, out.value);
        out.reply = cell_reply;
    } else {
        out.message = file_message(*key.parameter, key.index, out.value < 0 ? out.value + 65536 : out.value);
        out.reply = key.parameter->write.file_reply;
    }
    return out;
}

bool is_indexed_key(std::string_view key) {
    const Parameter* row = find_parameter(key);
    return (row != nullptr && row->is_vector()) || find_table(key) != nullptr || key == retired_table;
}

// The row and element of a key with an index; nothing when the key has no such element.
std::optional<FileKey> find_indexed(std::string_view key, int index) {
    const Parameter* row = find_parameter(key);
    if (row != nullptr && row->is_vector() && index >= 0 && index < row->count) {
        return FileKey{.parameter = row, .index = index};
    }
    const Table* table = find_table(key);
    if (table != nullptr && index >= 0 && index < table->cells()) {
        return FileKey{.table = table, .index = index};
    }
    return std::nullopt;
}

LineMeaning read_indexed(std::string_view padded) {
    const std::string_view key = padded.substr(0, indexed_key_width);
    const std::string_view index_text = padded.substr(index_column, index_width);
    const int index = platform::round_to_even(static_cast<double>(number_in(index_text)));
    if (const auto found = find_indexed(key, index)) {
        return message_for(*found, padded.substr(value_column));
    }
    const std::string unknown(unknown_variable);
    UnknownLine out{{unknown + platform::printable(key) + "[" + platform::printable(index_text) + "]"}};
    // The line is looked up once more among the keys without an index, where the indexed ones are passed over.
    if (!is_indexed_key(key)) {
        out.texts.push_back(unknown + platform::printable(without_trailing_blanks(key)));
    }
    return out;
}

LineMeaning read_plain(std::string_view padded) {
    const std::string_view key = without_trailing_blanks(padded.substr(0, key_width));
    if (std::ranges::find(headers, key) != headers.end() || is_indexed_key(key)) {
        return SkippedLine{};
    }
    const Parameter* row = find_parameter(key);
    if (row == nullptr || row->file == FileForm::none) {
        return UnknownLine{{std::string(unknown_variable) + platform::printable(key)}};
    }
    return message_for({.parameter = row}, padded.substr(value_column));
}

} // namespace

std::array<std::string, 3> header_lines(std::string_view console_version, std::int32_t firmware_revision) {
    const auto line = [](std::string_view key, std::string_view text) {
        return field(key) + std::string(text) + std::string(line_end);
    };
    return {line("SET_REV", masked(file_revision, "####0")), line("SW_REV", console_version),
            line("FW_REV", masked(firmware_revision, "####0"))};
}

std::string file_line(const Parameter& row, int i, std::int32_t raw) {
    std::string text;
    switch (row.file) {
    case FileForm::none:
        return {};
    case FileForm::scalar:
        text = field(row.key);
        break;
    case FileForm::vector:
        text = indexed(row.key, i) + "= ";
        break;
    case FileForm::vector_doubled:
        text = indexed(row.key, i) + "= = ";
        break;
    case FileForm::element:
        text = indexed(row.key, i) + "=";
        break;
    }
    return text + masked(raw, row.file_mask) + std::string(line_end);
}

std::string file_line(const Table& row, int i, std::int32_t raw) {
    return indexed(row.key, i) + "=" + masked(raw, table_mask) + std::string(line_end);
}

LineMeaning read_line(std::string_view line) {
    const std::string padded = std::string(line) + std::string(padding);
    if (padded.size() < value_column) {
        const std::string_view key = without_trailing_blanks(line);
        if (key.empty()) {
            return LineStop{.reason = "the line is blank", .remedy = "Remove the line"};
        }
        return LineStop{platform::printable(key), "",
                        "the line ends before column " + std::to_string(value_column + 1) + ", where its value begins",
                        "Complete or remove the line"};
    }
    return padded.find('[') != std::string::npos ? read_indexed(padded) : read_plain(padded);
}

std::string key_text(const FileKey& key) {
    if (key.table != nullptr) {
        return indexed(key.table->key, key.index);
    }
    return key.parameter->is_vector() ? indexed(key.parameter->key, key.index) : std::string(key.parameter->key);
}

std::string counted(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::vector<std::string> split_lines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        lines.emplace_back(line);
    }
    return lines;
}

FileText read_whole_file(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        return {.failure = "it is a folder"};
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    FileText out;
    std::array<char, 65536> piece{};
    while (file.read(piece.data(), piece.size()), file.gcount() > 0) {
        out.text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
        if (static_cast<std::streamsize>(out.text.size()) > longest_file) {
            return {.failure = "it is far larger than any setup file"};
        }
    }
    if (!file.eof()) {
        return {.failure = errno != 0 ? std::generic_category().message(errno) : "it cannot be read"};
    }
    return out;
}

} // namespace ecu::calibration
