#include "cli/session.h"

#include "cli/interrupt.h"

#include <QByteArray>

#include <algorithm>
#include <filesystem>

namespace ecu::cli {

namespace {

constexpr std::uint16_t client_port = 998;
constexpr std::uint16_t server_port = 999;
constexpr std::string_view server_call = "MARCO";
constexpr std::string_view server_answer = "POLO";
constexpr float server_seconds = 5;
constexpr double longest_nap = 0.1; // until the user's wish to end is looked at

std::string without_last_stop(std::string text) {
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

} // namespace

Session::Session(const Options& options)
    : options_(options),
      console({clock_, waiting_, timers_, terminal, terminal, serial_ports_, sockets_, std::filesystem::path(".")}) {
    console.forms.registry.set_host(&terminal);
    if (options_.remote.empty()) {
        find_port();
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
    platform::DatagramSocket& socket = *console.outgoing_sock;
    if (const std::string reason = socket.bind(client_port); !reason.empty()) {
        throw Failure(Status::link, "the network port " + std::to_string(client_port) +
                                        " cannot be used: " + without_last_stop(reason) +
                                        ". End the other program that uses it, or get the right to use low ports");
    }
    socket.set_remote(options_.remote, server_port);
    socket.send({reinterpret_cast<const std::uint8_t*>(server_call.data()), server_call.size()});
    platform::wait_until(waiting_, clock_, server_seconds,
                         [&] { return socket.available() >= server_answer.size() || interrupted(); });
    const std::vector<std::uint8_t> answer = socket.read(socket.available());
    if (!std::ranges::equal(answer, server_answer)) {
        throw Failure(Status::link, "no console serves its controller at " + options_.remote +
                                        ". Start the server there (Tools, Remote Setup, Start server) and check the "
                                        "address");
    }
    console.state.remote_server_ip = options_.remote;
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
