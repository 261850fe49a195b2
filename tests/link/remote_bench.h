// A server, and a client, over the simulated network, with a scripted controller at the server's serial line.
#pragma once

#include "link/remote_client.h"
#include "link/remote_server.h"
#include "link_bench.h"

namespace ecu::test {

inline Bytes text_bytes(std::string_view text) { return {text.begin(), text.end()}; }
// What a client sends for a message whose reply has this many bytes on the wire.
inline Bytes asking(std::uint8_t wanted, const Bytes& message) {
    const Request frame = build_request(message);
    Bytes datagram{wanted};
    datagram.insert(datagram.end(), frame.begin(), frame.end());
    return datagram;
}

struct ServerBench : LinkBench {
    const Peer client{loopback, 998};
    const Peer other{0x0A000009, 998};
    SimDatagramSocket incomming_sock{&desktop.network()};
    FrmServer form{desktop};
    RemoteServer server{{ports, state, comm, selection, *comm1, incomming_sock, dialog, form, main_form}};

    ServerBench() {
        form.form.set_host(&desktop);
        controller.reply_to('A', live_reply());
        main_form.show();
    }
    void start() {
        server.start();
        desktop.run_for(0.01);
    }
    void ask_from(const Peer& from, const Bytes& datagram) { desktop.network().arrive(from, 999, datagram); }
    // In so many seconds, also inside a wait of the server's.
    void in(double seconds, std::function<void()> action) {
        desktop.schedule(desktop.now() + to_microseconds(seconds), std::move(action));
    }
    // The datagrams that went to this peer since the last call.
    std::vector<Bytes> answers_to(const Peer& peer) {
        std::vector<Bytes> answers;
        for (const SimNetwork::Sent& sent : desktop.network().sent()) {
            if (sent.to == peer) {
                answers.push_back(sent.bytes);
            }
        }
        desktop.network().clear_sent();
        return answers;
    }
    std::int32_t refused(Refusal why) const { return form.refused_count[static_cast<std::size_t>(why)]; }
};

struct ClientBench : LinkBench {
    SimDatagramSocket outgoing_sock{&desktop.network()};
    platform::MenuItem start_server{main_form, "start_server", ""};
    platform::MenuItem start_client{main_form, "start_client", ""};
    platform::MenuItem halt_client{main_form, "halt_client", ""};
    FrmRemoteIp form;
    EcuComm far_comm{ports, state, *comm1, outgoing_sock, dialog, retries, group_delay};
    RemoteClient client{
        {ports, state, far_comm, *comm1, outgoing_sock, form, main_form, start_server, start_client, halt_client}};
    std::vector<Bytes> asked;                       // of the server at 127.0.0.1:999
    std::vector<Bytes> answers{text_bytes("POLO")}; // to each datagram

    ClientBench() {
        form.form.set_host(&desktop);
        far_comm.set_decoders(
            {[this](const Reply& reply, int count) { state.reply_accepted = sizes[reply[2]] == count; }, nullptr,
             nullptr});
        desktop.network().outside = [this](const SimNetwork::Sent& sent) {
            if (sent.to == Peer{loopback, 999}) {
                asked.push_back(sent.bytes);
                for (const Bytes& answer : answers) {
                    desktop.network().arrive(sent.to, sent.from.port, answer);
                }
            }
        };
    }
    void enter(const std::array<const char*, 4>& fields) {
        desktop.on_modal("frm_remote_ip", [this, fields](platform::Form&) {
            for (std::size_t i = 0; i < 4; ++i) {
                form.client_ip_address[i].set_text(fields[i]);
            }
            form.remote_ip_done.press();
        });
    }
    void connect() {
        desktop.expect_box("Succesful connection to remote IP address 127.0.0.1");
        enter({"127", "0", "0", "1"});
        client.start();
        asked.clear();
    }
};

} // namespace ecu::test
