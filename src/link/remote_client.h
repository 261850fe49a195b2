// This console as the client of a server on another machine: the question for its address, the greeting, and the way
// back. Once a server has answered, every message goes there; a client needs no serial port.
#pragma once

#include "link/ecu_comm.h"
#include "link/frm_remote_ip.h"
#include "link/remote_link.h"

#include <functional>
#include <string>

namespace ecu::link {

class RemoteClient {
public:
    struct Use {
        const platform::Ports& ports;
        SharedState& state;
        EcuComm& comm;
        platform::SerialPort& comm1;
        platform::DatagramSocket& outgoing_sock;
        FrmRemoteIp& form;
        platform::Form& main_form; // its caption shows the server
        platform::MenuItem& start_server;
        platform::MenuItem& start_client;
        platform::MenuItem& halt_client;
    };
    explicit RemoteClient(const Use& use);

    // The menu's Start client and Halt client. Events run while the server's answer is awaited, Halt among them.
    void start();
    void halt();

    struct Greeting {
        bool answered = false;
        std::string fault = {}; // why nothing could be sent and what to do, or empty
    };
    // Binds the socket and waits for the server's answer, at most 5 s or until `given_up`. Shows nothing and changes
    // nothing but the socket.
    Greeting greet(const std::string& server, const std::function<bool()>& given_up);

private:
    void close_dialog(const std::string& server);
    void connected_to(const std::string& server);
    void not_connected(const std::string& server, const Greeting& greeting);
    void offer_start(bool offered);
    void back_to_local();

    Use use_;
    bool greeting_ = false;
    int attempt_ = 0; // counts starts and halts, so that a start knows whether it has been overtaken
};

} // namespace ecu::link
