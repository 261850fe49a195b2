#include "support/sim_network.h"

#include <algorithm>

namespace ecu::test {

std::unique_ptr<SimDatagramSocket> SimNetwork::make_socket() { return std::make_unique<SimDatagramSocket>(*this); }

void SimNetwork::carry(std::vector<std::uint8_t> datagram, std::uint16_t to) {
    if (lost_ > 0) {
        --lost_;
        return;
    }
    events_.schedule(events_.now() + to_microseconds(latency_), [this, to, data = std::move(datagram)] {
        if (const auto socket = bound_.find(to); socket != bound_.end()) {
            socket->second->arrive(data);
        }
    });
}

std::string SimDatagramSocket::bind(std::uint16_t local_port) {
    if (!network_.bound_.emplace(local_port, this).second) {
        return "the address is already in use";
    }
    port_ = local_port;
    return "";
}

void SimDatagramSocket::close() {
    if (port_ != 0) {
        network_.bound_.erase(port_);
        port_ = 0;
    }
    waiting_.clear();
}

void SimDatagramSocket::send(std::span<const std::uint8_t> datagram) {
    network_.carry({datagram.begin(), datagram.end()}, remote_port_);
}

void SimDatagramSocket::arrive(std::vector<std::uint8_t> datagram) {
    waiting_.push_back(std::move(datagram));
    if (on_datagram) {
        on_datagram();
    }
}

std::size_t SimDatagramSocket::available() const {
    std::size_t bytes = 0;
    for (const auto& datagram : waiting_) {
        bytes += datagram.size();
    }
    return bytes;
}

std::vector<std::uint8_t> SimDatagramSocket::read(std::size_t at_most) {
    std::vector<std::uint8_t> bytes;
    while (bytes.size() < at_most && !waiting_.empty()) {
        auto& oldest = waiting_.front();
        const auto end = oldest.begin() + static_cast<std::ptrdiff_t>(std::min(at_most - bytes.size(), oldest.size()));
        bytes.insert(bytes.end(), oldest.begin(), end);
        oldest.erase(oldest.begin(), end);
        sender_ = local_address();
        if (oldest.empty()) {
            waiting_.pop_front();
        }
    }
    return bytes;
}

std::vector<std::uint8_t> SimDatagramSocket::read_datagram() {
    return waiting_.empty() ? std::vector<std::uint8_t>{} : read(waiting_.front().size());
}

} // namespace ecu::test
