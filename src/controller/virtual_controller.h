// A whole engine controller as a machine of bytes: the console's bytes go in with the time at which they were
// written, the controller's come out with the time at which they arrive. It has no clock, no thread and no device of
// its own, so that it serves a pseudo-terminal in real time and a test in simulated time alike.
#pragma once

#include "controller/commands.h"
#include "controller/faults.h"
#include "controller/flash_monitor.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace ecu::controller {

struct Settings {
    FirmwareSettings firmware;
    FaultPlan faults;
    int pace_baud = 0; // wire time of requests and replies, 10 bits a byte; 0: answers at once
};

class VirtualController {
public:
    explicit VirtualController(const Settings& settings = {});

    // Bytes that the console wrote at `now`, in seconds since the controller's start; `now` never falls.
    void receive(std::span<const std::uint8_t> bytes, double now);
    // When the next bytes reach the console; nothing while none are under way.
    std::optional<double> next_output() const;
    // Takes all that has reached the console by `now`.
    std::vector<std::uint8_t> take_output(double now);

    // Another controller in this one's place: of this serial number, with another fuel map, and plugged in.
    void exchange(std::uint32_t serial_number);

    bool unplugged() const { return faults_.unplugged(); }
    Faults& faults() { return faults_; }
    Firmware& firmware() { return firmware_; }
    ControllerMemory& memory() { return firmware_.memory(); }
    FlashMonitor& flash_monitor() { return flash_monitor_; }

    // Sees every good request before it is carried out, also one whose reply a fault will swallow.
    std::function<void(const link::Request&)> on_request;

private:
    struct Delivery {
        double time;
        std::vector<std::uint8_t> bytes;
    };

    void serve_requests(double arrival);
    void serve_monitor(std::uint8_t byte, double arrival);
    void send(std::span<const std::uint8_t> bytes, double earliest);
    double byte_time() const;

    int pace_baud_;
    Faults faults_;
    Firmware firmware_;
    FlashMonitor flash_monitor_;
    std::vector<std::uint8_t> pending_; // received, not yet a whole request
    std::deque<Delivery> output_;
    double line_in_free_ = 0; // when the last byte towards the controller has passed
    double line_out_free_ = 0;
};

} // namespace ecu::controller
