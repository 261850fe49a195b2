// What both ends of the remote link share. Two consoles use one controller over UDP: the server passes frames between
// its socket and its serial port, the client sends each frame there instead of to a port of its own. Ports, local
// address and who may ask come from the program's surroundings. See docs/remote-link.md.
#pragma once

#include "platform/ports.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::link {

inline constexpr std::string_view server_call = "MARCO";  // client to server: are you there
inline constexpr std::string_view server_answer = "POLO"; // server to client: yes
inline constexpr std::string_view no_reply = "NORESP";    // server to client: the controller gave no reply

inline std::span<const std::uint8_t> bytes_of(std::string_view word) {
    return {reinterpret_cast<const std::uint8_t*>(word.data()), word.size()};
}
bool says(std::span<const std::uint8_t> datagram, std::string_view word);
// One byte with the length of the expected reply, and behind it a frame that the controller would act upon.
bool carries_a_request(std::span<const std::uint8_t> datagram);

struct RemoteSettings {
    std::uint16_t client_port = 998;
    std::uint16_t server_port = 999;
    std::optional<platform::Ipv4> bind_address; // none: all addresses of this machine
    std::vector<platform::Ipv4> allowed;        // who may ask a server; empty: anybody
};
struct RemoteSettingsRead {
    RemoteSettings settings;
    std::string fault; // what is wrong in which variable and what to do, or empty
};
RemoteSettingsRead read_remote_settings(const platform::Environment& environment);

// What the user is told when the system refuses a port: which, why, and what to do.
std::string bind_refusal(const platform::BindResult& result, const RemoteSettings& settings, std::uint16_t port);

} // namespace ecu::link
