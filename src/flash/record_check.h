// Looks through a record file before it is flashed: record types, lengths, checksums, addresses, overlaps and the end
// record, each fault with its line; and what the file holds. The rehearsal gives the file to a monitor that is not
// there in metal. Both only advise: they hold no flashing back.
#pragma once

#include "flash/record_file.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ecu::flash {

struct RecordFault {
    std::size_t line = 0; // from 1; 0: the file as a whole
    std::string text;
};

struct AddressRange {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
};

struct RecordReport {
    static constexpr std::size_t faults_kept = 500;

    std::vector<RecordFault> faults; // the first ones
    std::size_t fault_count = 0;
    std::size_t lines = 0;
    std::size_t file_bytes = 0;
    std::array<std::size_t, 10> records{}; // good ones, by type
    std::size_t data_bytes = 0;
    std::vector<AddressRange> ranges;    // of the data, in order, neighbours joined; between them are the gaps
    std::string header;                  // the text of the header record
    std::optional<std::uint32_t> starts; // the address in the end record
};

RecordReport check_records(const RecordFile& file);

// A monitor as the rehearsal needs it: what it says to a byte, and whether it has started the new firmware.
struct Monitor {
    std::function<std::string(std::uint8_t)> receive;
    std::function<bool()> started;
};

struct Rehearsal {
    bool done = false;            // the monitor has taken all and started
    std::size_t refused_line = 0; // where it said "E", from 1; 0: nowhere
    double seconds = 0;           // that the lines take on the wire, to the end or the refusal
};
// As a run sends them: line by line without line ends, until the monitor says "E".
Rehearsal rehearse(const RecordFile& file, const Monitor& monitor);

// For a person; `name` is the file's.
std::string report(const RecordReport& checked, const std::optional<Rehearsal>& rehearsal, const std::string& name);
std::string range_text(const AddressRange& range); // "8000 to BFFF, 16,384 bytes"

} // namespace ecu::flash
