// Reading the small files of the working directory, and how messages name them.
#pragma once

#include "platform/ports.h"

#include <optional>
#include <string>
#include <string_view>

namespace ecu::shell {

// The whole text; none when there is no such file or it cannot be read.
std::optional<std::string> read_start_up_file(const std::filesystem::path& path);

// "OEM.TXT in the folder" and the whole path of the working directory.
std::string named_in_folder(const platform::Ports& ports, std::string_view file);

// Text as it is when it is UTF-8, else read as single-byte Latin-1; a byte order mark is dropped.
std::string as_utf8(std::string_view text);

// Whether the bytes begin as a JPEG picture does.
bool looks_like_jpeg(std::string_view bytes);

} // namespace ecu::shell
