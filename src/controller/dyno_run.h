// The dyno's state machine: once armed it waits for the engine to rise through the trigger rpm and counts the
// milliseconds from there to the end rpm. The count is 16 bits wide and wraps after 65.5 s.
#pragma once

#include <cstdint>

namespace ecu::controller {

enum class DynoState : std::uint8_t { disarmed, armed, running, finished };

class DynoRun {
public:
    void set_trigger_rpm(std::uint16_t rpm) { trigger_rpm_ = rpm; }
    void set_end_rpm(std::uint16_t rpm) { end_rpm_ = rpm; }
    void arm() { state_ = DynoState::armed; }
    void disarm() { state_ = DynoState::disarmed; }

    // The engine's rpm at `now` in seconds; called for every step of the engine.
    void watch(double rpm, double now) {
        if (state_ == DynoState::armed && last_rpm_ < trigger_rpm_ && rpm >= trigger_rpm_) {
            state_ = DynoState::running;
            started_ = now;
            samples_ = 0;
        } else if (state_ == DynoState::running) {
            const auto milliseconds = static_cast<std::uint64_t>((now - started_) * 1000 + 0.5);
            samples_ = static_cast<std::uint16_t>(milliseconds & 0xFFFFU);
            if (rpm >= end_rpm_) {
                state_ = DynoState::finished;
            }
        }
        last_rpm_ = rpm;
    }

    DynoState state() const { return state_; }
    std::uint16_t samples() const { return samples_; }

private:
    DynoState state_ = DynoState::disarmed;
    std::uint16_t trigger_rpm_ = 2500;
    std::uint16_t end_rpm_ = 8000;
    std::uint16_t samples_ = 0;
    double last_rpm_ = 0;
    double started_ = 0;
};

} // namespace ecu::controller
