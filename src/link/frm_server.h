// The window of a console that serves its controller to another one: who is served, what passes, what was refused and
// why, and what a tuner must know of a port that takes commands from the network.
#pragma once

#include "platform/control.h"
#include "platform/form.h"
#include "platform/timers.h"

#include <array>
#include <cstdint>
#include <memory>

namespace ecu::link {

// Why a server does not pass a datagram on; each counts in the element of `refused` with its number.
enum class Refusal : std::uint8_t {
    no_request,
    server_port,
    not_allowed,
    another_served,
    too_many,
    too_late,
    opened_anew
};
inline constexpr std::size_t refusal_kinds = 7;

struct FrmServer {
    platform::Form form{"frm_server", "Remote Server"};
    platform::Label Client_IP{form, "Client_IP", "1.1.1.1"};
    platform::Label num_comm_bytes{form, "num_comm_bytes", "0"};
    platform::Label num_sock_bytes{form, "num_sock_bytes", "0"};
    platform::Label server_address{form, "server_address"}; // what the client's tuner has to type
    platform::Label server_serial{form, "server_serial"};   // whether the controller's port is open
    platform::Label server_allowed{form, "server_allowed"}; // who may ask
    platform::Label server_warning{form, "server_warning"};
    platform::Label num_refused{form, "num_refused", "0"};
    platform::ControlArray<platform::Label, refusal_kinds> refused{form, "refused", "0"};
    platform::Button server_cancel{form, "server_cancel", "Cancel"};

    std::unique_ptr<platform::Timer> Timer1;
    std::int16_t idle_seconds = 0; // ticks since the last datagram of the served client
    std::int32_t sock_byte_count = 0;
    std::int32_t comm_byte_count = 0;
    std::array<std::int32_t, refusal_kinds> refused_count{};

    explicit FrmServer(platform::Timers& timers) : Timer1(timers.make_timer(1000)) {
        server_warning.set_fore_colour(platform::light_red);
        server_cancel.set_tool_tip("Stop serving and go back to the console");
    }
};

} // namespace ecu::link
