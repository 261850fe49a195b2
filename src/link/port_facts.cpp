#include "link/port_facts.h"

#include <algorithm>
#include <charconv>
#include <fstream>

#ifndef _WIN32
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ecu::link {

namespace {

namespace fs = std::filesystem;

std::string first_line(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::optional<int> number_of(const std::string& text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

#ifndef _WIN32
bool may_use(const std::string& path) { return access(path.c_str(), R_OK | W_OK) == 0; }
std::string group_of(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    const group* entry = getgrgid(status.st_gid);
    return entry != nullptr ? entry->gr_name : "";
}
std::string own_process() { return std::to_string(getpid()); }
#else
bool may_use(const std::string&) { return true; }
std::string group_of(const std::string&) { return {}; }
std::string own_process() { return {}; }
#endif

// Who holds the other end of a pseudo-terminal is no rival for this one.
bool has_open(const fs::path& process, const std::string& device) {
    bool open = false;
    bool other_end = false;
    std::error_code error;
    for (fs::directory_iterator at(process / "fd", error), end; !error && at != end; at.increment(error)) {
        std::error_code unreadable; // closed meanwhile
        const fs::path target = fs::read_symlink(at->path(), unreadable);
        open = open || target == device;
        other_end = other_end || target.filename() == "ptmx";
    }
    return open && !(other_end && device.starts_with("/dev/pts/"));
}

// Programs of other users do not tell what they have open.
std::vector<std::string> holders_of(const fs::path& root, const std::string& device) {
    std::vector<std::string> holders;
    std::error_code error;
    for (fs::directory_iterator at(root / "proc", error), end; !error && at != end; at.increment(error)) {
        const std::string number = at->path().filename().string();
        if (number_of(number) && number != own_process() && has_open(at->path(), device)) {
            const std::string name = first_line(at->path() / "comm");
            holders.push_back((name.empty() ? "a program" : name) + " (process " + number + ")");
        }
    }
    std::ranges::sort(holders);
    return holders;
}

} // namespace

PortFacts read_port_facts(const std::string& device, const fs::path& root) {
    PortFacts facts;
    facts.device = device;
    std::error_code error;
    facts.present = !device.empty() && fs::exists(device, error);
    if (!facts.present) {
        return facts;
    }
    const fs::path real = fs::canonical(device, error);
    facts.real_path = error ? device : real.string();
    facts.permitted = may_use(facts.real_path);
    facts.group = group_of(facts.real_path);
    facts.latency_file = root / "sys/bus/usb-serial/devices" / fs::path(facts.real_path).filename() / "latency_timer";
    facts.latency_ms = number_of(first_line(facts.latency_file));
    facts.holders = holders_of(root, facts.real_path);
    return facts;
}

} // namespace ecu::link
