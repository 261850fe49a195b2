#include "cli/options.h"

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

struct Verbs {
    std::array<CLI::App*, 7> apps{};
    CLI::App*& operator[](Verb verb) { return apps.at(static_cast<std::size_t>(verb)); }
};

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
}

void add_interval(CLI::App& verb, Options& options) {
    verb.add_option("--interval", options.interval_ms, "time between samples")
        ->check(CLI::Range(1, 86'400'000))
        ->capture_default_str()
        ->type_name("MS");
}

Verbs add_verbs(CLI::App& app, Options& options) {
    Verbs verbs;
    verbs[Verb::info] = app.add_subcommand("info", "tell firmware, serial number and functions of the controller");

    CLI::App* download = verbs[Verb::download] =
        app.add_subcommand("download", "save the controller's calibration as a setup file");
    download->add_option("file", options.file, "setup file; an older one is replaced when the new one is whole")
        ->required()
        ->type_name("FILE");

    CLI::App* upload = verbs[Verb::upload] =
        app.add_subcommand("upload", "write a setup file's values into the controller");
    upload->add_option("file", options.file, "setup file")->required()->type_name("FILE");
    upload->add_flag("--yes,-y", options.yes, "do not ask first");

    CLI::App* diff = verbs[Verb::diff] = app.add_subcommand("diff", "compare two calibrations");
    diff->add_option("a", options.file, "setup file, or the word controller")->required()->type_name("A");
    diff->add_option("b", options.second, "setup file, or the word controller")->required()->type_name("B");

    CLI::App* check = verbs[Verb::check] =
        app.add_subcommand("check", "look through a setup file; needs no controller");
    check->add_option("file", options.file, "setup file")->required()->type_name("FILE");

    CLI::App* monitor = verbs[Verb::monitor] = app.add_subcommand("monitor", "follow the live values");
    add_interval(*monitor, options);
    monitor->add_option("--count", options.count, "samples to show; without it, until Ctrl+C")
        ->check(CLI::Range(1L, 1'000'000'000L))
        ->type_name("N");

    CLI::App* log = verbs[Verb::log] = app.add_subcommand("log", "log live values to a comma-separated file");
    log->add_option("file", options.file, "log file; an older one is replaced")->required()->type_name("FILE");
    add_interval(*log, options);
    log->add_option("--rows", options.count, "rows to write; without it, until Ctrl+C")
        ->check(CLI::Range(1L, 1'000'000'000L))
        ->type_name("N");
    return verbs;
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
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        return Shown{app.help()};
    } catch (const CLI::CallForVersion&) {
        return Shown{app.version() + "\n"};
    } catch (const CLI::ParseError& error) {
        throw Failure(Status::usage, std::string(error.what()) + ". Try ecu-cli --help");
    }
    for (std::size_t i = 0; i < verbs.apps.size(); ++i) {
        if (verbs.apps.at(i)->parsed()) {
            options.verb = static_cast<Verb>(i);
        }
    }
    return options;
}

} // namespace ecu::cli
