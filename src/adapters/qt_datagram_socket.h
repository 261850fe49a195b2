// Datagrams over QUdpSocket. What arrives is taken from the system at once and queued here, so that it can be read
// byte by byte across datagrams or one datagram at a time, and a full system buffer never wakes the loop for nothing.
#pragma once

#include "platform/datagram_socket.h"

namespace ecu::adapters {

class QtDatagramSockets final : public platform::DatagramSockets {
public:
    std::unique_ptr<platform::DatagramSocket> make_datagram_socket() override;
};

} // namespace ecu::adapters
