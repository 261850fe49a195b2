// A datagram socket that is read as a stream of bytes: `available` counts all bytes of the datagrams that wait.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ecu::platform {

class DatagramSocket {
public:
    virtual ~DatagramSocket() = default;
    // Binds to a local port. Returns an empty text, or the system's reason why not.
    virtual std::string bind(std::uint16_t local_port) = 0;
    virtual void set_remote(const std::string& host, std::uint16_t port) = 0;
    virtual void close() = 0;
    virtual void send(std::span<const std::uint8_t> datagram) = 0; // to the remote host and port
    virtual std::size_t available() const = 0;
    virtual std::vector<std::uint8_t> read(std::size_t at_most) = 0; // across datagrams, in order of arrival
    virtual std::vector<std::uint8_t> read_datagram() = 0;           // the oldest one, whole
    virtual std::string sender_address() const = 0;                  // of the datagram read last
    virtual std::string local_address() const = 0;
    std::function<void()> on_datagram; // one arrived; if unset the bytes just wait
};

class DatagramSockets {
public:
    virtual ~DatagramSockets() = default;
    virtual std::unique_ptr<DatagramSocket> make_datagram_socket() = 0;
};

} // namespace ecu::platform
