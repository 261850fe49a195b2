#include "controller/device_link.h"

#include <filesystem>

namespace ecu::controller {

namespace fs = std::filesystem;

std::string make_device_link(const std::string& path, const std::string& device) {
    std::error_code failure;
    const fs::file_status there = fs::symlink_status(path, failure);
    if (fs::exists(there)) {
        const bool link = fs::is_symlink(there);
        const bool stale =
            link && (fs::read_symlink(path, failure).string().starts_with("/dev/pts/") || !fs::exists(path, failure));
        if (!stale) {
            return "--link " + path +
                   ": something else stands there and is left alone. Remove it, or name another path.";
        }
    }
    const std::string fresh = path + ".new";
    fs::remove(fresh, failure);
    fs::create_symlink(device, fresh, failure);
    if (!failure) {
        fs::rename(fresh, path, failure);
    }
    return failure ? "--link " + path + ": the link cannot be made (" + failure.message() + ")." : "";
}

void remove_device_link(const std::string& path, const std::string& device) {
    std::error_code failure;
    if (fs::read_symlink(path, failure) == device) {
        fs::remove(path, failure);
    }
}

} // namespace ecu::controller
