#include "support/scripted_controller.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ecu::test {

Bytes reply_frame(Bytes code_and_data, int payload_count) {
    if (payload_count > 2) {
        code_and_data.resize(static_cast<std::size_t>(payload_count) - 2);
    }
    return link::build_reply(code_and_data.front(), std::span(code_and_data).subspan(1));
}

ScriptedController::ScriptedController(SimSerialLine& line) : line_(line) {
    line_.peer = [this](std::span<const std::uint8_t> bytes) {
        Request request{};
        ASSERT_EQ(bytes.size(), request.size()) << "the console sends whole requests";
        std::ranges::copy(bytes, request.begin());
        sent_.push_back(request);
        answer(request);
    };
}

void ScriptedController::answer(const Request& request) {
    const auto fixed = fixed_.find(request[2]);
    const Bytes reply = fixed != fixed_.end() ? fixed->second : responder ? responder(request) : Bytes{};
    if (silent_ || reply.empty()) {
        return;
    }
    if (dropped_ > 0) {
        --dropped_;
        return;
    }
    const double delay = reply_delay_ + std::exchange(late_by_, 0);
    if (const Bytes foreign = std::exchange(foreign_, {}); !foreign.empty()) {
        line_.receive(foreign, delay);
        if (behind_) {
            line_.receive(reply, delay + *behind_);
        }
        return;
    }
    line_.receive(reply, delay);
}

std::string ScriptedController::sent_codes() const {
    std::string codes;
    for (const Request& request : sent_) {
        codes.push_back(static_cast<char>(request[2]));
    }
    return codes;
}

std::vector<Bytes> ScriptedController::messages() const {
    std::vector<Bytes> messages;
    for (const Request& request : sent_) {
        messages.emplace_back(request.begin() + 2, request.begin() + 6);
    }
    return messages;
}

std::size_t ScriptedController::count(std::uint8_t code) const {
    return static_cast<std::size_t>(
        std::ranges::count_if(sent_, [&](const Request& request) { return request[2] == code; }));
}

} // namespace ecu::test
