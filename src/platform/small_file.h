// Reading the small files of the working folder, and how messages name them. safe_file.h writes them.
#pragma once

#include "platform/ports.h"

#include <optional>
#include <string>
#include <string_view>

namespace ecu::platform {

// The whole content; none when there is no such file or it cannot be read.
std::optional<std::string> read_small_file(const std::filesystem::path& path);

// The number that a file holds: the leading number of its first line that is not blank, whatever the encoding in
// as_utf8. A file without one is 0.
double number_of_file(std::string_view content);

// "OEM.TXT in the folder" and the whole path of the working folder.
std::string named_in_folder(const Ports& ports, std::string_view file);

} // namespace ecu::platform
