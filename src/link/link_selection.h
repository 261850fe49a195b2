// How the console reaches the controller: the numbered port and its file, and open_comm_link, which every view runs
// before it opens. When the port cannot be opened the no-port dialog offers demo mode or the end of the program.
#pragma once

#include "link/ecu_comm.h"

#include <array>
#include <string>

namespace ecu::link {

class LinkSelection {
public:
    // `main_form` is FrmEcu, whose caption shows the port.
    LinkSelection(const platform::Ports& ports, SharedState& state, platform::SerialPort& comm1, FrmDialog& dialog,
                  platform::Form& main_form);

    // Safe to call when the link is already open; clears "Abort".
    void open_comm_link();
    // Reads port.cfg into comm_port_number. Returns false after telling the user when there is no such file.
    bool read_port_file();
    // A click in the port menu: writes port.cfg, and takes the number over unless the port is open.
    void choose_port(int number);
    // Tries ports 1 to 16; each text is "COM-01 PRESENT" or "COM-01 FAILED".
    std::array<std::string, 16> list_serial_ports();

private:
    void no_port(const std::string& reason);

    const platform::Ports& ports_;
    SharedState& state_;
    platform::SerialPort& comm1_;
    FrmDialog& dialog_;
    platform::Form& main_form_;
};

} // namespace ecu::link
