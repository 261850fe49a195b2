// What the system tells of a serial port's device without opening it: whether it is there, whether this user may use
// it, who holds it, and how long its adapter holds received bytes back. Standard library only; what a system does not
// tell stays empty.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ecu::link {

struct PortFacts {
    std::string device;    // as it is named in the console; empty: there is none
    std::string real_path; // what a symbolic link leads to
    bool present = false;
    bool permitted = false; // this user may read and write it
    std::string group;      // that may use it
    std::optional<int> latency_ms;
    std::filesystem::path latency_file;
    std::vector<std::string> holders; // "brltty (process 812)"; this program aside
};

// `root` is the system's folder of folders, another one in tests.
PortFacts read_port_facts(const std::string& device, const std::filesystem::path& root = "/");

} // namespace ecu::link
