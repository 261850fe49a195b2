#include "calibration/encoding.h"

#include "platform/display_mask.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"

#include <charconv>

namespace ecu::calibration {

namespace {

using platform::byte_high;
using platform::byte_low;
using platform::round_to_even;

constexpr double boost_shown_duty = 256;   // raw of full duty as a cell is shown,
constexpr double boost_entered_duty = 255; // and as an entry is encoded;
constexpr double boost_shown_span = 255;   // raw of the full pressure span as a cell is shown,
constexpr double boost_entered_span = 256; // and as an entry is encoded: the two pairs are crossed
constexpr int relay_shift = 127;
constexpr std::int32_t threshold_wrap = 255; // not 256, as the controller's display has it

// The quotient goes through its own text on its way to single precision.
float single_by_text(float value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 7).ptr;
    float read = 0;
    std::from_chars(text.data(), end, read);
    return read;
}

// A tie is a tie of decimal numbers: 0.204 ms is exactly 127.5 ticks, whatever the binary product makes of it.
// Fifteen digits hold every entry and shed the residue of the computation.
std::int32_t round_as_decimal(double value) {
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 15).ptr;
    std::from_chars(text.data(), end, value);
    return round_to_even(value);
}

// The inverse of shown_value, not yet rounded.
double unrounded_raw(const Conversion& conversion, double value, const Scales& scales) {
    switch (conversion.kind) {
    case ConversionKind::linear:
        return value * conversion.divide / conversion.multiply + conversion.zero;
    case ConversionKind::pressure:
        return (value - scales.map_base) / scales.map_span * conversion.divide;
    case ConversionKind::engine_speed:
        return value / scales.full_scale_rpm * conversion.divide;
    case ConversionKind::lambda:
        return single_by_text(scales.lambda_from_display(static_cast<float>(value))) * conversion.divide;
    case ConversionKind::boost:
        return scales.boost_as_pwm ? value / 100 * boost_entered_duty
                                   : (value - scales.map_base) / scales.map_span * boost_entered_span;
    case ConversionKind::signed_byte:
    case ConversionKind::prime_threshold:
        return value;
    case ConversionKind::relay: {
        const std::int32_t whole = round_to_even(value);
        return whole < 0 ? whole + relay_shift : whole;
    }
    }
    return 0;
}

EncodedEntry encode(const Entry& entry, const Conversion& scale, Width width, std::string_view text,
                    const Scales& scales) {
    EncodedEntry out;
    double value = platform::leading_number(text);
    if (value > entry.ask_above) {
        out.question = entry.question;
    }
    if (!entry.lowest.text.empty() && value < entry.lowest.value) {
        out.replaced = entry.lowest.text;
    } else if (!entry.highest.text.empty() && value > entry.highest.value) {
        out.replaced = entry.highest.text;
    }
    if (!out.replaced.empty()) {
        out.notice = entry.replaced_notice;
        value = platform::leading_number(out.replaced);
    }
    const std::int32_t raw = round_as_decimal(unrounded_raw(scale, value, scales));
    const double tested = entry.refusal.of_entry ? value : raw;
    if (tested >= entry.refusal.from) {
        out.refusal = entry.refusal.from_text;
    } else if (tested < entry.refusal.below) {
        out.refusal = entry.refusal.below_text;
    }
    out.raw = std::clamp(raw, entry.raw_low, entry.raw_high);
    const std::int32_t kept = entry.low_byte ? byte_low(out.raw) : out.raw;
    const bool held_by_row = out.raw != raw;
    out.raw = kept;
    switch (width) {
    case Width::byte:
        out.raw = std::clamp(out.raw, 0, 255);
        break;
    case Width::word:
        out.raw = std::clamp(out.raw, 0, 65535);
        break;
    case Width::signed_word:
        out.raw = std::clamp(out.raw, -32768, 32767);
        break;
    }
    out.held = out.refusal.empty() && out.notice.empty() && (held_by_row || out.raw != kept || !out.replaced.empty());
    return out;
}

