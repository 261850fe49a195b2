#include "platform/safe_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <random>
#include <utility>

#ifdef _WIN32
#include <io.h>
#include <process.h>
#else
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace ecu::platform {

namespace {

namespace fs = std::filesystem;

constexpr int most_links = 40; // in a row; more are a circle
constexpr int names_tried = 100;

std::error_code last_error() {
    return errno != 0 ? std::error_code(errno, std::generic_category()) : std::make_error_code(std::errc::io_error);
}

constexpr std::string_view unfinished = ".new-"; // then the owner's process number, "-" and eight hexadecimal digits
constexpr std::size_t random_digits = 8;

std::string unfinished_suffix(unsigned random) {
#ifdef _WIN32
    const int owner = _getpid();
#else
    const int owner = getpid();
#endif
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%s%d-%08x", unfinished.data(), owner, random);
    return text.data();
}

// The process that made an unfinished file, by its name; 0 for any other file.
long owner_of(const std::string& name) {
    const std::size_t at = name.rfind(unfinished);
    if (at == std::string::npos) {
        return 0;
    }
    const std::string_view suffix = std::string_view(name).substr(at + unfinished.size());
    const std::size_t dash = suffix.find('-');
    const auto only = [](std::string_view text, std::string_view of) {
        return !text.empty() && text.find_first_not_of(of) == std::string_view::npos;
    };
    const bool made_here = dash != std::string_view::npos && dash < 10 && only(suffix.substr(0, dash), "0123456789") &&
                           suffix.size() == dash + 1 + random_digits &&
                           only(suffix.substr(dash + 1), "0123456789abcdef");
    return made_here ? std::strtol(suffix.data(), nullptr, 10) : 0;
}

// Only as a file that was not there; a link in its place does not count as such. Held by a lock that ends with its
// owner.
std::FILE* create(const fs::path& path) {
#ifdef _WIN32
    return _wfopen(path.c_str(), L"wbx");
#else
    std::FILE* file = std::fopen(path.c_str(), "wbx");
    if (file != nullptr) {
        fcntl(fileno(file), F_SETFD, FD_CLOEXEC);
        flock(fileno(file), LOCK_EX | LOCK_NB);
    }
    return file;
#endif
}

// Neither the process is there, nor does anybody, on this machine or on another one, hold the file.
bool left_behind(const fs::path& path, long owner) {
#ifdef _WIN32
    static_cast<void>(path);
    return owner > 0 && owner != _getpid(); // the system does not remove a file that is open
#else
    if (owner <= 0 || kill(static_cast<pid_t>(owner), 0) == 0 || errno != ESRCH) {
        return false;
    }
    const int file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    const bool free = file >= 0 && flock(file, LOCK_EX | LOCK_NB) == 0;
    if (file >= 0) {
        ::close(file);
    }
    return free;
#endif
}

void clear_left_behind(const fs::path& folder) {
    std::error_code ignored;
    for (fs::directory_iterator entry(folder.empty() ? "." : folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        const long owner = owner_of(entry->path().filename().string());
        std::error_code error;
        if (owner > 0 && fs::is_regular_file(entry->symlink_status(error)) && left_behind(entry->path(), owner)) {
            fs::remove(entry->path(), error);
        }
    }
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

SafeFile::SafeFile(const fs::path& target) : target_(behind_links(target)) {
    std::error_code ignored;
    if (fs::is_symlink(fs::symlink_status(target_, ignored))) {
        fail("its links lead in a circle");
        return;
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
    open_beside();
    if (file_ && fs::exists(status)) {
        fs::permissions(beside_, status.permissions(), ignored);
    }
}

void SafeFile::open_beside() {
    clear_left_behind(target_.parent_path());
    std::random_device random;
    for (int i = 0; i < names_tried; ++i) {
        fs::path path = target_;
        path += unfinished_suffix(random());
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

SafeFile::~SafeFile() {
    if (!beside_.empty()) {
        file_.reset();
        std::error_code ignored;
        fs::remove(beside_, ignored);
    }
}

bool SafeFile::write(std::string_view text) {
    if (!failure_.empty()) {
        return false;
    }
    errno = 0;
    return std::fwrite(text.data(), 1, text.size(), file_.get()) == text.size() || fail(last_error());
}

bool SafeFile::commit() {
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

bool SafeFile::fail(const std::error_code& error) { return fail(error.message()); }

bool SafeFile::fail(std::string reason) {
    failure_ = std::move(reason);
    return false;
}

bool sync_file(const fs::path& path) {
#ifdef _WIN32
    std::FILE* file = _wfopen(path.c_str(), L"r+b");
#else
    std::FILE* file = std::fopen(path.c_str(), "r+b");
#endif
    if (file == nullptr) {
        return false;
    }
    const bool there = put_on_disk(file);
    return std::fclose(file) == 0 && there;
}

std::string replace_file(const fs::path& path, std::string_view text) {
    SafeFile file(path);
    file.write(text);
    file.commit();
    return file.failure();
}

} // namespace ecu::platform
