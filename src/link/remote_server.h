// This console as the server of a client on another machine. It writes to the serial line nothing but complete, valid
// frames of the one it serves, one after the other, and is silent to all else: whoever reaches the port could otherwise
// write to the engine, and an answer to a forged datagram could set two servers talking for ever.
#pragma once

#include "link/frm_server.h"
#include "link/link_selection.h"
#include "link/remote_link.h"

#include <deque>
#include <optional>

namespace ecu::link {

struct FrmDialog;

class RemoteServer {
public:
    struct Use {
        const platform::Ports& ports;
        SharedState& state;
        EcuComm& comm;
        LinkSelection& link_selection;
        platform::SerialPort& comm1;
        platform::DatagramSocket& incomming_sock;
        FrmDialog& dialog;
        FrmServer& form;
        platform::Form& main_form;
    };
    explicit RemoteServer(const Use& use);

    void start(); // the menu's Start server
    // Counts, checks, answers or queues one datagram; lets no events through.
    void process_server_incomming_packet(const platform::Datagram& server_packet);

private:
    struct Asked {
        platform::Datagram packet;
        float when = 0; // seconds since midnight
    };

    void activate();
    void stop();
    void drop_what_a_standstill_kept();
    void take_arrived();
    std::optional<Refusal> refusal_of(const platform::Datagram& packet) const;
    void refuse(Refusal why) { count(use_.form.refused_count[static_cast<std::size_t>(why)], 1); }
    static void count(std::int32_t& counter, std::size_t more);

    void serve_soon();
    void serve_waiting();
    bool line_is_taken() const;
    bool may_write() const;
    bool meets_a_new_opening(const platform::Peer& client);
    void note_opening_for(const platform::Peer& client);
    void pass_on(const Asked& asked);

    void second_passed();
    void show_counts();
    void show_refused();
    void show_state();
    std::string serial_state() const;

    Use use_;
    RemoteSettings settings_;
    std::optional<platform::Peer> served_;
    std::deque<Asked> waiting_;
    // Through which opening of the serial port each client was last served; also of earlier starts of the server.
    std::deque<std::pair<platform::Peer, std::uint32_t>> last_opening_;
    std::unique_ptr<platform::Timer> again_; // looks again while the console's own message holds the line
    int session_ = 0; // counts starts and ends, so that an old exchange is not answered in a new one
    bool open_ = false;
    float alive_at_ = 0; // when an event of this server was last handled
    bool serving_ = false;
    bool called_ = false; // serve_waiting is on its way
};

} // namespace ecu::link
