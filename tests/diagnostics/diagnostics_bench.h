// The console over the virtual controller with the diagnostics window open, in simulated time.
#pragma once

#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/tiny_jpeg.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

namespace ecu::test {

class DiagnosticsBench : public testing::Test {
protected:
    explicit DiagnosticsBench(const controller::Settings& settings = {.firmware = {}, .faults = {}, .pace_baud = 38400})
        : wired(desktop, desktop.line(), settings) {
        desktop.write_file("port.cfg", "3\r\n");
        desktop.write_file("OEM.JPG", tiny_jpeg);
        desktop.write_file("OEM.TXT", "");
        console.forms.registry.set_host(&desktop);
        wired.controller.on_request = [this](const link::Request& request) {
            sent.emplace_back(request.begin() + 2, request.begin() + 6);
        };
        console.start("");
        desktop.run_for(0.2);
        open();
    }
    void open() {
        console.forms.frm_ecu.diagnostics_button.press();
        desktop.run_for(0.5);
        sent.clear();
    }
    Bytes codes() const {
        Bytes list;
        for (const Bytes& message : sent) {
            list.push_back(message[0]);
        }
        return list;
    }
    void press_in_dialog(std::size_t button) {
        desktop.on_modal("frm_Dialog",
                         [this, button](platform::Form&) { console.forms.frm_dialog.dialog_button[button].press(); });
    }

    SimDesktop desktop;
    WiredController wired;
    console::Console console{desktop.ports()};
    diagnostics::FrmDiagnostics& form = console.forms.frm_diagnostics;
    std::vector<Bytes> sent; // command and three arguments of each request
};

} // namespace ecu::test
