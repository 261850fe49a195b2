#include "cli/session.h"

#include "cli/interrupt.h"

#include <QByteArray>
#include <QHostAddress>
#include <QHostInfo>

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace ecu::cli {

namespace {

constexpr double longest_nap = 0.1; // until the user's wish to end is looked at

std::string without_last_stop(std::string text) {
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

// The link itself looks up no names, and what is written like an address is none. One that nobody knows stays as it is,
// and no server answers there.
std::string dotted_address(const std::string& host) {
    if (platform::ipv4_of(host) || host.find_first_not_of("0123456789.") == std::string::npos) {
        return host;
    }
    for (const QHostAddress& address : QHostInfo::fromName(QString::fromStdString(host)).addresses()) {
        if (address.protocol() == QAbstractSocket::IPv4Protocol) {
            return address.toString().toStdString();
        }
    }
    return host;
}

// Where the journal says that a write came from.
std::string place_of(const Options& options) {
    return options.verb == Verb::upload         ? "ecu-cli upload " + options.file
           : options.verb == Verb::send_changes ? "ecu-cli send-changes " + options.file
                                                : "ecu-cli";
}

} // namespace

Session::Session(const Options& options)
    : options_(options),
      console({clock_, waiting_, timers_, terminal, terminal, serial_ports_, sockets_, std::filesystem::path(".")}) {
    console.forms.registry.set_host(&terminal);
    console.journal.place = [what = place_of(options)] { return what; };
    console.journal.warn = nullptr; // said once, at the end
    if (options_.remote.empty()) {
        find_port();
    }
}

Session::~Session() {
    if (!console.journal.flush()) {
        std::cerr << "ecu-cli: the journal of writes cannot be kept in " << history::history_name << ": "
                  << console.journal.failure() << ". What was written is not in it" << std::endl;
    }
}

void Session::find_port() {
    auto& number = console.state.comm_port_number;
    number = static_cast<std::int16_t>(options_.port.value_or(1));
    if (!options_.device.empty()) {
        qputenv(("ECU_PORT_" + std::to_string(number)).c_str(), QByteArray::fromStdString(options_.device));
    } else if (!options_.port && !console.link_selection.read_port_file()) {
        std::error_code ignored;
        throw Failure(Status::usage, "there is no readable port.cfg in " +
                                         std::filesystem::current_path(ignored).string() +
                                         ": give --port N, --device PATH or --remote ADDRESS, or write the port's "
                                         "number, 1 to 10, into that file");
    }
}

void Session::open_link() {
    if (!options_.remote.empty() && console.state.remote_server_ip.empty()) {
        greet_server();
    }
    try {
        console.link_selection.open_comm_link();
    } catch (const LinkFailed& failed) {
        throw Failure(Status::link, controller_name() + " cannot be reached: " + without_last_stop(failed.reason) +
                                        ". Connect it, or choose another with --port N or --device PATH");
    }
}

void Session::greet_server() {
    const std::string server = dotted_address(options_.remote);
    const auto greeting = console.remote_client.greet(server, interrupted);
    if (!greeting.fault.empty()) {
        throw Failure(Status::link, without_last_stop(greeting.fault));
    }
    if (interrupted()) {
        throw Interrupted{};
    }
    if (!greeting.answered) {
        throw Failure(Status::link, "no console serves its controller at " + options_.remote +
                                        ". Start the server there (Tools, Remote Setup, Start server) and check the "
                                        "address");
    }
    console.state.remote_server_ip = server;
}

std::string Session::controller_name() const {
    if (!options_.remote.empty()) {
        return "the controller behind " + options_.remote;
    }
    const int number = console.state.comm_port_number;
    const std::string device = console.comm1->device_of(number);
    return "the controller on port " + std::to_string(number) + (device.empty() ? "" : " (" + device + ")");
}

Failure Session::explain(const LinkFailed& failed) const {
    if (failed.asked.find("IS NOT responding") != std::string::npos) {
        return {Status::link, "the console at " + options_.remote +
                                  " does not answer any more. Check the network and "
                                  "that its server still runs"};
    }
    if (!console.comm1->is_open() && options_.remote.empty()) {
        return {Status::link, controller_name() + " is gone: its port has closed. Plug it in and try again"};
    }
    return {Status::link, controller_name() + " does not answer, ten times asked. Check its power and cable, and that "
                                              "this is the right port"};
}

void Session::sleep(double seconds) {
    const double end = monotonic_seconds() + seconds;
    while (!interrupted()) {
        const double left = end - monotonic_seconds();
        if (left <= 0) {
            return;
        }
        waiting_.wait_for_events(static_cast<float>(std::min(left, longest_nap)));
    }
}

} // namespace ecu::cli
