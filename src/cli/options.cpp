#include "cli/options.h"

#include "calibration/transfer.h"
#include "shell/start_up.h"

#include <CLI/CLI.hpp>

#include <array>

namespace ecu::cli {

namespace {

constexpr const char* about =
    "Reads, compares and writes the calibration of an engine controller, and follows its live values.";
constexpr const char* closing =
    "Without --port, --device and --remote the port is the number in the file port.cfg of the working folder.\n"
    "Exit status: 0 done or same, 1 differences or findings, 2 usage, 3 link, 4 file, 130 ended by Ctrl+C.\n"
    "ecu-cli VERB --help tells more of a verb.";
constexpr const char* global_group = "Options of every verb";

struct Verbs {
    std::array<CLI::App*, 14> apps{};
    CLI::App*& operator[](Verb verb) { return apps.at(static_cast<std::size_t>(verb)); }
};

std::string fault_of_name(std::string& name) {
    if (name.empty()) {
        return "the name of the file is empty";
    }
    return calibration::Transfer::names_no_file(name) ? name + " is a pattern and names no file" : "";
}

void add_file(CLI::App& verb, const std::string& place, std::string& file, const std::string& what) {
    verb.add_option(place, file, what)->required()->type_name("")->check(CLI::Validator(fault_of_name, std::string()));
}

void add_global_options(CLI::App& app, Options& options) {
    auto* port = app.add_option("--port", options.port, "serial port of the controller, as in the console's menu")
                     ->check(CLI::Range(1, 10))
                     ->type_name("N");
    auto* device =
        app.add_option("--device", options.device, "device that the port stands for, /dev/ttyUSB0")->type_name("PATH");
    app.add_option("--remote", options.remote, "console that serves its controller over the network")
        ->type_name("ADDRESS")
        ->excludes(port)
        ->excludes(device);
    app.add_flag("--json", options.json, "write results as JSON, one object a line");
    for (CLI::Option* option : app.get_options()) {
        if (option->get_name() != "--help" && option->get_name() != "--version") {
            option->group(global_group);
        }
    }
}

void add_interval(CLI::App& verb, Options& options) {
    verb.add_option("--interval", options.interval_ms, "time between samples")
        ->check(CLI::Range(1, 86'400'000))
        ->capture_default_str()
        ->type_name("MS");
}

constexpr const char* side_text = "setup file, restore point as @N, or the word controller";

void add_filters(CLI::App& verb, Options& options) {
    verb.add_option("--group", options.group, "of this group only, as \"Basic Map\"")->type_name("GROUP");
    verb.add_option("--text", options.text, "with this text in key, item, place or group")->type_name("TEXT");
    verb.add_option("--at-least", options.rate, "that differ by so many per cent")
        ->check(CLI::NonNegativeNumber)
        ->type_name("PERCENT");
}

void add_history_verbs(CLI::App& app, Verbs& verbs, Options& options) {
    CLI::App* compare = verbs[Verb::compare] =
        app.add_subcommand("compare", "compare two calibrations in units, group by group");
    add_file(*compare, "A", options.file, side_text);
    add_file(*compare, "B", options.second, side_text);
    add_filters(*compare, options);
    compare->add_flag("--raw", options.raw, "raw numbers behind the values");
    compare->add_flag("--csv", options.csv, "write for a spreadsheet");

    CLI::App* point = verbs[Verb::restore_point] =
        app.add_subcommand("restore-point", "keep the controller's whole calibration, or list what is kept");
    point->add_option("ACTION", options.action, "list, make, save, remove")
        ->check(CLI::IsMember({"list", "make", "save", "remove"}, CLI::ignore_case))
        ->default_str("list")
        ->type_name("");
    point->add_option("N", options.point, "of save and remove: number of the restore point")->type_name("");
    point->add_option("FILE", options.file, "of save: setup file to write it to")
        ->type_name("")
        ->check(CLI::Validator(fault_of_name, std::string()));
    point->add_option("--note", options.note, "of make: what it is")->type_name("TEXT");

    CLI::App* journal = verbs[Verb::journal] = app.add_subcommand("journal", "list what was written to the controller");
    journal->add_option("--text", options.text, "with this text in item, place or value")->type_name("TEXT");
    journal->add_option("--since", options.since, "of this time or later, 2026-11-23 or with a time behind it")
        ->type_name("TIME");
    journal->add_option("--last", options.count, "the newest rows only")
        ->check(CLI::Range(1L, 1'000'000'000L))
        ->type_name("N");

    CLI::App* send = verbs[Verb::send_changes] =
        app.add_subcommand("send-changes", "write only what differs, each value verified");
    add_file(*send, "SOURCE", options.file, "setup file, or restore point as @N");
    send->add_option("--only", options.only, "only this item or cell, as MAPM or MAPM[007]; may stand several times")
        ->type_name("KEY");
    add_filters(*send, options);
    send->add_flag("--preview", options.preview, "show what would be sent, and send nothing");
    send->add_flag("--yes,-y", options.yes, "do not ask first");
}

Verbs add_verbs(CLI::App& app, Options& options) {
    Verbs verbs;
    verbs[Verb::info] = app.add_subcommand("info", "tell firmware, serial number and functions of the controller");

    CLI::App* download = verbs[Verb::download] =
        app.add_subcommand("download", "save the controller's calibration as a setup file");
    add_file(*download, "FILE", options.file, "setup file; an older one is replaced when the new one is whole");

    CLI::App* upload = verbs[Verb::upload] =
        app.add_subcommand("upload", "write a setup file's values into the controller");
    add_file(*upload, "FILE", options.file, "setup file");
    upload->add_flag("--yes,-y", options.yes, "do not ask first");

    CLI::App* diff = verbs[Verb::diff] = app.add_subcommand("diff", "compare two calibrations");
    add_file(*diff, "A", options.file, "setup file, or the word controller");
    add_file(*diff, "B", options.second, "setup file, or the word controller");

    CLI::App* check = verbs[Verb::check] =
        app.add_subcommand("check", "look through a setup file; needs no controller");
    add_file(*check, "FILE", options.file, "setup file");

    CLI::App* monitor = verbs[Verb::monitor] = app.add_subcommand("monitor", "follow the live values");
    add_interval(*monitor, options);
    monitor->add_option("--count", options.count, "samples to show; without it, until Ctrl+C")
        ->check(CLI::Range(1L, 1'000'000'000L))
        ->type_name("N");

    CLI::App* log = verbs[Verb::log] = app.add_subcommand("log", "log live values to a comma-separated file");
    add_file(*log, "FILE", options.file, "log file; an older one is replaced");
    add_interval(*log, options);
    log->add_option("--rows", options.count, "rows to write; without it, until Ctrl+C")
        ->check(CLI::Range(1L, 1'000'000'000L))
        ->type_name("N");
    add_history_verbs(app, verbs, options);

    CLI::App* link = verbs[Verb::link] =
        app.add_subcommand("link", "tell how well the link does and what to do about it; 1: there is advice");
    link->add_option("--count", options.questions,
                     "times that the live values are asked for; 0 looks at the port alone")
        ->check(CLI::Range(0, 1'000'000))
        ->capture_default_str()
        ->type_name("N");

    CLI::App* flash_check = verbs[Verb::flash_check] =
        app.add_subcommand("flash-check", "look through a record file before it is flashed; needs no controller");
    add_file(*flash_check, "FILE", options.file, "Motorola S-record file");

    CLI::App* stats = verbs[Verb::log_stats] =
        app.add_subcommand("log-stats", "a log over the cells of a map, with corrections; needs no controller");
    add_file(*stats, "LOG", options.file, "log of the plotter or of ecu-cli log");
    stats->add_option("--map", options.map, "key of the map whose cells are meant")
        ->check(CLI::IsMember({"MAPM", "IGN3", "TPFM", "TPFP"}))
        ->capture_default_str();
    stats->add_option("--channel", options.channel, "column of the log, or mixture")
        ->capture_default_str()
        ->type_name("TITLE");
    stats->add_option("--min-hits", options.least_hits, "rows that a cell needs for a correction")
        ->check(CLI::Range(1, 1'000'000))
        ->capture_default_str()
        ->type_name("N");
    stats->add_option("--coolant", options.coolant_above, "rows above this temperature only, degrees C")
        ->capture_default_str()
        ->type_name("DEG");
    stats->add_option("--delay", options.exhaust_delay, "seconds from the injection to the sensor")
        ->check(CLI::Range(0.0, 5.0))
        ->capture_default_str()
        ->type_name("S");
    return verbs;
}

// The help of a verb shows the options of all.
void add_global_help(CLI::App& app, Verbs& verbs) {
    const auto global = static_cast<const CLI::App&>(app).get_options(
        [](const CLI::Option* option) { return option->get_group() == global_group; });
    const std::string text = CLI::Formatter().make_group(global_group, false, global).substr(1) + "\n" + closing;
    for (CLI::App* verb : verbs.apps) {
        verb->footer(text);
    }
}

// The parser's own words say neither which verb was meant nor which there are.
std::string usage_text(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    if (!chosen.empty()) {
        return chosen.front()->get_name() + ": " + error.what() + ". Try ecu-cli " + chosen.front()->get_name() +
               " --help";
    }
    std::string verbs;
    for (const CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; })) {
        verbs += (verbs.empty() ? "" : ", ") + verb->get_name();
    }
    const std::vector<std::string> left = app.remaining();
    if (!left.empty() && !left.front().starts_with('-')) {
        return "there is no verb " + left.front() + "; there are " + verbs;
    }
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        return "a verb is needed: " + verbs + ". Try ecu-cli --help";
    }
    return std::string(error.what()) + ". Try ecu-cli --help";
}

} // namespace

std::variant<Options, Shown> parse_options(int argc, const char* const* argv) {
    Options options;
    CLI::App app(about, "ecu-cli");
    app.footer(closing);
    app.require_subcommand(1);
    app.fallthrough(); // the options of all verbs may stand behind the verb
    app.set_version_flag("--version", "ecu-cli " + std::string(shell::console_version));
    add_global_options(app, options);
    Verbs verbs = add_verbs(app, options);
    add_global_help(app, verbs);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Shown{app.help()};
    } catch (const CLI::CallForVersion&) {
        return Shown{app.version() + "\n"};
    } catch (const CLI::ParseError& error) {
        throw Failure(Status::usage, usage_text(app, error));
    }
    for (std::size_t i = 0; i < verbs.apps.size(); ++i) {
        if (verbs.apps.at(i)->parsed()) {
            options.verb = static_cast<Verb>(i);
        }
    }
    return options;
}

} // namespace ecu::cli
