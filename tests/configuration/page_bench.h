// The console on a line to the virtual controller, whose every value differs from its neighbours, with the
// configuration page in front.
#pragma once

#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

namespace ecu::test {

using calibration::parameter;
using calibration::Parameter;

struct PageBench : testing::Test {
    SimDesktop desktop;
    console::Console console{desktop.ports()};
    WiredController wired{desktop, desktop.line()};
    controller::ControllerMemory& memory = wired.controller.memory();
    configuration::FrmTool& page = console.forms.frm_tool;
    std::vector<Bytes> sent;
    std::function<void(std::uint8_t code)> on_request; // before it is carried out

    PageBench() {
        console.forms.registry.set_host(&desktop);
        console.state.comm_port_number = 3;
        wired.controller.on_request = [this](const link::Request& request) {
            sent.emplace_back(request.begin() + 2, request.begin() + 6);
            if (lost_ == request[2]) {
                lost_ = 0;
                wired.controller.faults().strike_next(controller::Fault::lost, 10);
            }
            if (on_request) {
                on_request(request[2]);
            }
        };
        for (const Parameter& row : calibration::parameters) {
            for (int i = 0; i < row.count; ++i) {
                store(row, i, distinct(row, i));
            }
        }
        for (const calibration::Table* table : calibration::page_read_tables) {
            for (int i = 0; i < table->cells(); ++i) {
                memory.store_cell(static_cast<std::size_t>(table->base + i), static_cast<std::uint8_t>(70 + i * 3));
            }
        }
        store(parameter("MAP_TYPE"), 0, 64 + 1);
        store(parameter("EGO_FLGS"), 0, 1);
        store(parameter("OPTIONS"), 0, 2);
        store(parameter("IDL_BY_I"), 0, 1);
        store(parameter("INPT_CGF"), 0, 7 + 2 * 8 + 3 * 64 + 1 * 512);
        store(parameter("HOT_#P"), 0, 1);
        store(parameter("EGO_A_LO"), 0, 45);
    }
    void open() {
        console.navigation.open(link::View::configuration);
        desktop.run_for(3);
        sent.clear();
    }
    void close() {
        page.exit_button.press();
        desktop.run_for(1);
    }
    // Every try of the next message of this code goes unanswered, and the failure dialog gets this button.
    void lose(std::uint8_t code, std::size_t button = 0) {
        press_in_dialog(button);
        lost_ = code;
    }
    std::vector<Bytes> update() {
        sent.clear();
        page.update_button.press();
        desktop.run_for(1);
        return sent;
    }
    // What one entry makes Update send.
    std::vector<Bytes> update_of(std::string_view key, std::string_view text, int i = 0) {
        page.box(key, i).set_text(text);
        return update();
    }
    void store(const Parameter& row, int i, std::int32_t raw) {
        memory.store(calibration::first_element(row) + static_cast<std::size_t>(i), static_cast<std::uint16_t>(raw));
    }
    std::int32_t stored(const Parameter& row, int i = 0) const {
        const std::int32_t raw = memory.value(calibration::first_element(row) + static_cast<std::size_t>(i));
        return row.read.width == calibration::Width::signed_word && raw >= 32768 ? raw - 65536 : raw;
    }
    static std::vector<int> codes(const std::vector<Bytes>& messages) {
        std::vector<int> result;
        for (const Bytes& message : messages) {
            result.push_back(message[0]);
        }
        return result;
    }
    // `list` with each pair's code as often as it says.
    static std::vector<int> repeated(std::initializer_list<std::pair<int, int>> list) {
        std::vector<int> result;
        for (const auto& [code, times] : list) {
            result.insert(result.end(), static_cast<std::size_t>(times), code);
        }
        return result;
    }
    void press_in_dialog(std::size_t button) {
        desktop.on_modal("frm_Dialog",
                         [this, button](platform::Form&) { console.forms.frm_dialog.dialog_button[button].press(); });
    }

private:
    std::uint8_t lost_ = 0;
    static std::int32_t distinct(const Parameter& row, int i) {
        const int place = static_cast<int>(calibration::first_element(row)) + i;
        return calibration::bytes_of(row.read.width) == 1 ? 5 + place % 50 : 400 + place * 3;
    }
};

} // namespace ecu::test
