// One console without windows and its way to the controller: the machine's adapters, the port, device or server that
// the command line names, and the words for what goes wrong there.
#pragma once

#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_serial_port.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "cli/options.h"
#include "cli/terminal_desktop.h"
#include "console/console.h"

namespace ecu::cli {

class Session {
public:
    // Settles where the controller is; opens nothing. Throws Failure when the command line and port.cfg do not tell.
    explicit Session(const Options& options);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session(); // says so if the journal could not be kept

    // Throws Failure when the port cannot be opened or the server does not answer.
    void open_link();
    // "the controller on port 1 (/dev/ttyUSB0)"
    std::string controller_name() const;
    // What a failed transaction means and what to do.
    Failure explain(const LinkFailed& failed) const;

    void send(const messages::Command& command) { console.comm.poll({command.code}, command.reply); }
    // Sleeps while events are handled; ends early when the user ends the command.
    void sleep(double seconds);

private:
    void find_port();
    void greet_server();

    Options options_;
    adapters::QtClock clock_;
    adapters::QtWaiting waiting_;
    adapters::QtTimers timers_;
    adapters::QtSerialPorts serial_ports_;
    adapters::QtDatagramSockets sockets_;

public:
    TerminalDesktop terminal;
    console::Console console;
};

} // namespace ecu::cli
