#include "calibration/transfer_file.h"

#include <cerrno>
#include <fstream>
#include <random>
#include <system_error>
#include <utility>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace ecu::calibration {

namespace {

namespace fs = std::filesystem;

constexpr int most_links = 40; // in a row; more are a circle
constexpr int names_tried = 100;

std::error_code last_error() {
    return errno != 0 ? std::error_code(errno, std::generic_category()) : std::make_error_code(std::errc::io_error);
}

// Only as a file that was not there; a link in its place does not count as such.
std::FILE* create(const fs::path& path) {
#ifdef _WIN32
    return _wfopen(path.c_str(), L"wbx");
#else
    return std::fopen(path.c_str(), "wbx");
#endif
}

// Past the system's buffers, so that no loss of power leaves the name to a file without its contents.
bool put_on_disk(std::FILE* file) {
    if (std::fflush(file) != 0) {
        return false;
    }
#ifdef _WIN32
    return _commit(_fileno(file)) == 0;
#else
    return fsync(fileno(file)) == 0 || errno == EINVAL || errno == ENOTSUP; // not every medium can
#endif
}

fs::path behind_links(fs::path path) {
    std::error_code error;
    for (int i = 0; i < most_links && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
        path = path.parent_path() / fs::read_symlink(path, error);
    }
    return path;
}

} // namespace

TransferFile::TransferFile(const fs::path& target) : target_(behind_links(target)) {
    std::error_code ignored;
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
    open_beside();
    if (file_ && fs::exists(status)) {
        fs::permissions(beside_, status.permissions(), ignored);
    }
}

void TransferFile::open_beside() {
    std::random_device random;
    for (int i = 0; i < names_tried; ++i) {
        fs::path path = target_;
        path += ".new-" + std::to_string(random());
        errno = 0;
        file_.reset(create(path));
        if (file_) {
            beside_ = std::move(path);
            return;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    fail(last_error());
}

TransferFile::~TransferFile() {
    if (!beside_.empty()) {
        file_.reset();
        std::error_code ignored;
        fs::remove(beside_, ignored);
    }
}

bool TransferFile::write(std::string_view text) {
    if (!failure_.empty()) {
        return false;
    }
    errno = 0;
    return std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size() || fail(last_error());
}

bool TransferFile::commit() {
    if (!failure_.empty()) {
        return false;
    }
    errno = 0;
    if (!put_on_disk(file_.get()) || std::fclose(file_.release()) != 0) {
        return fail(last_error());
    }
    std::error_code error;
    fs::rename(beside_, target_, error);
    if (error) {
        return fail(error);
    }
    beside_.clear();
    return true;
}

bool TransferFile::fail(const std::error_code& error) { return fail(error.message()); }

bool TransferFile::fail(std::string reason) {
    failure_ = std::move(reason);
    return false;
}

} // namespace ecu::calibration
