// The resident monitor that takes over when the firmware is stopped for a re-flash. It answers "q" with a banner that
// holds a "B", takes Motorola S-records, and answers "E" to a bad one. Records may run together without line ends, so
// each ends where its own count field says. Nothing else that it says holds a "B" or an "E".
#pragma once

#include <cstdint>
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

    std::uint32_t records() const { return records_; }       // good ones since the start
    std::uint32_t data_bytes() const { return data_bytes_; } // in the good ones of types 1 to 3

private:
    std::string finish_record();
    std::string refuse();

    bool running_ = false;
    bool failed_ = false;
    std::string record_; // from its "S" on
    std::uint32_t records_ = 0;
    std::uint32_t data_bytes_ = 0;
};

} // namespace ecu::controller
