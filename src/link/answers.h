// Which frame answers a request. A late reply of an earlier message looks like any other good frame; taken for the
// answer of the message under way it would lose a write, or leave a value where another one belongs, in silence. So
// the code must be the request's own, and where the reply repeats the address, element or block that was asked for,
// that too. Pure; the rows of the calibration are held against the table of codes where they are decoded.
#pragma once

#include "link/frame.h"

#include <algorithm>

namespace ecu::link {

// What a reply repeats of its request besides the code: nothing, the byte at offset 3, or the word there.
enum class Echo : std::uint8_t { code_only, element, address };

namespace codes {

// Replies that begin with the address that they are about: one cell, and the blocks of cells.
inline constexpr std::array<std::uint8_t, 6> with_address{'E', 'e', 'k', 'l', 'q', 'r'};
// Replies that begin with an element or a block: the writes of vectors, and the blocks of the captured wheel.
inline constexpr std::array<std::uint8_t, 22> with_element{13,  29,  35,  36,  39,  128, 156, 166, 171, 173, 204,
                                                           205, 206, 218, 219, 220, 221, 222, 223, 224, 226, 248};
// Nothing asks for these; a controller that volunteers one answers whatever was asked.
inline constexpr std::array<std::uint8_t, 4> volunteered{'F', '+', 'X', 'x'};

} // namespace codes

constexpr Echo echo_of(std::uint8_t code) {
    const auto among = [code](const auto& list) { return std::ranges::find(list, code) != list.end(); };
    return among(codes::with_address) ? Echo::address : among(codes::with_element) ? Echo::element : Echo::code_only;
}

// Both with the code at entry 2 and the first argument or data byte at entry 3.
constexpr bool answers(const Request& request, const Reply& reply) {
    const std::uint8_t code = reply[2];
    if (std::ranges::find(codes::volunteered, code) != codes::volunteered.end()) {
        return true;
    }
    if (code != request[2]) {
        return false;
    }
    switch (echo_of(code)) {
    case Echo::code_only:
        break;
    case Echo::element:
        return reply[3] == request[3];
    case Echo::address:
        return reply[3] == request[3] && reply[4] == request[4];
    }
    return true;
}

} // namespace ecu::link
