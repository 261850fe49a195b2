// The plain variables of the console that several screens read and write. There is one instance, constructed by the
// console and passed by reference; all of it is touched from the one thread only.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace ecu::link {

// The number of the view that is open, by which the scheduler polls.
enum class View : std::int16_t {
    none = 0,
    monitor = 1,
    configuration = 2,
    basic_mapping = 3,
    plotter = 4,
    additional_mapping = 5,
    dashboard = 6,
    gpo_mapping = 7,
    diagnostics = 8,
};

// Index into pending_view_request, in the order in which the scheduler looks at them.
enum class ViewRequest : std::uint8_t {
    monitor,
    dashboard,
    configuration,
    basic_mapping,
    additional_mapping,
    gpo_mapping,
    plotter,
    diagnostics,
};

// Who answers, as far as it has told through this opening of the port.
struct ControllerIdentity {
    std::optional<std::int32_t> firmware;
    std::optional<std::uint32_t> serial;
};

struct SharedState {
    // Link
    bool demo_mode = false;    // no controller; there is no way back inside a run
    bool comm_aborted = false; // the user chose "Abort"; cleared when the link is opened again
    bool comm_ready = false;   // the link is open or demo mode is settled
    std::int16_t comm_link_opened = 0;
    std::int16_t comm_port_number = 0;
    std::string link_title_suffix;               // " ->COM3", behind the title of every view
    std::string remote_server_ip;                // empty for the serial port
    bool remote_connecting = false;              // a server has been greeted and has not answered yet
    bool remote_answering = false;               // the last remote receive saw more than one byte
    bool reply_accepted = false;                 // a decoder recognised the reply of the last try
    bool reset_comm_watch = false;               // the next look at the activity watch counts as none elapsed
    std::array<std::int32_t, 2> tx_byte_count{}; // 0 since start, 1 since the last calibration transfer began
    std::array<std::int32_t, 2> rx_byte_count{};
    float last_activity_time = 0; // seconds since midnight
    float last_reply_time = 0;
    std::array<float, 16> reply_intervals{}; // seconds, the newest last
    ControllerIdentity identity;             // forgotten when the port is opened anew
    std::string failed_frame_text;           // "Buffer = 02 08 ... Cnt = n" of the last message that failed ten times

    // Views
    View current_view = View::none;
    bool polling_paused = false; // a screen runs a sequence of its own; the scheduler stays out
    bool capabilities_loaded = false;
    bool first_tick_pending = false;
    std::array<bool, 8> pending_view_request{};
    bool master_mode = false;

    void request_view(ViewRequest request) { pending_view_request[static_cast<std::size_t>(request)] = true; }
    void drop_view_requests() { pending_view_request.fill(false); }
};

} // namespace ecu::link
