#include "platform/datagram_socket.h"

#include <algorithm>
#include <charconv>

namespace ecu::platform {

std::string dotted(Ipv4 address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string((address >> shift) & 0xFF) + (shift > 0 ? "." : "");
    }
    return text;
}

std::optional<Ipv4> ipv4_of(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    Ipv4 address = 0;
    for (int field = 0; field < 4; ++field) {
        if (field > 0 && !text.starts_with('.')) {
            return std::nullopt;
        }
        text.remove_prefix(field > 0 ? 1 : 0);
        unsigned value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || value > 255) {
            return std::nullopt;
        }
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        address = address << 8 | value;
    }
    return text.empty() ? std::optional(address) : std::nullopt;
}

} // namespace ecu::platform
