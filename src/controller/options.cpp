#include "controller/options.h"

#include <CLI/CLI.hpp>

#include <array>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>

namespace ecu::controller {

namespace {

constexpr const char* about =
    "A virtual engine controller on a pseudo-terminal. The first line that it prints is the terminal's device; it "
    "serves until it is ended (Ctrl+C).";
constexpr const char* faults_help =
    "Faults, separated by commas:\n"
    "  lost=RATE, late=RATE, cut=RATE, corrupted=RATE, surplus=RATE, foreign=RATE\n"
    "                              how many of the replies, from 0 to 1; foreign: the reply of the message before\n"
    "  late-by=SECONDS             how late the late ones are (0.15 without)\n"
    "  unplug-after=N              the plug is pulled after N replies\n"
    "  replug-as=SERIAL            with --link: then another controller is plugged in there\n"
    "  wheel=KIND                  captures of the crank wheel: good, missing-tooth, noise, dead\n"
    "  flash-error-at-line=N       the flash monitor refuses that record, once\n"
    "  silent                      no reply at all";

constexpr std::uint32_t highest_serial = 0xFFFFFF; // 24 bits travel

// One word of the list of faults. Each returns what was wanted instead, or nothing.
using ReadFault = std::string (*)(std::string_view value, FaultPlan& plan);

template <typename Number> bool read_number(std::string_view text, Number lowest, Number highest, Number& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number >= lowest && number <= highest;
}

template <std::size_t kind> std::string read_rate(std::string_view value, FaultPlan& plan) {
    return read_number(value, 0.0, 1.0, plan.rate[kind]) ? "" : "a rate from 0 to 1 is wanted";
}

std::string read_wheel(std::string_view value, FaultPlan& plan) {
    constexpr std::array<std::string_view, 4> kinds{"good", "missing-tooth", "noise", "dead"};
    const auto kind = std::ranges::find(kinds, value);
    plan.wheel = static_cast<WheelFault>(kind - kinds.begin());
    return kind != kinds.end() ? "" : "good, missing-tooth, noise or dead is wanted";
}

const std::map<std::string_view, ReadFault>& known_faults() {
    static const std::map<std::string_view, ReadFault> known{
        {"lost", read_rate<0>},
        {"late", read_rate<1>},
        {"cut", read_rate<2>},
        {"corrupted", read_rate<3>},
        {"surplus", read_rate<4>},
        {"foreign", read_rate<5>},
        {"late-by",
         [](std::string_view value, FaultPlan& plan) {
             return std::string(read_number(value, 0.0, 60.0, plan.late_by) ? "" : "seconds from 0 to 60 are wanted");
         }},
        {"unplug-after",
         [](std::string_view value, FaultPlan& plan) {
             const std::uint64_t most = UINT32_MAX;
             return std::string(read_number<std::uint64_t>(value, 0, most, plan.unplug_after.emplace())
                                    ? ""
                                    : "a number of replies is wanted");
         }},
        {"replug-as",
         [](std::string_view value, FaultPlan& plan) {
             return std::string(read_number<std::uint32_t>(value, 0, highest_serial, plan.replug_as.emplace())
                                    ? ""
                                    : "a serial number up to 16777215 is wanted");
         }},
        {"wheel", read_wheel},
        {"flash-error-at-line",
         [](std::string_view value, FaultPlan& plan) {
             const std::uint64_t most = UINT32_MAX;
             return std::string(read_number<std::uint64_t>(value, 1, most, plan.flash_error_at_line.emplace())
                                    ? ""
                                    : "the number of a line, counted from 1, is wanted");
         }},
        {"silent",
         [](std::string_view value, FaultPlan& plan) {
             plan.silent = true;
             return std::string(value.empty() ? "" : "it takes no value");
         }},
    };
    return known;
}

std::string read_fault(std::string_view item, FaultPlan& plan) {
    const std::size_t equals = std::min(item.find('='), item.size());
    const auto found = known_faults().find(item.substr(0, equals));
    if (found == known_faults().end()) {
        std::string names;
        for (const auto& [name, read] : known_faults()) {
            names += (names.empty() ? "" : ", ") + std::string(name);
        }
        return std::string(item) + ": known are " + names;
    }
    const std::string wanted = found->second(item.substr(std::min(equals + 1, item.size())), plan);
    return wanted.empty() ? "" : std::string(item) + ": " + wanted;
}

const std::map<std::string, Driving>& ways_to_drive() {
    static const std::map<std::string, Driving> ways{
        {"idle", Driving::idle}, {"cruise", Driving::cruise}, {"pull", Driving::pull}, {"cycle", Driving::cycle}};
    return ways;
}

// The help names a value by its own word alone.
CLI::Validator unadorned(CLI::Validator validator) { return validator.description(""); }

std::string fault_of_path(std::string& path) { return path.empty() ? "a path is wanted" : ""; }

void describe(CLI::App& app, Options& options) {
    FirmwareSettings& firmware = options.controller.firmware;
    app.footer(faults_help);
    app.set_version_flag("--version", "ecu-controller " ECU_VERSION);
    const CLI::Validator is_path(fault_of_path, std::string());
    app.add_option("--link", options.link_path, "make PATH a symbolic link to the device, and remove it at the end")
        ->type_name("PATH")
        ->check(is_path);
    app.add_option("--pace", options.controller.pace_baud,
                   "let requests and replies take the time of a line of this speed, 10 bits a byte")
        ->type_name("BAUD")
        ->check(unadorned(CLI::Range(300, 4'000'000)));
    app.add_option("--state", options.state_path, "keep table memory and parameters in FILE over restarts")
        ->type_name("FILE")
        ->check(is_path);
    app.add_option_function<std::string>(
           "--engine", [&firmware](const std::string& way) { firmware.driving = ways_to_drive().at(way); },
           "what the engine does: idle, cruise, pull, or cycle through them (the default)")
        ->type_name("KIND")
        ->check(unadorned(CLI::IsMember(ways_to_drive())));
    app.add_option("--seed", firmware.seed, "another engine noise, and other moments for the faults")->type_name("N");
    app.add_option_function<std::string>(
           "--faults",
           [&plan = options.controller.faults](const std::string& list) {
               for (const std::string& item : CLI::detail::split(list, ',')) {
                   if (const std::string error = read_fault(item, plan); !error.empty()) {
                       throw CLI::ValidationError("--faults", error);
                   }
               }
           },
           "what goes wrong, see below")
        ->type_name("LIST");
    app.add_option("--serial", firmware.serial_number, "the serial number (104077)")
        ->type_name("N")
        ->check(unadorned(CLI::Range(std::uint32_t{0}, highest_serial)));
    app.add_option("--capabilities", firmware.capabilities, "the word of drivers and functions (0x3F88: all of them)")
        ->type_name("WORD");
    app.add_option("--compatibility", firmware.compatibility, "the protocol revision (20003)")->type_name("N");
}

} // namespace

Options parse_options(std::span<const char* const> arguments) {
    Options options;
    CLI::App app(about, "ecu-controller");
    describe(app, options);
    std::vector<std::string> words(arguments.rbegin(), arguments.rend()); // the library takes them from the end
    try {
        app.parse(words);
    } catch (const CLI::CallForHelp&) {
        options.shown = app.help();
    } catch (const CLI::CallForVersion& version) {
        options.shown = std::string(version.what()) + "\n";
    } catch (const CLI::ParseError& error) {
        options.error = error.what();
    }
    return options;
}

} // namespace ecu::controller
