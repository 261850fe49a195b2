// The resident monitor that takes over when the firmware is stopped for a re-flash. It answers "q" with a banner that
// holds a "B", takes Motorola S-records, and answers "E" to a bad one. Records may run together without line ends, so
// each ends where its own count field says. Nothing else that it says holds a "B" or an "E". A "q" is heard anywhere,
// also in what was left of a record that never came whole.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ecu::controller {

inline constexpr int flash_monitor_baud = 19200;

class FlashMonitor {
public:
    void start();
    bool running() const { return running_; }

    // One byte from the line; returns what the monitor says to it, often nothing. A good record of type 7, 8 or 9
    // ends the file, and with it the monitor if every record was good: the new firmware starts.
    std::string receive(std::uint8_t byte);

    // The record that it refuses though it is good, counted from 1 after each "q"; once.
    void fail_at_line(std::optional<std::uint64_t> line) { fail_at_line_ = line; }
    // What it has received since the last "q".
    const std::string& received() const { return received_; }
    // Of the new firmware: 10300 where the header record's text holds "V1.03.00"; nothing where it holds none.
    std::optional<std::uint16_t> revision() const { return revision_; }

    std::uint32_t records() const { return records_; }       // good ones since the start
    std::uint32_t data_bytes() const { return data_bytes_; } // in the good ones of types 1 to 3

private:
    std::string finish_record();
    void read_header();
    std::string refuse();

    bool running_ = false;
    bool failed_ = false;
    std::string record_; // from its "S" on
    std::uint32_t records_ = 0;
    std::uint32_t data_bytes_ = 0;
    std::uint64_t lines_ = 0; // records since the last "q", refused ones included
    std::optional<std::uint64_t> fail_at_line_;
    std::optional<std::uint16_t> revision_;
    std::string received_;
};

} // namespace ecu::controller
