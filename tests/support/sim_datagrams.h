// The console's datagram socket, whose far end is the test.
#pragma once

#include "platform/datagram_socket.h"
#include "support/sim_serial.h"

#include <algorithm>

namespace ecu::test {

class SimDatagramSocket final : public platform::DatagramSocket {
public:
    std::function<void(const Bytes&)> peer; // gets each datagram that the console sends
    void arrive(const Bytes& datagram) { waiting_.insert(waiting_.end(), datagram.begin(), datagram.end()); }

    std::string bind(std::uint16_t) override { return ""; }
    void set_remote(const std::string&, std::uint16_t) override {}
    void close() override {}
    void send(std::span<const std::uint8_t> datagram) override {
        if (peer) {
            peer({datagram.begin(), datagram.end()});
        }
    }
    std::size_t available() const override { return waiting_.size(); }
    Bytes read(std::size_t at_most) override { return take_front(waiting_, at_most); }
    Bytes read_datagram() override { return read(waiting_.size()); }
    std::string sender_address() const override { return "127.0.0.1"; }
    std::string local_address() const override { return "127.0.0.1"; }

private:
    std::deque<std::uint8_t> waiting_;
};

} // namespace ecu::test
