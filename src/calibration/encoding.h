// The functions that act on the rows of the parameter table, all pure: raw number to text, entry to raw number, raw
// number to message, and reply to raw number. Raw numbers are the integers of the wire, INJO's negative where it is.
#pragma once

#include "calibration/parameters.h"
#include "calibration/scales.h"
#include "link/ecu_comm.h"

#include <string>

namespace ecu::calibration {

// -- Raw to shown

// The engineering value, and its text through the row's mask. What has no text of its own (switches) shows as the
// plain raw integer.
double shown_value(const Conversion& conversion, std::int32_t raw, const Scales& scales);
std::string shown(const Parameter& row, std::int32_t raw, const Scales& scales);
std::string shown(const Table& row, std::int32_t raw, const Scales& scales);
// By another conversion than the row's own, through the row's mask.
std::string shown_as(const Conversion& conversion, std::string_view mask, std::int32_t raw, const Scales& scales);

// -- Entry to raw

// What a typed text leads to. The caller acts in this order: asks `question` (Yes, No, Cancel; anything but Yes skips
// the value), writes `replaced` into the box, says `notice`, says `refusal` and sends nothing, or else sends `raw`.
struct EncodedEntry {
    std::int32_t raw = 0;
    std::string_view question;
    std::string_view replaced;
    std::string_view notice;
    std::string_view refusal;
    bool held = false; // the raw number is that of a limit, which nothing says
};
EncodedEntry raw_from_entry(const Parameter& row, std::string_view text, const Scales& scales);
EncodedEntry raw_from_entry(const Table& row, std::string_view text, const Scales& scales);

// -- Messages

link::Message read_message(const ReadRequest& request);
// `index` counts only for vectors. The raw number is sent in 16 bits, a byte value in its low 8.
link::Message write_message(const Parameter& row, int index, std::int32_t raw);
// The same as a setup file's reader sends it, to be awaited with write.file_reply.
link::Message file_message(const Parameter& row, int index, std::int32_t raw);
link::Message cell_read_message(int address);
link::Message cell_write_message(int address, int value);
link::Message block_read_message(const BlockRead& block, int address);

// -- Replies

// The word at an offset, low byte first.
constexpr std::int32_t word_at(const link::Reply& reply, int offset) {
    const auto at = static_cast<std::size_t>(offset);
    return reply[at] + 256 * reply[at + 1];
}
// The value of this width at an offset.
std::int32_t value_at(const link::Reply& reply, int offset, Width width);

} // namespace ecu::calibration
