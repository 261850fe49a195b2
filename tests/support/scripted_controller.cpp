#include "support/scripted_controller.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace ecu::test {

namespace {

std::uint8_t low(unsigned value) { return static_cast<std::uint8_t>(value & 0xFF); }
std::uint8_t high(unsigned value) { return static_cast<std::uint8_t>(value / 256); }

} // namespace

Bytes reply_frame(Bytes code_and_data, int payload_count) {
    if (payload_count > 2) {
        code_and_data.resize(static_cast<std::size_t>(payload_count) - 2);
    }
    Bytes frame;
    frame.reserve(code_and_data.size() + 4);
    frame.push_back(2);
    frame.push_back(low(static_cast<unsigned>(code_and_data.size() + 4)));
    std::ranges::copy(code_and_data, std::back_inserter(frame));
    const unsigned sum = std::accumulate(frame.begin(), frame.end(), 0U);
    frame.push_back(low(sum));
    frame.push_back(high(sum));
    return frame;
}

Request request_frame(Bytes message) {
    message.resize(4, '0');
    Request frame{2, 8};
    std::ranges::copy(message, frame.begin() + 2);
    const unsigned sum = std::accumulate(frame.begin(), frame.begin() + 6, 0U);
    frame[6] = low(sum);
    frame[7] = high(sum);
    return frame;
}

ScriptedController::ScriptedController(SimEvents& events, SimSerialLine& line) : events_(events), line_(line) {
    line_.peer = [this](std::span<const std::uint8_t> bytes) { take(bytes); };
}

void ScriptedController::take(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) {
        partial_.push_back(byte);
        if (partial_.size() == std::tuple_size_v<Request>) {
            Request request{};
            std::ranges::copy(partial_, request.begin());
            partial_.clear();
            sent_.push_back(request);
            answer(request);
        }
    }
}

void ScriptedController::answer(const Request& request) {
    const auto fixed = fixed_.find(request[2]);
    Bytes reply = fixed != fixed_.end() ? fixed->second : responder ? responder(request) : Bytes{};
    if (silent_ || reply.empty()) {
        return;
    }
    if (dropped_ > 0) {
        --dropped_;
        return;
    }
    if (std::exchange(corrupt_, false)) {
        reply[reply.size() - 2] ^= 1;
    }
    reply.resize(reply.size() - std::min(std::exchange(cut_, 0), reply.size()) + std::exchange(surplus_, 0));
    line_.receive(reply, reply_delay_ + std::exchange(delay_, 0));
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
