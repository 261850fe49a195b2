// Datagram sockets on one simulated host: a datagram reaches whatever is bound to the port it is sent to, one
// millisecond later, or nobody. Host names are recorded and not looked at.
#pragma once

#include "platform/datagram_socket.h"
#include "support/sim_events.h"

#include <deque>
#include <map>

namespace ecu::test {

class SimDatagramSocket;

class SimNetwork {
public:
    explicit SimNetwork(SimEvents& events) : events_(events) {}
    void lose_next_datagrams(int count) { lost_ = count; }
    void set_latency(double seconds) { latency_ = seconds; }
    // A socket that stays with the test or goes to the console.
    std::unique_ptr<SimDatagramSocket> make_socket();

private:
    friend class SimDatagramSocket;
    void carry(std::vector<std::uint8_t> datagram, std::uint16_t to);

    SimEvents& events_;
    std::map<std::uint16_t, SimDatagramSocket*> bound_;
    double latency_ = 0.001;
    int lost_ = 0;
};

class SimDatagramSocket final : public platform::DatagramSocket {
public:
    explicit SimDatagramSocket(SimNetwork& network) : network_(network) {}
    ~SimDatagramSocket() override { close(); }
    SimDatagramSocket(const SimDatagramSocket&) = delete;
    SimDatagramSocket& operator=(const SimDatagramSocket&) = delete;

    std::string bind(std::uint16_t local_port) override;
    void set_remote(const std::string& host, std::uint16_t port) override {
        remote_host_ = host;
        remote_port_ = port;
    }
    void close() override;
    void send(std::span<const std::uint8_t> datagram) override;
    std::size_t available() const override;
    std::vector<std::uint8_t> read(std::size_t at_most) override;
    std::vector<std::uint8_t> read_datagram() override;
    std::string sender_address() const override { return sender_; }
    std::string local_address() const override { return "127.0.0.1"; }

    const std::string& remote_host() const { return remote_host_; }

private:
    friend class SimNetwork;
    void arrive(std::vector<std::uint8_t> datagram);

    SimNetwork& network_;
    std::uint16_t port_ = 0; // 0 when not bound
    std::string remote_host_;
    std::uint16_t remote_port_ = 0;
    std::string sender_;
    std::deque<std::vector<std::uint8_t>> waiting_;
};

} // namespace ecu::test
