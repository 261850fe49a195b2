// A serial line of 8 data bits, no parity, 1 stop bit. Ports are numbered as in the menu; the device behind a
// number is the platform's affair.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ecu::platform {

class SerialPort {
public:
    virtual ~SerialPort() = default;
    // Opens port `number` at `baud`. Returns an empty text, or the system's reason why not.
    virtual std::string open(int number, int baud) = 0;
    virtual void close() = 0;
    virtual bool is_open() const = 0;
    virtual void write(std::span<const std::uint8_t> bytes) = 0; // queued; a closed or broken port takes none
    // Tries once to open a port whose device went away while it was open. A write never does: who answers behind it may
    // be another one, and that is to be found out first.
    virtual void reopen_lost() {}
    // How often the port was opened. What answers after it has grown may be another device.
    virtual std::uint32_t openings() const { return 0; }
    virtual std::size_t available() const = 0; // received and not yet read
    virtual std::vector<std::uint8_t> read(std::size_t at_most) = 0;
    virtual std::size_t output_pending() const = 0; // written and not yet on the wire
    // Pushes queued output on without letting events through; returns after `milliseconds` at the latest.
    virtual void drain_output(int milliseconds) = 0;
    // The device that a number stands for ("/dev/ttyUSB0"), or an empty text.
    virtual std::string device_of(int number) const = 0;

    std::vector<std::uint8_t> read_all() { return read(available()); }
    // Forgets all input, what the driver holds and no event has delivered yet included.
    virtual void discard_input() { read_all(); }
};

class SerialPorts {
public:
    virtual ~SerialPorts() = default;
    virtual std::unique_ptr<SerialPort> make_serial_port() = 0;
};

} // namespace ecu::platform