link::Message message(WriteForm form, std::uint8_t command, int index, std::int32_t raw) {
    const auto place = static_cast<std::uint8_t>(index);
    switch (form) {
    case WriteForm::byte:
        return {command, byte_low(raw), 0, 0};
    case WriteForm::word:
        return {command, byte_low(raw), byte_high(raw), 0};
    case WriteForm::element_byte:
        return {command, place, byte_low(raw), 0};
    case WriteForm::element_word:
        return {command, place, byte_low(raw), byte_high(raw)};
    }
    return {};
}

} // namespace

double shown_value(const Conversion& conversion, std::int32_t raw, const Scales& scales) {
    switch (conversion.kind) {
    case ConversionKind::linear:
        return (raw - conversion.zero) * conversion.multiply / conversion.divide;
    case ConversionKind::pressure:
        return raw * double{scales.map_span} / conversion.divide + scales.map_base;
    case ConversionKind::engine_speed:
        return double{scales.full_scale_rpm} * raw / conversion.divide;
    case ConversionKind::lambda:
        return scales.lambda_to_display(static_cast<float>(raw / conversion.divide));
    case ConversionKind::boost:
        return scales.boost_as_pwm ? raw * 100 / boost_shown_duty
                                   : raw * double{scales.map_span} / boost_shown_span + scales.map_base;
    case ConversionKind::signed_byte:
        return raw > 127 ? raw - 256 : raw;
    case ConversionKind::relay:
        return raw;
    case ConversionKind::prime_threshold:
        return std::clamp(raw > 127 ? raw - threshold_wrap : raw, -14, 120);
    }
    return 0;
}

std::string shown_as(const Conversion& conversion, std::string_view mask, std::int32_t raw, const Scales& scales) {
    const double value = shown_value(conversion, raw, scales);
    if (conversion.kind == ConversionKind::lambda) {
        return platform::masked(static_cast<float>(value), value > 1 ? "#0.00" : mask);
    }
    if (mask.empty()) {
        return std::to_string(round_to_even(value));
    }
    return platform::masked(value, mask);
}

std::string shown(const Parameter& row, std::int32_t raw, const Scales& scales) {
    return shown_as(row.shown, row.mask, raw, scales);
}

std::string shown(const Table& row, std::int32_t raw, const Scales& scales) {
    return shown_as(row.shown, row.mask, raw, scales);
}

EncodedEntry raw_from_entry(const Parameter& row, std::string_view text, const Scales& scales) {
    return encode(row.entry, row.shown, row.read.width, text, scales);
}

EncodedEntry raw_from_entry(const Table& row, std::string_view text, const Scales& scales) {
    return encode(row.entry, row.entry_scale.value_or(row.shown), Width::byte, text, scales);
}

link::Message read_message(const ReadRequest& request) {
    if (request.zeros) {
        return {request.command, 0, 0, 0};
    }
    return {request.command};
}

link::Message write_message(const Parameter& row, int index, std::int32_t raw) {
    return message(row.write.form, row.write.command, index, raw);
}

link::Message file_message(const Parameter& row, int index, std::int32_t raw) {
    return message(row.write.file_form, row.write.command, index, raw);
}

link::Message cell_read_message(int address) { return {read_cell, byte_low(address), byte_high(address), 0}; }

link::Message cell_write_message(int address, int value) {
    return {write_cell, byte_low(address), byte_high(address), byte_low(value)};
}

link::Message block_read_message(const BlockRead& block, int address) {
    return {block.command, byte_low(address), byte_high(address), 0};
}

std::int32_t value_at(const link::Reply& reply, int offset, Width width) {
    switch (width) {
    case Width::byte:
        return reply[static_cast<std::size_t>(offset)];
    case Width::word:
        return word_at(reply, offset);
    case Width::signed_word: {
        const std::int32_t word = word_at(reply, offset);
        return word >= 32768 ? word - 65536 : word;
    }
    }
    return 0;
}

} // namespace ecu::calibration
