// The link with nothing above it: one decoder that accepts codes of the right length and notes what it was offered.
#pragma once

#include "link/ecu_comm.h"
#include "link/frm_dialog.h"
#include "link/frm_retries.h"
#include "link/link_selection.h"
#include "support/sim_desktop.h"

#include <gmock/gmock.h>

namespace ecu::test {

using namespace ecu::link; // NOLINT: the tests speak of nothing else

struct LinkBench {
    SimDesktop desktop;
    platform::Ports ports = desktop.ports();
    SharedState state;
    std::unique_ptr<platform::SerialPort> comm1 = desktop.make_serial_port();
    SimDatagramSocket socket;
    platform::Form main_form{"FrmEcu", "ECU System Console [Master Mode]"};
    platform::Form monitor{"frm_mon", ""};
    platform::Label group_delay{monitor, "group_delay"};
    FrmDialog dialog;
    FrmRetries retries{desktop};
    EcuComm comm{ports, state, *comm1, socket, dialog, retries, group_delay};
    LinkSelection selection{ports, state, *comm1, dialog, main_form};
    ScriptedController controller{desktop.line()};
    std::map<int, int> sizes{{'A', 63}, {174, 4}}; // payload_count by code
    std::string offered;                           // "1A63 2A63 3A63 ": decoder, code, payload_count

    LinkBench() {
        for (platform::Form* form : {&main_form, &dialog.form, &retries.form}) {
            form->set_host(&desktop);
        }
        const auto note = [this](char decoder, const Reply& reply, int count) {
            offered += decoder + std::string(1, static_cast<char>(reply[2])) + std::to_string(count) + " ";
        };
        comm.set_decoders({[=, this](const Reply& reply, int count) {
                               note('1', reply, count);
                               state.reply_accepted = sizes[reply[2]] == count;
                           },
                           [=](const Reply& reply, int count) { note('2', reply, count); },
                           [=](const Reply& reply, int count) { note('3', reply, count); }});
        state.comm_port_number = 3;
        selection.open_comm_link();
    }
    // A whole `A` transaction; how long it took in seconds.
    double ask() {
        const double start = desktop.seconds();
        comm.poll({'A'}, 63);
        return desktop.seconds() - start;
    }
    void press_in_dialog(std::size_t button) {
        desktop.on_modal("frm_Dialog", [this, button](platform::Form&) { dialog.dialog_button[button].press(); });
    }
};

// 2 + 65 + 65 + 60 * 17 = 1152 = 480 hexadecimal.
inline Bytes live_reply() {
    Bytes frame{2, 65, 'A'};
    frame.resize(63, 17);
    frame.insert(frame.end(), {0x80, 0x04});
    return frame;
}

// A controller with cells, of which replies tell the address.
struct CellBench : LinkBench {
    std::map<int, int> cells; // what the controller holds
    std::map<int, int> seen;  // what the decoders were offered
    double ask_started = 0;

    CellBench() {
        controller.set_reply_delay(0.002);
        controller.responder = [this](const Request& r) {
            const int address = r[3] + 256 * r[4];
            if (r[2] == 'e') {
                cells[address] = r[5];
            }
            return reply_frame({r[2], r[3], r[4], static_cast<std::uint8_t>(cells[address])});
        };
        comm.set_decoders(
            {[this](const Reply& reply, int count) {
                 if ((reply[2] == 'E' || reply[2] == 'e') && count == 6) {
                     seen[reply[3] + 256 * reply[4]] = reply[5];
                     state.reply_accepted = true;
                 }
             },
             [this](const Reply& reply, int) { state.reply_accepted = reply[2] == 'S' || reply[2] == 'F'; }, nullptr});
    }
    Outcome write(int cell, int value) {
        return comm.send_ecu_message({'e', static_cast<std::uint8_t>(cell), 1, static_cast<std::uint8_t>(value)}, 6);
    }
};

} // namespace ecu::test
