#include "controller/options.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace ecu::controller {

namespace {

constexpr std::array<std::string_view, fault_count> fault_names{"lost",      "late",    "cut",
                                                                "corrupted", "surplus", "foreign"};

constexpr std::uint64_t highest_serial = 0xFFFFFF; // 24 bits travel

// A whole number, hexadecimal behind "0x", at most `highest`.
std::optional<std::uint64_t> whole_number(std::string_view text, std::uint64_t highest) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = hexadecimal ? text.substr(2) : text;
    std::uint64_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, hexadecimal ? 16 : 10);
    const bool good = result.ec == std::errc() && result.ptr == end && value <= highest;
    return good ? std::optional(value) : std::nullopt;
}

std::optional<double> decimal_number(std::string_view text, double highest) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    const bool good = result.ec == std::errc() && result.ptr == end && value >= 0 && value <= highest;
    return good ? std::optional(value) : std::nullopt;
}

std::string refused(std::string_view option, std::string_view value, std::string_view wanted) {
    return std::string(option) + " " + std::string(value) + ": " + std::string(wanted);
}

std::string read_fault(std::string_view item, FaultPlan& plan) {
    const std::size_t equals = std::min(item.find('='), item.size());
    const std::string_view name = item.substr(0, equals);
    const std::string_view value = item.substr(std::min(equals + 1, item.size()));
    for (std::size_t kind = 0; kind < fault_count; ++kind) {
        if (name == fault_names[kind]) {
            const std::optional<double> rate = decimal_number(value, 1);
            plan.rate[kind] = rate.value_or(0);
            return rate ? "" : refused("--faults", item, "a rate from 0 to 1 is wanted");
        }
    }
    if (name == "late-by") {
        const std::optional<double> seconds = decimal_number(value, 60);
        plan.late_by = seconds.value_or(0);
        return seconds ? "" : refused("--faults", item, "seconds from 0 to 60 are wanted");
    }
    if (name == "unplug-after") {
        plan.unplug_after = whole_number(value, UINT32_MAX);
        return plan.unplug_after ? "" : refused("--faults", item, "a number of replies is wanted");
    }
    if (name == "replug-as") {
        if (const std::optional<std::uint64_t> serial = whole_number(value, highest_serial)) {
            plan.replug_as = static_cast<std::uint32_t>(*serial);
            return "";
        }
        return refused("--faults", item, "a serial number up to 16777215 is wanted");
    }
    if (name == "wheel") {
        constexpr std::array<std::string_view, 4> kinds{"good", "missing-tooth", "noise", "dead"};
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            if (value == kinds[i]) {
                plan.wheel = static_cast<WheelFault>(i);
                return "";
            }
        }
        return refused("--faults", item, "good, missing-tooth, noise or dead is wanted");
    }
    if (name == "flash-error-at-line") {
        plan.flash_error_at_line = whole_number(value, UINT32_MAX);
        return plan.flash_error_at_line.value_or(0) > 0
                   ? ""
                   : refused("--faults", item, "the number of a line, counted from 1, is wanted");
    }
    if (item == "silent") {
        plan.silent = true;
        return "";
    }
    return refused(
        "--faults", item,
        "known are lost, late, cut, corrupted, surplus, foreign (each =RATE), late-by=SECONDS, unplug-after=N, "
        "replug-as=SERIAL, wheel=KIND, flash-error-at-line=N and silent");
}

std::string read_faults(std::string_view list, FaultPlan& plan) {
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        if (std::string error = read_fault(list.substr(0, comma), plan); !error.empty()) {
            return error;
        }
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return "";
}

std::string read_driving(std::string_view value, Driving& driving) {
    constexpr std::array<std::string_view, 4> names{"idle", "cruise", "pull", "cycle"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (value == names[i]) {
            driving = static_cast<Driving>(i);
            return "";
        }
    }
    return refused("--engine", value, "idle, cruise, pull or cycle is wanted");
}

template <typename Number>
std::string read_whole(std::string_view option, std::string_view value, std::uint64_t highest, Number& number) {
    const std::optional<std::uint64_t> read = whole_number(value, highest);
    number = static_cast<Number>(read.value_or(0));
    return read ? "" : refused(option, value, "a whole number up to " + std::to_string(highest) + " is wanted");
}

std::string read_option(std::string_view option, std::string_view value, Options& options) {
    FirmwareSettings& firmware = options.controller.firmware;
    if (option == "--link" || option == "--state") {
        (option == "--link" ? options.link_path : options.state_path) = value;
        return value.empty() ? std::string(option) + ": a path is wanted" : "";
    }
    if (option == "--engine") {
        return read_driving(value, firmware.driving);
    }
    if (option == "--faults") {
        return read_faults(value, options.controller.faults);
    }
    if (option == "--pace") {
        std::string error = read_whole(option, value, 4000000, options.controller.pace_baud);
        return error.empty() && options.controller.pace_baud < 300
                   ? refused(option, value, "a baud rate from 300 up is wanted")
                   : error;
    }
    if (option == "--seed") {
        return read_whole(option, value, UINT32_MAX, firmware.seed);
    }
    if (option == "--serial") {
        return read_whole(option, value, highest_serial, firmware.serial_number);
    }
    if (option == "--capabilities") {
        return read_whole(option, value, UINT16_MAX, firmware.capabilities);
    }
    if (option == "--compatibility") {
        return read_whole(option, value, UINT16_MAX, firmware.compatibility);
    }
    return "There is no option " + std::string(option) + ".";
}

} // namespace

Options parse_options(std::span<const char* const> arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            options.help = true;
            return options;
        }
        if (argument == "--version") {
            options.version = true;
            return options;
        }
        const std::size_t equals = argument.find('='); // --name=value, or --name value
        if (equals != std::string_view::npos && argument.starts_with("--")) {
            options.error = read_option(argument.substr(0, equals), argument.substr(equals + 1), options);
        } else if (i + 1 < arguments.size()) {
            options.error = read_option(argument, arguments[++i], options);
        } else {
            Options ignored;
            options.error = read_option(argument, "", ignored);
            if (!options.error.starts_with("There is no option")) {
                options.error = std::string(argument) + " needs a value.";
            }
        }
    }
    return options;
}

std::string_view usage() {
    return R"(Usage: ecu-controller [options]

A virtual engine controller on a pseudo-terminal. The first line that it prints is the terminal's device; it serves
until it is ended (Ctrl+C).

  --link PATH           make PATH a symbolic link to the device, and remove it at the end
  --pace BAUD           let requests and replies take the time of a line of this speed, 10 bits a byte
  --state FILE          keep table memory and parameters in FILE over restarts
  --engine KIND         what the engine does: idle, cruise, pull, or cycle through them (the default)
  --seed N              another engine noise, and other moments for the faults
  --faults LIST         what goes wrong with replies, separated by commas: lost=RATE, late=RATE, cut=RATE,
                        corrupted=RATE, surplus=RATE, foreign=RATE (rates from 0 to 1; foreign: the reply of the
                        message before), late-by=SECONDS (0.15 without), unplug-after=N replies, replug-as=SERIAL
                        (with --link: then another controller is plugged in there), wheel=missing-tooth, =noise or
                        =dead (captures of the crank wheel), flash-error-at-line=N (the flash monitor refuses that
                        record, once), silent
  --serial N            the serial number (104077)
  --capabilities WORD   the word of drivers and functions (0x3F88: all of them)
  --compatibility N     the protocol revision (20003)
  --help                this text
  --version             the version
)";
}

} // namespace ecu::controller
