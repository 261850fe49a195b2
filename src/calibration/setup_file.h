// The text of a setup file: the whole calibration as raw integers, one value a line, every line ended by CR LF; see
// docs/formats/setup-file.md. Writing and reading are not each other's mirror: the reader takes the value from column
// 11 and searches for no "=", so a BO_P line, whose field ends in a second "= ", reads as 0. A file is a script of
// write messages; nothing is compared with what the controller holds. All functions are pure but the one that reads a
// file.
#pragma once

#include "calibration/encoding.h"

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ecu::calibration {

// -- Writing. Every line comes with its CR LF.

// SET_REV, SW_REV, FW_REV in this order.
std::array<std::string, 3> header_lines(std::string_view console_version, std::int32_t firmware_revision);
// Element `i` of a scalar (0) or vector; `raw` as it stands in the image.
std::string file_line(const Parameter& row, int i, std::int32_t raw);
// Cell `i` of a table.
std::string file_line(const Table& row, int i, std::int32_t raw);

// -- Reading

// The row and element that a line names; one of the two is set.
struct FileKey {
    const Parameter* parameter = nullptr;
    const Table* table = nullptr;
    int index = 0;
};

// A header, or the key of a vector or table with no index behind it.
struct SkippedLine {};
// What goes to the controller. `reply` is the payload count awaited for it.
struct LineMessage {
    FileKey key;
    std::int32_t value = 0;
    link::Message message = {};
    int reply = 0;
    bool number = true; // false: no decimal number stands there and nothing else, so that 0 or a part of it goes out
};
// The line's key stands in no row; `texts` is what update_info shows, in this order, the last one stays. Here and in
// LineStop control characters of the file stand as "\x1B".
struct UnknownLine {
    std::vector<std::string> texts;
};
// The value fits no message, or there is no column for one: nothing after this line is acted on.
struct LineStop {
    std::string key = {};    // "MAPM[007]", or what stands at its place
    std::string value = {};  // as written in the file, without blanks around it
    std::string reason = {}; // "the value is above 255, the most that this item's message can carry"
    std::string remedy = {}; // "Correct the value"
};
using LineMeaning = std::variant<SkippedLine, LineMessage, UnknownLine, LineStop>;

// `line` without its line end.
LineMeaning read_line(std::string_view line);

inline constexpr std::string_view unknown_variable = "Unknown variable in data set file -->";
inline constexpr std::size_t value_column = 10; // counted from 0

// "ACC_RATE", "MAPM[007]"
std::string key_text(const FileKey& key);

// "1 line", "2 lines"
std::string counted(std::size_t count, std::string_view what);

// A text's lines without their ends, CR LF or LF. An end at the very end of the text begins no further line.
std::vector<std::string> split_lines(std::string_view text);

struct FileText {
    std::string text = {};
    std::string failure = {}; // why it could not be read; empty when it was
};
FileText read_whole_file(const std::filesystem::path& path);

} // namespace ecu::calibration
