// The main window, its polling and the monitor over a scripted controller that answers what they ask.
#pragma once

#include "console/forms.h"
#include "link/ecu_comm.h"
#include "link/link_selection.h"
#include "messages/live_decoder.h"
#include "shell/main_console.h"
#include "shell/polling.h"
#include "shell/start_up.h"
#include "support/sim_desktop.h"
#include "support/tiny_jpeg.h"
#include "views/monitor.h"

#include <gmock/gmock.h>

namespace ecu::test {

class ConsoleRig : public testing::Test {
protected:
    using View = link::View;
    using ViewRequest = link::ViewRequest;

    ConsoleRig() {
        forms.registry.set_host(&desktop);
        comm.set_decoders({[this](const link::Reply& r, int count) { live.decode(r, count); },
                           [this](const link::Reply& r, int) { state.reply_accepted = others.contains(r[2]); },
                           nullptr});
        for (const auto& [code, count] : std::map<std::uint8_t, int>{
                 {'A', 63}, {129, 30}, {207, 37}, {179, 5}, {180, 5}, {'C', 21}, {'R', 5}, {'-', 6}, {174, 4}}) {
            controller.reply_to(code, reply_frame({code}, count));
        }
        desktop.write_file("port.cfg", "3\r\n");
        desktop.write_file("OEM.JPG", tiny_jpeg);
        desktop.write_file("OEM.TXT", "Made for racing.\r\nCall us.");
    }

    void start_up(std::string_view command_line = "") {
        shell::start_up({ports, state, scales, link_selection, units, main, forms.frm_about, forms.registry},
                        command_line);
    }
    // Started and shown, with the monitor and a bare plotter, map and dashboard as views; the first tick is over.
    void start(std::string_view command_line = "") {
        start_up(command_line);
        navigation.add_view(View::plotter, forms.frm_plotter.form);
        navigation.add_view(View::basic_mapping, forms.frm_3d.form);
        navigation.add_view(View::dashboard, forms.frm_dashboard.form);
        for (platform::Form* form : {&forms.frm_plotter.form, &forms.frm_3d.form, &forms.frm_dashboard.form}) {
            form->on_unload = [this, form] { navigation.view_closed(*form); };
        }
        console.offer_what_exists();
        navigation.wire_menus();
        main.form.show();
        polling.start();
        desktop.run_for(0.06);
    }
    // With the monitor open and its first pass done.
    void start_in_monitor(std::string_view command_line = "") {
        start(command_line);
        main.Menu_View_Monitor.click();
        desktop.run_for(0.2);
        controller.clear_sent();
    }
    void press_in_dialog(std::size_t button) {
        desktop.on_modal("frm_Dialog",
                         [this, button](platform::Form&) { forms.frm_dialog.dialog_button[button].press(); });
    }
    std::string row(std::size_t i) { return forms.frm_mon.ECU_Data[i].text(); }

    SimDesktop desktop;
    platform::Ports ports = desktop.ports();
    console::Forms forms{desktop};
    shell::FrmEcu& main = forms.frm_ecu;
    link::SharedState state;
    messages::EcuLiveData data;
    calibration::Scales scales;
    std::unique_ptr<platform::SerialPort> comm1 = desktop.make_serial_port();
    std::unique_ptr<platform::DatagramSocket> socket = desktop.make_datagram_socket();
    link::EcuComm comm{ports, state, *comm1, *socket, forms.frm_dialog, forms.frm_retries, forms.frm_mon.group_delay};
    link::LinkSelection link_selection{ports, state, *comm1, forms.frm_dialog, main.form};
    messages::LiveDecoder live{state, data, forms.registry};
    std::set<int> others{180, 'C', 'R', '-', 174}; // decoded on higher floors
    shell::Navigation navigation{ports, state, comm, link_selection, main.form};
    shell::Units units{ports, scales, main};
    shell::About about{ports, state, comm, link_selection, forms.frm_about};
    shell::Polling polling{{ports, state, data, scales, comm, navigation, main, forms.registry}};
    shell::MainConsole console{{ports, state, comm, link_selection, *comm1, navigation, units, about, main}};
    views::Monitor monitor{ports, state, data, scales, navigation, polling, forms.frm_mon};
    ScriptedController controller{desktop.line()};
};

} // namespace ecu::test
