#include "controller/parameter_commands.h"

namespace ecu::controller {

namespace {

constexpr int data_begins = 3; // offset of the first data byte in a reply

void place(Data& data, int offset, unsigned value, bool word) {
    const auto at = static_cast<std::size_t>(offset - data_begins);
    data[at] = static_cast<std::uint8_t>(value & 0xFFU);
    if (word) {
        data[at + 1] = static_cast<std::uint8_t>(value >> 8U & 0xFFU);
    }
}

Data read_all(const ControllerMemory& memory, std::uint8_t command, std::uint8_t payload_count) {
    Data data(payload_count - std::size_t{data_begins});
    std::size_t first = 0;
    for (const calibration::Parameter& row : calibration::parameters) {
        for (int i = 0; row.read.command == command && i < row.count; ++i) {
            const bool word = calibration::bytes_of(row.read.width) == 2;
            place(data, row.offset_of(i), memory.value(first + static_cast<std::size_t>(i)), word);
        }
        first += row.count;
    }
    return data;
}

} // namespace

std::optional<Data> answer_parameter(ControllerMemory& memory, std::uint8_t command,
                                     std::span<const std::uint8_t, 3> arguments) {
    if (const calibration::Parameter* row = calibration::first_read_by(command)) {
        return read_all(memory, command, row->read.reply);
    }
    const calibration::Parameter* row = calibration::written_by(command);
    if (row == nullptr) {
        return std::nullopt;
    }
    const std::size_t first = calibration::first_element(*row);
    const std::size_t element = arguments[0];
    const auto word_at = [&](std::size_t at) {
        return static_cast<std::uint16_t>(arguments[at] + 256 * arguments[at + 1]);
    };
    switch (row->write.form) {
    case calibration::WriteForm::byte:
        memory.store(first, arguments[0]);
        return Data{arguments[0]};
    case calibration::WriteForm::word:
        memory.store(first, word_at(0));
        return Data{arguments[0], arguments[1]};
    case calibration::WriteForm::element_byte:
        if (element < row->count) {
            memory.store(first + element, arguments[1]);
        }
        return Data{arguments[0], arguments[1]};
    case calibration::WriteForm::element_word:
        if (element < row->count) {
            memory.store(first + element, word_at(1));
        }
        return Data{arguments[0], arguments[1], arguments[2]};
    }
    return std::nullopt;
}

} // namespace ecu::controller
