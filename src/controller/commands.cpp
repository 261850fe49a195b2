#include "controller/commands.h"

#include "controller/parameter_commands.h"

#include <algorithm>

namespace ecu::controller {

namespace {

constexpr std::uint8_t arm_code = 165;    // restarts, latches on
constexpr std::uint8_t reflash_code = 90; // stops for the flash monitor
constexpr std::size_t wheel_block = 15;   // periods in one reply

unsigned word_of(std::uint8_t low, std::uint8_t high) { return low + 256U * high; }

} // namespace

Firmware::Firmware(const FirmwareSettings& settings)
    : settings_(settings), engine_(memory_, settings.driving, settings.seed), noise_(settings.seed ^ 0x57EE1U) {}

void Firmware::advance_to(double now) {
    while (engine_.state().time + engine_step <= now) {
        engine_.step();
        dyno_.watch(engine_.state().at.rpm, engine_.state().time);
    }
}

void Firmware::restart() {
    engine_.restart_firmware();
    dyno_ = DynoRun();
    wheel_ = WheelCapture();
    fired_injectors_ = 0;
    fired_coils_ = 0;
    stopped_ = false;
}

std::vector<std::uint8_t> Firmware::answer(const link::Request& request) {
    const std::uint8_t command = request[2];
    const std::optional<Data> data = data_of(command, std::span(request).subspan<3, 3>());
    return data ? link::build_reply(command, *data) : std::vector<std::uint8_t>();
}

std::optional<Data> Firmware::data_of(std::uint8_t command, Arguments arguments) {
    std::optional<Data> data = live_state(command);
    if (!data) {
        data = answer_parameter(memory_, command, arguments);
    }
    if (!data) {
        data = table_memory(command, arguments);
    }
    if (!data) {
        data = identity(command);
    }
    if (!data) {
        data = diagnostics(command, arguments);
    }
    return data ? data : control(command, arguments);
}

std::optional<Data> Firmware::live_state(std::uint8_t command) const {
    switch (command) {
    case 'A':
        return live_block(engine_.state(), engine_.calibration(), dyno_);
    case 129:
        return second_block(engine_.state());
    case 152:
        return idle_block(engine_.state());
    case 178:
        return trigger_block(engine_.state());
    case 207:
        return channel_block(engine_.state());
    default:
        return std::nullopt;
    }
}

std::optional<Data> Firmware::table_memory(std::uint8_t command, Arguments arguments) {
    const std::size_t address = word_of(arguments[0], arguments[1]);
    Data data{arguments[0], arguments[1]};
    if (command == calibration::read_cell || command == calibration::write_cell) {
        if (command == calibration::write_cell) {
            memory_.store_cell(address, arguments[2]);
        }
        data.push_back(memory_.cell(address));
        return data;
    }
    const auto block = std::ranges::find(calibration::block_reads, command, &calibration::BlockRead::command);
    if (block == calibration::block_reads.end()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < block->cells; ++i) {
        data.push_back(memory_.cell(address + i));
    }
    return data;
}

std::optional<Data> Firmware::identity(std::uint8_t command) const {
    Data data;
    switch (command) {
    case 'R':
        put_word(data, unsigned{settings_.revision});
        return data;
    case '-': // the top byte of the number finds no place
        put_word(data, settings_.serial_number & 0xFFFFU);
        put_byte(data, settings_.serial_number >> 16U);
        return data;
    case 179:
        put_word(data, unsigned{settings_.capabilities});
        return data;
    case 180:
        put_word(data, unsigned{settings_.compatibility});
        return data;
    default:
        return std::nullopt;
    }
}

std::optional<Data> Firmware::diagnostics(std::uint8_t command, Arguments arguments) {
    switch (command) {
    case 1:
        fired_injectors_ = static_cast<std::uint16_t>(word_of(arguments[0], arguments[1]));
        return Data{arguments[0], arguments[1]};
    case 2:
        fired_coils_ = static_cast<std::uint16_t>(word_of(arguments[0], arguments[1]));
        return Data{arguments[0], arguments[1]};
    case 3: {
        const auto rpm = static_cast<std::uint16_t>(word_of(arguments[1], arguments[2]));
        arguments[0] == 0 ? dyno_.set_trigger_rpm(rpm) : dyno_.set_end_rpm(rpm);
        return Data{arguments[0], arguments[1], arguments[2]};
    }
    case 4:
        arguments[0] == 1 ? dyno_.arm() : dyno_.disarm();
        return Data{arguments[0]};
    case 247:
        wheel_.capture(engine_.state().at.rpm, noise_, wheel_fault_);
        return Data{0};
    case 248: { // periods high byte first
        Data data{arguments[0]};
        for (std::size_t i = 0; i < wheel_block; ++i) {
            const std::size_t index = arguments[0] * wheel_block + i;
            const unsigned period = index < WheelCapture::periods ? wheel_.period(index) : 0;
            put_byte(data, period >> 8U);
            put_byte(data, period);
        }
        return data;
    }
    default:
        return std::nullopt;
    }
}

std::uint8_t Firmware::measure_throttle(std::size_t place) {
    const double raw = std::clamp(engine_.state().tps_sensor * 255, 0.0, 255.0);
    memory_.store(place, static_cast<std::uint16_t>(raw + 0.5));
    return static_cast<std::uint8_t>(memory_.value(place));
}

std::optional<Data> Firmware::control(std::uint8_t command, Arguments arguments) {
    switch (command) {
    case 'D':
    case 'd': // the upper-case letter stops the oxygen feedback
        engine_.set_oxygen_feedback(command == 'd');
        return Data{};
    case 'F': {
        Data data;
        put_word(data, engine_.state().tps_sensor * 1023);
        put_word(data, engine_.state().at.aux_volts / 3.3 * 1023);
        return data;
    }
    case 'x':
        std::ranges::copy(arguments, scratch_.begin());
        [[fallthrough]];
    case 'X':
        return Data(scratch_.begin(), scratch_.end());
    case '+':
        return Data{0};
    case 169:
        engine_.hold_timing_at_zero(arguments[0] == arm_code);
        return Data{arguments[0]};
    case 174:
        if (arguments[0] == arm_code) {
            restart();
        } else if (arguments[0] == reflash_code) {
            stopped_ = true;
        }
        return Data{arguments[0]};
    case 215: // the throttle stands closed
        return Data{measure_throttle(slot("TPS_BASE"))};
    case 216: // the throttle stands opened
        return Data{measure_throttle(slot("TPS_FS"))};
    default:
        return std::nullopt;
    }
}

} // namespace ecu::controller
