// Real UDP ports for the tests, free at the time of the run.
#pragma once

#include "platform/datagram_socket.h"

#include <QUdpSocket>

namespace ecu::test {

inline constexpr platform::Ipv4 loopback = 0x7F000001;

inline std::uint16_t free_port() {
    QUdpSocket probe;
    return probe.bind(QHostAddress(QHostAddress::LocalHost), 0) ? probe.localPort() : std::uint16_t{0};
}

// Binds the socket to a free port and returns that, or 0 when there was none.
inline std::uint16_t bind_free(platform::DatagramSocket& socket) {
    for (int tries = 0; tries < 20; ++tries) {
        const std::uint16_t port = free_port();
        if (socket.bind({}, port).fault == platform::BindFault::none) {
            return port;
        }
    }
    return 0;
}

} // namespace ecu::test
