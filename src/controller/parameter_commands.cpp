#include "controller/parameter_commands.h"

#include "calibration/scalars.h"
#include "calibration/vectors.h"

namespace ecu::controller {

namespace {

constexpr std::size_t data_begins = 3; // offset of the first data byte in a reply

void place(Data& data, std::size_t offset, unsigned value, bool word) {
    data[offset] = static_cast<std::uint8_t>(value & 0xFFU);
    if (word) {
        data[offset + 1] = static_cast<std::uint8_t>(value >> 8U & 0xFFU);
    }
}

} // namespace

ParameterCommands::ParameterCommands() {
    for (const calibration::Parameter& row : calibration::scalars) {
        add(row);
    }
    for (const calibration::Parameter& row : calibration::vectors) {
        add(row);
    }
}

void ParameterCommands::add(const calibration::Parameter& row) {
    const std::size_t slot = ControllerMemory::slot_of(row.key);
    if (row.read.command != 0) {
        ReadRoute& route = reads_[row.read.command];
        route.size = row.read.reply - data_begins;
        const bool word = calibration::bytes_of(row.read.width) == 2;
        route.fields.push_back({row.read.offset - data_begins, slot, row.count, word});
    }
    if (row.write.command != 0) {
        writes_[row.write.command] = {&row, slot};
    }
}

std::optional<Data> ParameterCommands::answer(ControllerMemory& memory, std::uint8_t command,
                                              std::span<const std::uint8_t, 3> arguments) const {
    if (const ReadRoute& route = reads_[command]; route.size != 0) {
        Data data(route.size);
        for (const Field& field : route.fields) {
            for (std::size_t i = 0; i < field.elements; ++i) {
                place(data, field.offset + i * (field.word ? 2 : 1), memory.value(field.slot + i), field.word);
            }
        }
        return data;
    }
    const WriteRoute& route = writes_[command];
    if (route.row == nullptr) {
        return std::nullopt;
    }
    const auto word_at = [&](std::size_t at) {
        return static_cast<std::uint16_t>(arguments[at] + 256 * arguments[at + 1]);
    };
    const std::size_t element = arguments[0];
    const bool inside = element < route.row->count;
    switch (route.row->write.form) {
    case calibration::WriteForm::byte:
        memory.store(route.slot, arguments[0]);
        return Data{arguments[0]};
    case calibration::WriteForm::word:
        memory.store(route.slot, word_at(0));
        return Data{arguments[0], arguments[1]};
    case calibration::WriteForm::element_byte:
        if (inside) {
            memory.store(route.slot + element, arguments[1]);
        }
        return Data{arguments[0], arguments[1]};
    case calibration::WriteForm::element_word:
        if (inside) {
            memory.store(route.slot + element, word_at(1));
        }
        return Data{arguments[0], arguments[1], arguments[2]};
    }
    return std::nullopt;
}

} // namespace ecu::controller
