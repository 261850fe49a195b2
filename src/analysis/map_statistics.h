// What a log says of the cells of a 16 by 16 map: any channel over the map's own axes, each row shared among the four
// cells between which the controller interpolates, and the factor by which each cell's fuel was off. The log holds the
// cell and the place within it (MAP_C, MAP_R and so on), so no axis is needed.
#pragma once

#include "analysis/log_table.h"

#include <array>
#include <optional>
#include <string>

namespace ecu::analysis {

inline constexpr std::size_t map_side = 16;
inline constexpr std::size_t map_cells = map_side * map_side;

// What of the rows counts. A row that falls to several is counted at the first.
struct Filters {
    float coolant_above = 60; // degrees C
    float throttle_rate = 20; // % a second at most, either way
    float lambda_low = 0.6F;  // the sensor's own range
    float lambda_high = 1.6F;
    float exhaust_delay = 0;       // seconds from the injection to the sensor
    int least_hits = 20;           // of a cell, for a correction
    float most_correction = 0.25F; // of a cell, either way
};

struct Taken { // rows left out, by what
    std::size_t no_place = 0, cold = 0, throttle = 0, fuel_cut = 0, lambda = 0, no_value = 0;
    std::size_t all() const { return no_place + cold + throttle + fuel_cut + lambda + no_value; }
};

struct CellStatistics {
    int hits = 0;                // rows nearest to this cell
    double weight = 0;           // of all rows that touch it
    double mean = 0, spread = 0; // weighted; the spread is the standard deviation
    float low = 0, high = 0;
    std::optional<float> correction; // the factor proposed; none where there are too few hits
};

struct MapStatistics {
    std::string fault;                           // a column is missing; empty: the rest holds
    std::array<CellStatistics, map_cells> cells; // cell i is load i % 16, speed i / 16, both from 0
    Taken taken;
    std::size_t used = 0;
};

enum class Load : std::uint8_t { pressure, throttle };

// `channel` over the cells. With "mixture" for it: the factor that the fuel of the row lacked, lambda / set point *
// CORR, and the cells' corrections, which are found together, since a row speaks of four cells at once.
MapStatistics map_statistics(const LogTable& log, Load load, const std::string& channel, const Filters& filters);

} // namespace ecu::analysis
