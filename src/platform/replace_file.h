// Replaces a small file whole: the text goes to a new file beside it, which then takes its name. Whatever fails on
// the way, the older file stays as it was.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace ecu::platform {

// Returns an empty text, or the reason why the file could not be written. Line ends are written as given.
std::string replace_file(const std::filesystem::path& path, std::string_view text);

} // namespace ecu::platform
