// Datagrams over QUdpSocket. What arrives is taken from the system as it comes, a bounded number with each event, and
// what nobody wants is dropped there, so that neither a flood nor a full system buffer keeps the loop busy for nothing.
#pragma once

#include "platform/datagram_socket.h"

namespace ecu::adapters {

class QtDatagramSockets final : public platform::DatagramSockets {
public:
    std::unique_ptr<platform::DatagramSocket> make_datagram_socket() override;
};

} // namespace ecu::adapters
