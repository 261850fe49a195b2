// The frames of the controller's line, built and checked with no line behind them. A request is always 8 bytes:
// start 2, length 8, command, three arguments, checksum. A reply is start, total length, code, data, checksum.
// The checksum of both is the sum of all bytes before it, low byte first. See docs/formats/wire.md.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ecu::link {

inline constexpr std::uint8_t start_byte = 2;
inline constexpr std::size_t request_size = 8;
inline constexpr std::size_t checksum_size = 2;
// The longest reply held; bytes behind it are not stored.
inline constexpr std::size_t reply_capacity = 100;
// Restart of the controller: the one code whose reply may have stray bytes behind it.
inline constexpr std::uint8_t restart_code = 174;

using Request = std::array<std::uint8_t, request_size>;
// A received frame: entry 1 its length, entry 2 the reply code, data from entry 3; zeros behind what was received.
using Reply = std::array<std::uint8_t, reply_capacity>;

// Why a frame is dropped. `length` is also a checksum that would stand outside what is held.
enum class FrameFault : std::uint8_t { none, too_short, start, length, checksum };

constexpr std::uint16_t checksum_of(std::span<const std::uint8_t> body) {
    unsigned sum = 0;
    for (const std::uint8_t byte : body) {
        sum += byte;
    }
    return static_cast<std::uint16_t>(sum);
}

// `message` is the command byte and up to three arguments; missing ones travel as the ASCII digit "0", and what
// stands behind the fourth byte is cut off.
Request build_request(std::span<const std::uint8_t> message);

// The controller's side: a frame that it would act upon. The arguments stand at offsets 3 to 5.
FrameFault check_request(std::span<const std::uint8_t> frame);

// The controller's side: the whole reply of data.size() + 5 bytes; at most 250 data bytes.
std::vector<std::uint8_t> build_reply(std::uint8_t code, std::span<const std::uint8_t> data);

struct ReplyCheck {
    FrameFault fault = FrameFault::none;
    int payload_count = 0; // length of a good frame without its two checksum bytes
};

// `count` is the number of bytes received, which may be more than `reply` holds. The start byte is not tested.
ReplyCheck check_reply(const Reply& reply, std::size_t count);

} // namespace ecu::link
