// The console's end of the line, in simulated time: sends a message, waits a second, gives what came back.
#pragma once

#include "controller/virtual_controller.h"

#include <gmock/gmock.h>

namespace ecu::controller {

using Bytes = std::vector<std::uint8_t>;

class ConsoleEnd {
public:
    explicit ConsoleEnd(const Settings& settings = {}) : controller(settings) {}

    Bytes send_raw(const Bytes& bytes) {
        controller.receive(bytes, now);
        now += 1;
        return controller.take_output(now);
    }
    Bytes send(const Bytes& message) {
        const link::Request frame = link::build_request(message);
        return send_raw(Bytes(frame.begin(), frame.end()));
    }

    VirtualController controller;
    double now = 1;
};

inline Settings driving(Driving kind) {
    Settings settings;
    settings.firmware.driving = kind;
    return settings;
}

inline unsigned word_at(const Bytes& reply, std::size_t offset) {
    return reply.at(offset) + 256U * reply.at(offset + 1);
}

} // namespace ecu::controller
