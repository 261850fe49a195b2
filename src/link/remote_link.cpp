#include "link/remote_link.h"

#include "link/frame.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace ecu::link {

namespace {

constexpr const char* ports_variable = "ECU_REMOTE_PORTS";
constexpr const char* bind_variable = "ECU_REMOTE_BIND";
constexpr const char* allow_variable = "ECU_REMOTE_ALLOW";
constexpr std::uint16_t first_free_port = 1024; // below it a system may ask for a right of its own

std::vector<std::string_view> between_commas(std::string_view list) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t comma = list.find(',');
        parts.push_back(list.substr(0, comma));
        if (comma == std::string_view::npos) {
            return parts;
        }
        list.remove_prefix(comma + 1);
    }
}

std::optional<std::uint16_t> port_of(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    return error == std::errc() && end == text.data() + text.size() && port > 0 ? std::optional(port) : std::nullopt;
}

std::string fault_in(const char* variable, const std::string& value, const char* form) {
    return std::string(variable) + " is \"" + value + "\". It must be " + form +
           ". Correct it or remove it, and start the console again.";
}

// The program that needs the right, as the system's tools want it named.
std::string own_file() {
    std::error_code error;
    const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? "ecu-console" : file.string();
}

std::string remedy(const platform::BindResult& result, const RemoteSettings& settings, std::uint16_t port) {
    const std::string other_ports = std::string("set ") + ports_variable +
                                    " to two free ports above 1023 for both consoles, as in " + ports_variable +
                                    "=40998,40999.";
    switch (result.fault) {
    case platform::BindFault::not_permitted:
        if (port >= first_free_port) {
            break;
        }
        return "An ordinary user may not open ports below 1024. Give this program the right:\n\n"
               "sudo setcap cap_net_bind_service=+ep " +
               own_file() +
               "\n\nor give it to every program of this machine:\n\nsudo sysctl -w "
               "net.ipv4.ip_unprivileged_port_start=" +
               std::to_string(std::min(settings.client_port, settings.server_port)) +
               "\n\nand start the console again. Or " + other_ports;
    case platform::BindFault::in_use:
        return "Another program holds it, perhaps a second console. End that one, or " + other_ports;
    case platform::BindFault::no_such_address:
        return std::string(bind_variable) + " asks for the address " +
               platform::dotted(settings.bind_address.value_or(0)) +
               ", which is none of this machine's. Correct it or remove it, and start the console again.";
    case platform::BindFault::none:
    case platform::BindFault::other:
        break;
    }
    return "Try again, or " + other_ports;
}

} // namespace

bool says(std::span<const std::uint8_t> datagram, std::string_view word) {
    return std::ranges::equal(datagram, bytes_of(word));
}

bool carries_a_request(std::span<const std::uint8_t> datagram) {
    return !datagram.empty() && check_request(datagram.subspan(1)) == FrameFault::none;
}

RemoteSettingsRead read_remote_settings(const platform::Environment& environment) {
    RemoteSettingsRead read;
    if (const std::string value = environment(ports_variable); !value.empty()) {
        const auto ports = between_commas(value);
        const auto client = port_of(ports[0]);
        const auto server = port_of(ports.back());
        if (ports.size() != 2 || !client || !server || client == server) {
            read.fault = fault_in(ports_variable, value,
                                  "the client's and the server's port, two different numbers from 1 to 65535 with a "
                                  "comma between them, as in 40998,40999");
            return read;
        }
        read.settings.client_port = *client;
        read.settings.server_port = *server;
    }
    if (const std::string value = environment(bind_variable); !value.empty()) {
        read.settings.bind_address = platform::ipv4_of(value);
        if (!read.settings.bind_address) {
            read.fault = fault_in(bind_variable, value, "an IPv4 address of this machine, as in 192.168.1.5");
            return read;
        }
    }
    // A misspelt list must not come to mean everybody.
    if (const std::string value = environment(allow_variable); !value.empty()) {
        for (const std::string_view part : between_commas(value)) {
            const auto address = platform::ipv4_of(part);
            if (!address) {
                read.fault = fault_in(allow_variable, value,
                                      "one or more IPv4 addresses with commas between them, as in "
                                      "192.168.1.5,192.168.1.6");
                return read;
            }
            read.settings.allowed.push_back(*address);
        }
    }
    return read;
}

std::string bind_refusal(const platform::BindResult& result, const RemoteSettings& settings, std::uint16_t port) {
    return "The network port " + std::to_string(port) + " (UDP) cannot be opened: " + result.reason + ".\n" +
           remedy(result, settings, port);
}

} // namespace ecu::link
