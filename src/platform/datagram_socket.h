// A datagram socket over IPv4. What arrives is kept whole and can be read datagram by datagram or as a stream of bytes;
// how much is kept is bounded, so that nobody on the network can fill the memory. Names are never looked up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::platform {

using Ipv4 = std::uint32_t; // 10.0.0.7 is 0x0A000007

std::string dotted(Ipv4 address);
// Four numbers from 0 to 255 with points between, blanks around them aside; anything else is no address.
std::optional<Ipv4> ipv4_of(std::string_view text);

struct Peer {
    Ipv4 address = 0;
    std::uint16_t port = 0;
    bool operator==(const Peer&) const = default;
};

struct Datagram {
    Peer from;
    std::vector<std::uint8_t> bytes;
};

// Why a local port was refused, and in the system's words.
enum class BindFault : std::uint8_t { none, not_permitted, in_use, no_such_address, other };
struct BindResult {
    BindFault fault = BindFault::none;
    std::string reason = {};
};

class DatagramSocket {
public:
    // What is kept until it is read: later ones are dropped, and of a longer one what stands behind.
    static constexpr std::size_t datagrams_kept = 64;
    static constexpr std::size_t bytes_kept = 2048;

    virtual ~DatagramSocket() = default;
    // Closes first. Without an address the port is bound on all of the machine's.
    virtual BindResult bind(std::optional<Ipv4> local_address, std::uint16_t local_port) = 0;
    virtual void close() = 0;
    // Where send() goes to; without one it sends nothing. With `hear_it_alone` what comes from elsewhere is dropped.
    virtual void set_remote(std::optional<Peer> remote, bool hear_it_alone) = 0;
    virtual void send(std::span<const std::uint8_t> datagram) = 0;
    virtual void send_to(const Peer& peer, std::span<const std::uint8_t> datagram) = 0;

    virtual std::size_t available() const = 0;                       // bytes, of all datagrams that wait
    virtual std::vector<std::uint8_t> read(std::size_t at_most) = 0; // across datagrams, in order of arrival
    virtual std::optional<Datagram> take_datagram() = 0;             // the oldest one
    // Forgets all input, what the system holds and no event has delivered yet included.
    virtual void discard_input() = 0;
    virtual std::vector<Ipv4> local_addresses() const = 0; // of the machine, its loopback aside

    // Datagrams arrived. It runs inside the socket's own delivery: whoever takes them here lets no events through.
    std::function<void()> on_datagrams;
};

class DatagramSockets {
public:
    virtual ~DatagramSockets() = default;
    virtual std::unique_ptr<DatagramSocket> make_datagram_socket() = 0;
};

} // namespace ecu::platform
