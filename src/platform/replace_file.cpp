#include "platform/replace_file.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace ecu::platform {

std::string replace_file(const std::filesystem::path& path, std::string_view text) {
    std::filesystem::path beside = path;
    beside += ".new";
    std::error_code failure;
    errno = 0;
    {
        std::ofstream file(beside, std::ios::binary | std::ios::trunc);
        file.write(text.data(), static_cast<std::streamsize>(text.size()));
        file.close();
        if (!file) {
            failure = errno != 0 ? std::error_code(errno, std::generic_category())
                                 : std::make_error_code(std::errc::io_error);
        }
    }
    if (!failure) {
        std::filesystem::rename(beside, path, failure);
    }
    if (!failure) {
        return "";
    }
    std::error_code ignored;
    std::filesystem::remove(beside, ignored);
    return failure.message();
}

} // namespace ecu::platform
