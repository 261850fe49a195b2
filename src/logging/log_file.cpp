#include "logging/log_file.h"

#include "platform/safe_file.h"

#include <cerrno>
#include <system_error>

namespace ecu::logging {

namespace {

std::string reason_of(int error) {
    return error == 0 ? "the system gives no reason" : std::generic_category().message(error);
}

} // namespace

std::string LogFile::open(const std::filesystem::path& path, std::string_view header) {
    close();
    path_ = path;
    length_ = 0;
    rows_ = 0;
    errno = 0;
    file_.open(path, std::ios::binary | std::ios::trunc);
    if (!file_.is_open()) {
        return reason_of(errno);
    }
    return write(header);
}

std::string LogFile::add(std::string_view row) {
    std::string failure = write(row);
    if (failure.empty()) {
        ++rows_;
    }
    return failure;
}

std::string LogFile::write(std::string_view text) {
    errno = 0;
    std::string failure;
    if (!file_.write(text.data(), static_cast<std::streamsize>(text.size())).flush()) {
        failure = reason_of(errno);
    } else if (std::error_code error; !std::filesystem::exists(path_, error)) {
        // Writing to a file whose name is gone succeeds on some systems, into nothing that could be found again.
        failure = "the file or its folder is no longer there";
    }
    if (failure.empty()) {
        length_ += text.size();
        return failure;
    }
    close();
    std::error_code error;
    if (std::filesystem::is_regular_file(path_, error)) {
        std::filesystem::resize_file(path_, length_, error); // part of a row helps nobody
    }
    return failure;
}

void LogFile::sync() {
    if (is_open()) {
        platform::sync_file(path_);
    }
}

void LogFile::close() {
    file_.close();
    file_.clear();
}

std::filesystem::path path_of(const std::filesystem::path& folder, std::string_view name) {
    return folder / std::filesystem::path(std::u8string(name.begin(), name.end()));
}

} // namespace ecu::logging
