// The command line of ecu-cli.
#pragma once

#include "cli/failure.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace ecu::cli {

enum class Verb : std::uint8_t {
    info,
    download,
    upload,
    diff,
    check,
    monitor,
    log,
    compare,
    restore_point,
    journal,
    send_changes,
    link,
    flash_check,
    log_stats,
};

struct Options {
    Verb verb = Verb::info;
    std::string file;   // of diff: the first
    std::string second; // of diff
    bool yes = false;   // upload without asking
    int interval_ms = 1000;
    int questions = 100; // that link asks
    long count = 0;      // samples or rows; 0: until Ctrl+C. Of the journal: the newest rows; 0: all

    // Of compare, restore-point, journal and send-changes
    std::string action;            // of restore-point
    std::optional<long> point;     // its number
    std::string note;              // of a new one
    std::string group;             // differences of this group only
    std::string text;              // differences or rows with this text only
    double rate = 0;               // differences of at least so many per cent
    bool raw = false;              // raw numbers too
    bool csv = false;              // for a spreadsheet
    bool preview = false;          // show what would be sent, and send nothing
    std::string since;             // rows of this time or later
    std::vector<std::string> only; // keys to be sent: "ACC_RATE", "MAPM", "MAPM[007]"

    // Of log-stats
    std::string map = "MAPM";
    std::string channel = "mixture";
    int least_hits = 20;
    float coolant_above = 60;
    float exhaust_delay = 0; // seconds

    std::optional<int> port;
    std::string device; // what the port stands for
    std::string remote; // address of a console that serves its controller
    bool json = false;
};

// Stands for the controller in place of a file name.
inline constexpr const char* controller_word = "controller";

struct Shown {
    std::string text; // help or version, for the output stream
};

// Throws Failure for a command line that is none.
std::variant<Options, Shown> parse_options(int argc, const char* const* argv);

} // namespace ecu::cli
