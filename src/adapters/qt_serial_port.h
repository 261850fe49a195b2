// Serial ports over QSerialPort: 8 data bits, no parity, 1 stop bit. Port n is the device named by the environment
// variable ECU_PORT_<n>; else COM<n> on Windows; else the first that exists of /dev/ttyUSB<n-1>, /dev/ttyACM<n-1>,
// /dev/ttyS<n-1>. A device that is unplugged closes the port by itself: writes are then taken by nobody, nothing
// arrives, and the next open starts afresh. A write tries that open by itself, so that a device that was plugged in
// again answers the next try.
#pragma once

#include "platform/serial_port.h"

namespace ecu::adapters {

class QtSerialPorts final : public platform::SerialPorts {
public:
    std::unique_ptr<platform::SerialPort> make_serial_port() override;
};

// The device that a port number stands for, or an empty text.
std::string device_of_port(int number);

} // namespace ecu::adapters
