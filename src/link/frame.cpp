#include "link/frame.h"

#include <algorithm>
#include <stdexcept>

namespace ecu::link {

namespace {

constexpr std::size_t request_body = request_size - checksum_size;
constexpr std::size_t reply_overhead = 5; // start, length, code, checksum

// Whether the two bytes behind the body hold its sum.
bool checksum_matches(std::span<const std::uint8_t> frame, std::size_t body) {
    const std::uint16_t sum = checksum_of(frame.first(body));
    return frame[body] == (sum & 0xFF) && frame[body + 1] == (sum >> 8);
}

void append_checksum(std::span<std::uint8_t> frame) {
    const std::size_t body = frame.size() - checksum_size;
    const std::uint16_t sum = checksum_of(frame.first(body));
    frame[body] = static_cast<std::uint8_t>(sum & 0xFF);
    frame[body + 1] = static_cast<std::uint8_t>(sum >> 8);
}

} // namespace

Request build_request(std::span<const std::uint8_t> message) {
    Request frame{start_byte, request_size, '0', '0', '0', '0', 0, 0};
    std::ranges::copy(message.first(std::min<std::size_t>(message.size(), request_body - 2)), frame.begin() + 2);
    append_checksum(frame);
    return frame;
}

FrameFault check_request(std::span<const std::uint8_t> frame) {
    if (frame.size() < request_size) {
        return FrameFault::too_short;
    }
    if (frame[0] != start_byte) {
        return FrameFault::start;
    }
    if (frame.size() > request_size || frame[1] != request_size) {
        return FrameFault::length;
    }
    return checksum_matches(frame, request_body) ? FrameFault::none : FrameFault::checksum;
}

std::vector<std::uint8_t> build_reply(std::uint8_t code, std::span<const std::uint8_t> data) {
    const std::size_t length = data.size() + reply_overhead;
    if (length > 255) {
        throw std::length_error("a reply's length must fit one byte");
    }
    std::vector<std::uint8_t> frame(length);
    frame[0] = start_byte;
    frame[1] = static_cast<std::uint8_t>(length);
    frame[2] = code;
    std::ranges::copy(data, frame.begin() + 3);
    append_checksum(frame);
    return frame;
}

ReplyCheck check_reply(const Reply& reply, std::size_t count) {
    if (count <= 1) {
        return {.fault = FrameFault::too_short};
    }
    if (reply[1] != count) {
        if (reply[2] != restart_code) {
            return {.fault = FrameFault::length};
        }
        count = reply[1];
    }
    if (count <= checksum_size) {
        return {.fault = FrameFault::too_short};
    }
    if (count > reply_capacity) {
        return {.fault = FrameFault::length};
    }
    const std::size_t body = count - checksum_size;
    if (!checksum_matches(reply, body)) {
        return {.fault = FrameFault::checksum};
    }
    return {.payload_count = static_cast<int>(body)};
}

} // namespace ecu::link
