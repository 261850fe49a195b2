#include "flash/record_file.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace ecu::flash {

namespace {

constexpr std::uintmax_t most_bytes = 64U << 20U; // no controller has a memory like that

std::string system_reason() {
    return errno != 0 ? std::generic_category().message(errno) : "the system gives no reason";
}

} // namespace

std::string RecordFile::open(const std::filesystem::path& path) {
    close();
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return error ? error.message() : "it is not an ordinary file";
    }
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error) {
        return error.message();
    }
    if (size > most_bytes) {
        return "it is larger than any firmware";
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    content_.resize(static_cast<std::size_t>(size));
    if (!file.read(content_.data(), static_cast<std::streamsize>(size))) {
        const std::string reason = system_reason();
        close();
        return reason;
    }
    for (std::string_view rest = content_; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        std::string_view line = rest.substr(0, end);
        if (end != std::string_view::npos && line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        lines_.push_back(line);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return lines_.empty() ? "it is empty" : "";
}

void RecordFile::close() {
    content_.clear();
    lines_.clear();
}

} // namespace ecu::flash
