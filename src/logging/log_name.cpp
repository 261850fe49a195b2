#include "logging/log_name.h"

#include "logging/log_file.h"

#include <algorithm>
#include <system_error>

namespace ecu::logging {

namespace {

std::string size_text(std::uintmax_t bytes) {
    return bytes < 1000 ? std::to_string(bytes) + " bytes" : std::to_string((bytes + 500) / 1000) + " kB";
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

} // namespace

bool log_name_taken(const std::filesystem::path& folder, std::string_view name) {
    std::error_code error;
    return !name.empty() && std::filesystem::exists(path_of(folder, name), error);
}

std::string log_name_note(const std::filesystem::path& folder, std::string_view name) {
    if (name.empty()) {
        return "a log needs a file name";
    }
    std::error_code error;
    const std::filesystem::path path = path_of(folder, name);
    if (std::filesystem::is_directory(path, error)) {
        return "is a folder: add a file name";
    }
    if (std::filesystem::exists(path, error)) {
        return "replaces the existing file, " + size_text(std::filesystem::file_size(path, error));
    }
    return std::filesystem::exists(path.parent_path(), error) ? "a new file" : "the folder does not exist";
}

std::string next_log_name(const std::filesystem::path& folder, std::string_view name) {
    const std::size_t slash = name.find_last_of("/\\");
    const std::size_t stem_from = slash == std::string_view::npos ? 0 : slash + 1;
    std::size_t stem_to = name.rfind('.');
    if (stem_to == std::string_view::npos || stem_to < stem_from) {
        stem_to = name.size();
    }
    const std::string_view extension = name.substr(stem_to);
    std::string stem(name.substr(0, stem_to));
    // A number that an earlier log was given makes room for the next.
    if (const std::size_t dash = stem.rfind('-');
        dash != std::string::npos && dash > stem_from && dash + 1 < stem.size() &&
        std::all_of(stem.begin() + static_cast<long>(dash) + 1, stem.end(), is_digit)) {
        stem.resize(dash);
    }
    for (int number = 2;; ++number) {
        std::string candidate = stem + "-" + std::to_string(number) + std::string(extension);
        if (!log_name_taken(folder, candidate)) {
            return candidate;
        }
    }
}

} // namespace ecu::logging
