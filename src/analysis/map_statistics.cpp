#include "analysis/map_statistics.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace ecu::analysis {

namespace {

constexpr float day = 86400;
constexpr double pull_to_one = 0.02; // of a row: what no row speaks of stays as it is
constexpr int solver_passes = 400;
constexpr double solved = 1e-7;

struct Place {
    std::array<std::size_t, 4> cell{};
    std::array<double, 4> weight{};
    std::size_t nearest = 0;
};

std::optional<Place> place_of(float load_cell, float load_rest, float speed_cell, float speed_rest) {
    const auto inside = [](float cell, float rest) {
        return cell >= 0 && cell < map_side && cell == std::floor(cell) && rest >= 0 && rest <= 1;
    };
    if (!inside(load_cell, load_rest) || !inside(speed_cell, speed_rest)) {
        return std::nullopt; // NaN too
    }
    const auto low_load = static_cast<std::size_t>(load_cell);
    const auto low_speed = static_cast<std::size_t>(speed_cell);
    const std::size_t high_load = std::min(low_load + 1, map_side - 1);
    const std::size_t high_speed = std::min(low_speed + 1, map_side - 1);
    const double up = static_cast<double>(load_rest);
    const double right = static_cast<double>(speed_rest);
    Place place{.cell = {low_speed * map_side + low_load, low_speed * map_side + high_load,
                         high_speed * map_side + low_load, high_speed * map_side + high_load},
                .weight = {(1 - right) * (1 - up), (1 - right) * up, right * (1 - up), right * up}};
    place.nearest = place.cell[static_cast<std::size_t>(std::ranges::max_element(place.weight) - place.weight.begin())];
    return place;
}

// Least squares over all rows at once, by relaxation: each cell in turn takes the value that fits its rows best.
class Fit {
public:
    void add(const Place& place, double factor) {
        for (std::size_t i = 0; i < place.cell.size(); ++i) {
            for (std::size_t j = 0; j < place.cell.size(); ++j) {
                matrix_[place.cell[i] * map_cells + place.cell[j]] += place.weight[i] * place.weight[j];
            }
            right_[place.cell[i]] += place.weight[i] * factor;
        }
    }
    std::vector<double> solve() const {
        std::vector<double> cells(map_cells, 1.0);
        for (int pass = 0; pass < solver_passes; ++pass) {
            double moved = 0;
            for (std::size_t i = 0; i < map_cells; ++i) {
                const double* row = &matrix_[i * map_cells];
                double rest = right_[i] + pull_to_one;
                for (std::size_t j = 0; j < map_cells; ++j) {
                    rest -= j == i ? 0 : row[j] * cells[j];
                }
                const double now = rest / (row[i] + pull_to_one);
                moved = std::max(moved, std::abs(now - cells[i]));
                cells[i] = now;
            }
            if (moved < solved) {
                break;
            }
        }
        return cells;
    }

private:
    std::vector<double> matrix_ = std::vector<double>(map_cells * map_cells);
    std::vector<double> right_ = std::vector<double>(map_cells);
};

// Seconds from the beginning of the log, across a midnight.
std::vector<float> seconds_of(const Column& clock) {
    std::vector<float> seconds(clock.values.size());
    float days = 0;
    for (std::size_t i = 0; i < seconds.size(); ++i) {
        if (i > 0 && clock.values[i] + days < seconds[i - 1] - day / 2) {
            days += day;
        }
        seconds[i] = clock.values[i] + days;
    }
    return seconds;
}

} // namespace

MapStatistics map_statistics(const LogTable& log, Load load, const std::string& channel, const Filters& filters) {
    MapStatistics result;
    const bool mixture = channel == "mixture";
    const auto column = [&](std::string_view title) -> const std::vector<float>& {
        static const std::vector<float> none;
        const Column* found = log.find(title);
        if (found == nullptr && result.fault.empty()) {
            result.fault = "The log has no column " + std::string(title) + ", which the statistics of a map need.";
        }
        return found == nullptr ? none : found->values;
    };
    const Column* clock = log.find("CPU_T");
    const bool by_pressure = load == Load::pressure;
    const auto& load_cell = column(by_pressure ? "MAP_C" : "TPS_C");
    const auto& load_rest = column(by_pressure ? "MAP_R" : "TPS_R");
    const auto& speed_cell = column("RPM_C");
    const auto& speed_rest = column("RPM_R");
    const auto& coolant = column("CLT");
    const auto& throttle = column("TPS");
    const auto& pulse = column("PW");
    const auto& lambda = column("A/F");
    const auto& set_point = column("EGO_SP");
    const auto& correction = column("CORR");
    const auto& values = mixture ? lambda : column(channel);
    if (clock == nullptr && result.fault.empty()) {
        result.fault = "The log has no column CPU_T, which the statistics of a map need.";
    }
    if (!result.fault.empty()) {
        return result;
    }
    const std::vector<float> time = seconds_of(*clock);
    std::array<double, map_cells> sum{};
    std::array<double, map_cells> squares{};
    Fit fit;
    std::size_t later = 0; // the row whose exhaust this row's fuel is
    for (std::size_t i = 0; i < log.rows(); ++i) {
        const auto place = place_of(load_cell[i], load_rest[i], speed_cell[i], speed_rest[i]);
        later = std::max(later, i);
        while (later + 1 < time.size() && time[later] < time[i] + filters.exhaust_delay) {
            ++later;
        }
        const float dt = i == 0 ? 0 : time[i] - time[i - 1];
        const bool steady = i == 0 || dt <= 0 || std::abs(throttle[i] - throttle[i - 1]) <= filters.throttle_rate * dt;
        const float measured = lambda[later];
        const float value = mixture ? measured / set_point[i] * correction[i] : values[i];
        if (!place) {
            ++result.taken.no_place;
        } else if (!(coolant[i] > filters.coolant_above)) {
            ++result.taken.cold;
        } else if (!steady) {
            ++result.taken.throttle;
        } else if (!(pulse[i] > 0)) {
            ++result.taken.fuel_cut;
        } else if (!(measured >= filters.lambda_low && measured <= filters.lambda_high)) {
            ++result.taken.lambda;
        } else if (!std::isfinite(value)) {
            ++result.taken.no_value;
        } else {
            ++result.used;
            ++result.cells[place->nearest].hits;
            const auto exact = static_cast<double>(value);
            for (std::size_t c = 0; c < place->cell.size(); ++c) {
                if (place->weight[c] <= 0) {
                    continue;
                }
                CellStatistics& cell = result.cells[place->cell[c]];
                cell.low = cell.weight == 0 ? value : std::min(cell.low, value);
                cell.high = cell.weight == 0 ? value : std::max(cell.high, value);
                cell.weight += place->weight[c];
                sum[place->cell[c]] += place->weight[c] * exact;
                squares[place->cell[c]] += place->weight[c] * exact * exact;
            }
            if (mixture) {
                fit.add(*place, exact);
            }
        }
    }
    const std::vector<double> factors = mixture ? fit.solve() : std::vector<double>();
    for (std::size_t i = 0; i < map_cells; ++i) {
        CellStatistics& cell = result.cells[i];
        if (cell.weight > 0) {
            cell.mean = sum[i] / cell.weight;
            cell.spread = std::sqrt(std::max(0.0, squares[i] / cell.weight - cell.mean * cell.mean));
        }
        if (mixture && cell.hits >= filters.least_hits) {
            const auto limit = static_cast<double>(filters.most_correction);
            cell.correction = static_cast<float>(std::clamp(factors[i], 1 - limit, 1 + limit));
        }
    }
    return result;
}

} // namespace ecu::analysis
