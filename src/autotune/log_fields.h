// The fields of a log file behind its header, one after the other without regard to lines.
#pragma once

#include <istream>
#include <optional>
#include <string>

namespace ecu::autotune {

// The next line without its line end; nothing at the end of the file.
std::optional<std::string> read_line(std::istream& in);
// True when only line ends and blanks are left.
bool at_end(std::istream& in);
// The next field, which a comma or a line end closes; nothing at the end of the file.
std::optional<std::string> read_field(std::istream& in);

} // namespace ecu::autotune
