// The command line of the program ecu-controller.
#pragma once

#include "controller/virtual_controller.h"

#include <span>
#include <string>
#include <string_view>

namespace ecu::controller {

struct Options {
    Settings controller;
    std::string link_path;  // empty: no symbolic link
    std::string state_path; // empty: nothing outlives the program
    bool help = false;
    bool version = false;
    std::string error; // what is wrong with the command line; empty when it is good
};

// `arguments` without the program's name.
Options parse_options(std::span<const char* const> arguments);

std::string_view usage();

} // namespace ecu::controller
