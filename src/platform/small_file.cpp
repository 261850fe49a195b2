#include "platform/small_file.h"

#include "platform/leading_number.h"
#include "platform/text_encoding.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace ecu::platform {

namespace {

constexpr std::size_t longest_number = 64; // characters; what follows is not looked at

} // namespace

std::optional<std::string> read_small_file(const std::filesystem::path& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) {
        return std::nullopt; // and no pipe is waited for
    }
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return file && !content.bad() ? std::optional(std::move(content).str()) : std::nullopt;
}

double number_of_file(std::string_view content) {
    const std::string text = as_utf8(content);
    const std::size_t start = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    return leading_number(std::string_view(text).substr(start, longest_number));
}

std::string named_in_folder(const Ports& ports, std::string_view file) {
    std::error_code ignored;
    const auto folder = std::filesystem::absolute(ports.folder, ignored).lexically_normal();
    return std::string(file) + " in the folder " + folder.string();
}

} // namespace ecu::platform
