// Everything that the console asks of the machine it runs on, handed down from the one place that constructs it.
#pragma once

#include "platform/clock.h"
#include "platform/datagram_socket.h"
#include "platform/dialogs.h"
#include "platform/serial_port.h"
#include "platform/timers.h"
#include "platform/waiting.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

namespace ecu::platform {

// A variable of the program's surroundings; an empty text when it is not set.
using Environment = std::function<std::string(const char* name)>;

inline std::string process_environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

struct Ports {
    const Clock& clock;
    Waiting& waiting;
    Timers& timers;
    Dialogs& dialogs;
    Program& program;
    SerialPorts& serial_ports;
    DatagramSockets& datagram_sockets;
    std::filesystem::path folder = "."; // the working directory: port.cfg, lambda.txt, OEM.JPG, ...
    Environment environment = process_environment;

    float now() const { return clock.seconds_since_midnight(); }
    float elapsed_since(float start) const { return elapsed_between(start, now()); }
    void wait_seconds(float seconds) const { platform::wait_seconds(waiting, clock, seconds); }
};

} // namespace ecu::platform
