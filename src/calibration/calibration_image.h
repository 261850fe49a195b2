// The console's copy of what the controller last reported: the raw number of every scalar and vector element, and the
// last byte of every table cell. It starts at zero and is never converted; every conversion happens between a reply
// and a control, or a control and a message. One instance, filled by the reply decoders only.
#pragma once

#include "calibration/parameters.h"
#include "calibration/scales.h"

#include <bitset>

namespace ecu::calibration {

class CalibrationImage {
public:
    // Storing the sensor type, the full-scale rpm or the first boost flag sets `scales` too.
    explicit CalibrationImage(Scales& scales) : scales_(scales) {}

    // Element `i` of a row; 0 for a scalar. Outside the row throws std::out_of_range.
    std::int32_t raw(const Parameter& row, int i = 0) const;
    void store(const Parameter& row, int i, std::int32_t raw);
    // Whether a reply has brought it since the start, or since it was forgotten: a screen that reads anew must not take
    // the value of an earlier reading for the controller's.
    bool known(const Parameter& row, int i = 0) const { return known_.at(place(row, i)); }
    void forget(const Parameter& row, int i) { known_.at(place(row, i)) = false; }

    // The last byte that a reply brought for a cell of table memory. The editors show the cells and hold the tuner's
    // entries; this is what a setup file prints. An address outside the tables' memory throws std::out_of_range.
    std::uint8_t cell(int address) const { return cells_.at(static_cast<std::size_t>(address)); }
    void store_cell(int address, std::uint8_t raw) {
        cells_.at(static_cast<std::size_t>(address)) = raw;
        cells_known_.set(static_cast<std::size_t>(address));
    }
    bool cell_known(int address) const { return cells_known_.test(static_cast<std::size_t>(address)); }

    std::int32_t firmware_revision = 0; // the word of R: 10200 is V1.02.00
    std::uint32_t serial_number = 0;

private:
    static std::size_t place(const Parameter& row, int i);

    Scales& scales_;
    std::array<std::int32_t, element_count> values_{}; // full_scale_rpm's place stays unused: the scales hold it
    std::array<bool, element_count> known_{};
    std::array<std::uint8_t, table_memory_end> cells_{};
    std::bitset<table_memory_end> cells_known_;
};

} // namespace ecu::calibration
