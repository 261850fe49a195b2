// The network of the tests. One machine, 127.0.0.1: sockets on it reach one another, and what goes elsewhere reaches
// the test. A socket made without a network is a line between the console and the test. A socket that is given
// datagrams while it delivers others says so: the real one would be deaf from there on.
#pragma once

#include "platform/datagram_socket.h"
#include "support/sim_serial.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace ecu::test {

using platform::Datagram;
using platform::Peer;
inline constexpr platform::Ipv4 loopback = 0x7F000001;

class SimDatagramSocket;

class SimNetwork {
public:
    explicit SimNetwork(SimEvents& events) : events_(events) {}

    struct Sent {
        Peer from;
        Peer to;
        Bytes bytes;
    };
    std::function<void(const Sent&)> outside; // gets what is sent to a port that no socket holds
    void refuse(std::uint16_t port, platform::BindResult result) { refusals_[port] = std::move(result); }
    void allow(std::uint16_t port) { refusals_.erase(port); }
    bool bound(std::uint16_t port) const { return sockets_.contains(port); }
    const std::vector<Sent>& sent() const { return sent_; } // by the sockets here
    void clear_sent() { sent_.clear(); }
    // A datagram of somebody else for the socket of this port; lost when there is none.
    void arrive(const Peer& from, std::uint16_t port, const Bytes& bytes);

    // The sockets' side.
    platform::BindResult bind(SimDatagramSocket& socket, std::uint16_t port);
    void release(const SimDatagramSocket& socket) {
        std::erase_if(sockets_, [&](const auto& bound) { return bound.second == &socket; });
    }
    void send(const SimDatagramSocket& from, const Peer& to, const Bytes& bytes);

private:
    static constexpr Microseconds latency = 200;

    SimEvents& events_;
    std::map<std::uint16_t, SimDatagramSocket*> sockets_;
    std::map<std::uint16_t, platform::BindResult> refusals_;
    std::vector<Sent> sent_;
};

class SimDatagramSocket final : public platform::DatagramSocket {
public:
    explicit SimDatagramSocket(SimNetwork* network = nullptr) : network_(network) {}
    ~SimDatagramSocket() override { close(); }
    SimDatagramSocket(const SimDatagramSocket&) = delete;
    SimDatagramSocket& operator=(const SimDatagramSocket&) = delete;

    std::function<void(const Bytes&)> peer; // without a network: gets each datagram that the console sends
    void arrive(const Bytes& datagram) { arrive(remote_.value_or(Peer{loopback, 999}), datagram); }
    void arrive(const Peer& from, Bytes bytes) {
        if (delivering_) {
            throw std::runtime_error("events were let through inside the delivery of a datagram");
        }
        if ((hear_remote_alone_ && from != remote_) || waiting_.size() >= datagrams_kept) {
            return;
        }
        bytes.resize(std::min(bytes.size(), bytes_kept));
        waiting_.push_back({from, std::move(bytes)});
        if (on_datagrams) {
            delivering_ = true;
            on_datagrams();
            delivering_ = false;
        }
    }

    platform::BindResult bind(std::optional<platform::Ipv4>, std::uint16_t port) override {
        close();
        return network_ != nullptr ? network_->bind(*this, port) : platform::BindResult{};
    }
    void close() override {
        waiting_.clear();
        if (network_ != nullptr) {
            network_->release(*this);
        }
    }
    void set_remote(std::optional<Peer> remote, bool hear_it_alone) override {
        remote_ = remote;
        hear_remote_alone_ = hear_it_alone;
    }
    void send(std::span<const std::uint8_t> datagram) override {
        if (network_ == nullptr && peer) {
            peer({datagram.begin(), datagram.end()});
        } else if (remote_) {
            send_to(*remote_, datagram);
        }
    }
    void send_to(const Peer& to, std::span<const std::uint8_t> datagram) override {
        if (network_ != nullptr) {
            network_->send(*this, to, {datagram.begin(), datagram.end()});
        }
    }
    std::size_t available() const override {
        std::size_t bytes = 0;
        for (const Datagram& datagram : waiting_) {
            bytes += datagram.bytes.size();
        }
        return bytes;
    }
    Bytes read(std::size_t at_most) override {
        Bytes result;
        while (result.size() < at_most && !waiting_.empty()) {
            Bytes& front = waiting_.front().bytes;
            const auto end =
                front.begin() + static_cast<std::ptrdiff_t>(std::min(at_most - result.size(), front.size()));
            result.insert(result.end(), front.begin(), end);
            front.erase(front.begin(), end);
            if (front.empty()) {
                waiting_.pop_front();
            }
        }
        return result;
    }
    std::optional<Datagram> take_datagram() override {
        if (waiting_.empty()) {
            return std::nullopt;
        }
        Datagram datagram = std::move(waiting_.front());
        waiting_.pop_front();
        return datagram;
    }
    void discard_input() override { waiting_.clear(); }
    std::vector<platform::Ipv4> local_addresses() const override { return {0x0A000007}; }
    std::size_t datagrams() const { return waiting_.size(); }

private:
    SimNetwork* network_;
    std::optional<Peer> remote_;
    bool hear_remote_alone_ = false;
    bool delivering_ = false;
    std::deque<Datagram> waiting_;
};

} // namespace ecu::test
