// A pseudo-terminal with a virtual controller behind it. One thread sleeps until bytes come, until bytes are due, or
// until it is told to end. Paced bytes are handed over at their own times, which follow from the arrival of the request
// alone, so that no lateness adds up.
#pragma once

#include "controller/virtual_controller.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ecu::controller {

// An open file descriptor, closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const { return number_; }
    bool open() const { return number_ >= 0; }
    void close();

private:
    int number_;
};

class PtyServer {
public:
    // Opens the pseudo-terminal; std::system_error when the system has none to give.
    explicit PtyServer(VirtualController& controller);

    const std::string& device() const { return device_; }

    // Serves until `end_fd` becomes readable or the controller is unplugged, which closes the terminal. Clients may
    // come and go. `when_idle` runs about once a second while no bytes are under way.
    void serve(int end_fd, const std::function<void()>& when_idle);

private:
    double now() const;
    bool wait(int end_fd); // false when it is time to end
    void take_in();
    void hand_out();

    VirtualController& controller_;
    Descriptor master_;
    Descriptor slave_; // held open so that a client's leaving does not hang up the line
    std::string device_;
    std::int64_t started_; // nanoseconds of the monotonic clock
};

} // namespace ecu::controller
