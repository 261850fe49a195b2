// The console on a line to a controller that keeps a memory of bytes and three words, with the map window in front.
#pragma once

#include "console/console.h"
#include "support/sim_desktop.h"

#include <gmock/gmock.h>

namespace ecu::test {

struct MapBench {
    SimDesktop desktop;
    console::Console console{desktop.ports()};
    ScriptedController controller{desktop.line()};
    std::array<std::uint8_t, 0x0B00> memory{};
    std::map<std::uint8_t, std::array<std::uint8_t, 2>> words; // 'm', 'o', 'z'
    maps::Frm3d& frm_3d = console.forms.frm_3d;
    std::function<void(const Request&)> on_request; // before it is answered

    MapBench() {
        console.forms.registry.set_host(&desktop);
        console.state.comm_port_number = 3;
        controller.responder = [this](const Request& request) {
            if (on_request) {
                on_request(request);
            }
            return answer(request);
        };
    }
    void open() {
        console.navigation.open(link::View::basic_mapping);
        desktop.run_for(3);
        controller.clear_sent();
    }
    void open_offline() {
        console.state.demo_mode = true;
        open();
    }
    // Everything since the last call; the forms are given time to settle.
    std::vector<Bytes> sent_by(const std::function<void()>& action) {
        controller.clear_sent();
        action();
        desktop.run_for(1);
        return controller.messages();
    }
    std::vector<Bytes> update() {
        return sent_by([this] { frm_3d.update_button.press(); });
    }
    const std::string& fuel(int row, int column) { return frm_3d.inj_map.cell_text(row, column); }

private:
    Bytes answer(const Request& request) {
        const std::uint8_t code = request[2];
        const auto address = static_cast<std::size_t>(request[3] + 256 * request[4]);
        const auto block = [&](long cells) {
            Bytes reply{code, request[3], request[4]};
            const auto from = memory.begin() + static_cast<long>(address);
            reply.insert(reply.end(), from, from + cells);
            return reply_frame(reply);
        };
        switch (code) {
        case 'l':
            return block(32);
        case 'k':
            return block(27);
        case 'r':
            return block(9);
        case 'e':
            memory.at(address) = request[5];
            return reply_frame({code, request[3], request[4], request[5]});
        case 'm':
        case 'o':
        case 'z':
            words[code] = {request[3], request[4]};
            return reply_frame({code, request[3], request[4]});
        case 'Z':
            return reply_frame({code, words['z'][0], words['z'][1]});
        case 'B':
            return reply_frame({code, words['o'][0], words['o'][1], words['m'][0], words['m'][1]}, 12);
        case 'C': {
            Bytes reply(19, 0);
            reply[0] = code;
            reply[14] = 0x10; // the word at 16: 10000 rpm
            reply[15] = 0x27;
            return reply_frame(reply);
        }
        default:
            return {};
        }
    }
};

} // namespace ecu::test
