// The controller's running program: it carries out a checked request and gives the reply's bytes. Reads and writes of
// parameters are laid out from the parameter table; live blocks, table memory, driver tests, dyno, tooth capture and
// the restart stand here. A command that it does not know gets no reply.
#pragma once

#include "controller/dyno_run.h"
#include "controller/engine_model.h"
#include "controller/live_blocks.h"
#include "controller/memory.h"
#include "controller/wheel_capture.h"
#include "link/frame.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace ecu::controller {

// Eight drivers of either kind, idle, fuel and ignition control, all general purpose outputs with boost.
inline constexpr std::uint16_t all_capabilities = 0x3F88;
inline constexpr std::uint16_t matching_compatibility = 20003;

struct FirmwareSettings {
    Driving driving = Driving::cycle;
    std::uint64_t seed = 1;
    std::uint16_t capabilities = all_capabilities;
    std::uint16_t compatibility = matching_compatibility;
    std::uint16_t revision = 10200;
    std::uint32_t serial_number = 104077; // 24 bits travel
};

class Firmware {
public:
    explicit Firmware(const FirmwareSettings& settings);
    Firmware(const Firmware&) = delete;
    Firmware& operator=(const Firmware&) = delete;

    // Runs the engine up to `now`, in seconds since the start.
    void advance_to(double now);
    // Carries out a good request as of the time advanced to: the whole reply frame, or nothing.
    std::vector<std::uint8_t> answer(const link::Request& request);

    ControllerMemory& memory() { return memory_; }
    void set_serial_number(std::uint32_t number) { settings_.serial_number = number; }
    void set_revision(std::uint16_t revision) { settings_.revision = revision; }
    void set_wheel_fault(WheelFault fault) { wheel_fault_ = fault; }
    const EngineModel& engine() const { return engine_; }
    const DynoRun& dyno() const { return dyno_; }
    // The drivers that the last test fired, bit n for channel n + 1.
    std::uint16_t fired_injectors() const { return fired_injectors_; }
    std::uint16_t fired_coils() const { return fired_coils_; }
    // Told to stop for a re-flash; cleared by a restart.
    bool stopped() const { return stopped_; }
    void restart();

private:
    using Arguments = std::span<const std::uint8_t, 3>;

    std::optional<Data> data_of(std::uint8_t command, Arguments arguments);
    std::optional<Data> table_memory(std::uint8_t command, Arguments arguments);
    std::optional<Data> live_state(std::uint8_t command) const;
    std::optional<Data> identity(std::uint8_t command) const;
    std::optional<Data> diagnostics(std::uint8_t command, Arguments arguments);
    std::optional<Data> control(std::uint8_t command, Arguments arguments);
    std::uint8_t measure_throttle(std::size_t place);

    FirmwareSettings settings_;
    ControllerMemory memory_;
    EngineModel engine_;
    DynoRun dyno_;
    WheelCapture wheel_;
    WheelFault wheel_fault_ = WheelFault::none;
    Noise noise_;
    std::array<std::uint8_t, 3> scratch_{};
    std::uint16_t fired_injectors_ = 0;
    std::uint16_t fired_coils_ = 0;
    bool stopped_ = false;
};

} // namespace ecu::controller
