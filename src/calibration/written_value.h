// A request looked up backwards: which row, element and raw number a message sets, if it sets any. The screens' form of
// a message and a setup file's are read alike. Pure; the mirror of write_message, file_message and cell_write_message.
#pragma once

#include "calibration/setup_file.h"
#include "link/frame.h"

#include <optional>

namespace ecu::calibration {

struct WrittenValue {
    FileKey key;
    std::int32_t raw = 0; // as the controller stores it: the low byte of what is a byte
};

// Nothing for a message that sets no value, an element that its vector has not, or an address outside the tables.
std::optional<WrittenValue> written_value(const link::Request& request);

// What the item's message carries of a raw number, which is the number itself if it fits.
std::int32_t carried(const FileKey& key, std::int32_t raw);

// The message of the screens that sets the item, and the payload count awaited for it.
struct WriteRequest {
    link::Message message;
    int reply = 0;
};
WriteRequest write_request(const FileKey& key, std::int32_t raw);
// The message that reads the item alone or among others.
WriteRequest read_request_of(const FileKey& key);

} // namespace ecu::calibration
