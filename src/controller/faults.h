// What befalls replies on their way: each kind strikes at its rate, drawn from a seed, or exactly the next replies
// when a test asks for it. The request itself has been carried out in every case; only silence and a pulled plug
// keep the controller from hearing it.
#pragma once

#include "controller/noise.h"
#include "controller/wheel_capture.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace ecu::controller {

// `foreign`: the reply of the message before comes once more, in this one's place.
enum class Fault : std::uint8_t { lost, late, cut, corrupted, surplus, foreign };
inline constexpr std::size_t fault_count = 6;

struct FaultPlan {
    std::array<double, fault_count> rate{};    // 0 to 1, by Fault; the first kind that strikes is the one that does
    double late_by = 0.15;                     // seconds; the console gives a try 0.1
    bool silent = false;                       // hears nothing, says nothing
    std::optional<std::uint64_t> unplug_after; // so many replies; the request after them pulls the plug
    std::optional<std::uint32_t> replug_as;    // then another controller is plugged in, of this serial number

    WheelFault wheel = WheelFault::none;
    std::optional<std::uint64_t> flash_error_at_line; // counted from 1; the first run that reaches it, and no other

    double& operator[](Fault fault) { return rate[static_cast<std::size_t>(fault)]; }
};

class Faults {
public:
    Faults(const FaultPlan& plan, std::uint64_t seed) : plan_(plan), noise_(seed) {}

    // The next `times` replies suffer `fault`, whatever the rates say.
    void strike_next(Fault fault, int times = 1);
    void set_late_by(double seconds) { plan_.late_by = seconds; }
    void set_silent(bool silent) { plan_.silent = silent; }
    void unplug() { unplugged_ = true; }
    void plug_in();

    const std::optional<std::uint32_t>& replug_as() const { return plan_.replug_as; }

    bool silent() const { return plan_.silent; }
    bool unplugged() const { return unplugged_; }

    // Called for every good request before it is carried out; pulls the plug when its time has come.
    void note_request();
    // Changes `reply` (a lost one is left empty) and returns the seconds by which it is held back.
    double befall(std::vector<std::uint8_t>& reply);

private:
    std::optional<Fault> draw();

    FaultPlan plan_;
    Noise noise_;
    std::optional<Fault> forced_;
    int forced_times_ = 0;
    std::vector<std::uint8_t> reply_before_;
    std::uint64_t replies_ = 0;
    bool unplugged_ = false;
};

} // namespace ecu::controller
