// What the plotter says of the name that a log is to have, and the name to take instead of one that is taken.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace ecu::logging {

// "a new file", "replaces the existing file, 549 kB", or why the name can't be used. `name` is what the user typed.
std::string log_name_note(const std::filesystem::path& folder, std::string_view name);
bool log_name_taken(const std::filesystem::path& folder, std::string_view name);
// "PLOTTER.CSV" becomes "PLOTTER-2.CSV", or the first number behind it whose file does not exist.
std::string next_log_name(const std::filesystem::path& folder, std::string_view name);

} // namespace ecu::logging
