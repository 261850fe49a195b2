#include "calibration/transfer_file.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace ecu::calibration {

namespace {

namespace fs = std::filesystem;

std::error_code last_error() {
    return errno != 0 ? std::error_code(errno, std::generic_category()) : std::make_error_code(std::errc::io_error);
}

} // namespace

TransferFile::TransferFile(const fs::path& target) : target_(target) {
    std::error_code ignored;
    if (const fs::path real = fs::canonical(target, ignored); !real.empty()) {
        target_ = real;
    }
    const fs::file_status status = fs::status(target_, ignored);
    if (fs::exists(status)) {
        if (!fs::is_regular_file(status)) {
            fail(fs::is_directory(status) ? "it is a folder" : "it is not an ordinary file");
            return;
        }
        // A file that its owner has protected must not be replaced, though its folder would allow it.
        errno = 0;
        if (!std::ofstream(target_, std::ios::binary | std::ios::app)) {
            fail(last_error());
            return;
        }
    }
    beside_ = target_;
    beside_ += ".new";
    errno = 0;
    file_.open(beside_, std::ios::binary | std::ios::trunc);
    if (!file_) {
        fail(last_error());
        beside_.clear();
    } else if (fs::exists(status)) {
        fs::permissions(beside_, status.permissions(), ignored);
    }
}

TransferFile::~TransferFile() {
    if (!committed_ && !beside_.empty()) {
        file_.close();
        std::error_code ignored;
        fs::remove(beside_, ignored);
    }
}

bool TransferFile::write(std::string_view text) {
    if (!failure_.empty()) {
        return false;
    }
    errno = 0;
    return file_.write(text.data(), static_cast<std::streamsize>(text.size())) ? true : fail(last_error());
}

bool TransferFile::commit() {
    if (!failure_.empty()) {
        return false;
    }
    errno = 0;
    file_.close();
    if (!file_) {
        return fail(last_error());
    }
    std::error_code error;
    fs::rename(beside_, target_, error);
    if (error) {
        return fail(error);
    }
    committed_ = true;
    return true;
}

bool TransferFile::fail(const std::error_code& error) { return fail(error.message()); }

bool TransferFile::fail(std::string reason) {
    failure_ = std::move(reason);
    return false;
}

} // namespace ecu::calibration
