#include "calibration/written_value.h"

#include "calibration/encoding.h"

namespace ecu::calibration {

namespace {

constexpr std::size_t command_at = 2;
constexpr std::size_t arguments_at = 3;

constexpr bool has_index(WriteForm form) { return form == WriteForm::element_byte || form == WriteForm::element_word; }

std::int32_t of_width(std::int32_t raw, Width width) {
    switch (width) {
    case Width::byte:
        return raw & 0xFF;
    case Width::word:
        return raw & 0xFFFF;
    case Width::signed_word:
        return static_cast<std::int16_t>(raw & 0xFFFF);
    }
    return raw;
}

} // namespace

std::optional<WrittenValue> written_value(const link::Request& request) {
    const auto word_at = [&](std::size_t at) { return request[at] + 256 * request[at + 1]; };
    const std::uint8_t command = request[command_at];
    if (command == write_cell) {
        const int address = word_at(arguments_at);
        const Table* table = table_at(address);
        if (table == nullptr) {
            return std::nullopt;
        }
        return WrittenValue{{.table = table, .index = address - table->base}, request[arguments_at + 2]};
    }
    const Parameter* row = written_by(command);
    if (row == nullptr) {
        return std::nullopt;
    }
    const bool indexed = has_index(row->write.form);
    const int index = indexed ? request[arguments_at] : 0;
    if (index >= row->count) {
        return std::nullopt;
    }
    return WrittenValue{{.parameter = row, .index = index},
                        of_width(word_at(arguments_at + (indexed ? 1 : 0)), row->read.width)};
}

std::int32_t carried(const FileKey& key, std::int32_t raw) {
    return of_width(raw, key.table != nullptr ? Width::byte : key.parameter->read.width);
}

WriteRequest write_request(const FileKey& key, std::int32_t raw) {
    if (key.table != nullptr) {
        return {cell_write_message(key.table->base + key.index, carried(key, raw)), cell_reply};
    }
    return {write_message(*key.parameter, key.index, raw), key.parameter->write.reply};
}

WriteRequest read_request_of(const FileKey& key) {
    if (key.table != nullptr) {
        return {cell_read_message(key.table->base + key.index), cell_reply};
    }
    return {read_message(read_request(*key.parameter)), key.parameter->read.reply};
}

} // namespace ecu::calibration
