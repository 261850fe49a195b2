#include "logging/chart_history.h"

#include "platform/clock.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ecu::logging {

namespace {

constexpr std::size_t fine_samples = 32768;
constexpr std::size_t coarse_seconds = 24 * 3600;
constexpr float no_value = std::numeric_limits<float>::quiet_NaN();

} // namespace

ChartHistory::Ring::Ring(std::size_t channels, std::size_t size, bool ranges)
    : capacity(size), lows(channels), highs(ranges ? channels : 0) {
    times.reserve(capacity);
    gaps.reserve(capacity);
    for (auto* columns : {&lows, &highs}) {
        for (std::vector<float>& column : *columns) {
            column.reserve(capacity); // memory that is reserved and not yet written costs nothing
        }
    }
}

void ChartHistory::Ring::push(double time, bool after_gap, std::span<const float> fractions) {
    const auto put = [this](auto& column, auto value) {
        if (count < capacity) {
            column.push_back(value);
        } else {
            column[start] = value;
        }
    };
    put(times, time);
    put(gaps, static_cast<std::uint8_t>(after_gap));
    for (std::size_t channel = 0; channel < lows.size(); ++channel) {
        put(lows[channel], fractions[channel]);
        if (!highs.empty()) {
            put(highs[channel], fractions[channel]);
        }
    }
    if (count < capacity) {
        ++count;
    } else {
        start = (start + 1) % capacity;
    }
}

void ChartHistory::Ring::widen(std::span<const float> fractions) {
    const std::size_t newest = slot(count - 1);
    for (std::size_t channel = 0; channel < lows.size(); ++channel) {
        lows[channel][newest] = std::min(lows[channel][newest], fractions[channel]);
        highs[channel][newest] = std::max(highs[channel][newest], fractions[channel]);
    }
}

void ChartHistory::Ring::clear() {
    count = 0;
    start = 0;
    times.clear();
    gaps.clear();
    for (auto* columns : {&lows, &highs}) {
        for (std::vector<float>& column : *columns) {
            column.clear();
        }
    }
}

std::size_t ChartHistory::Ring::first_from(double wanted) const {
    std::size_t low = 0;
    std::size_t high = count;
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (time(middle) < wanted) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

ChartHistory::ChartHistory(std::size_t channels)
    : fine_(channels, fine_samples, false), coarse_(channels, coarse_seconds, true) {}

void ChartHistory::add(float seconds_since_midnight, std::span<const float> fractions, double gap_seconds) {
    const double time = continued(seconds_since_midnight);
    const bool after_gap = !empty() && time - last() > gap_seconds;
    newest_of_day_ = seconds_since_midnight;
    fine_.push(time, after_gap, fractions);
    const double second = std::floor(time);
    if (coarse_.count > 0 && coarse_.time(coarse_.count - 1) == second && !after_gap) {
        coarse_.widen(fractions);
    } else {
        coarse_.push(second, after_gap, fractions);
    }
}

void ChartHistory::clear() {
    fine_.clear();
    coarse_.clear();
}

double ChartHistory::first() const { return empty() ? 0 : std::min(fine_.time(0), coarse_.time(0)); }

double ChartHistory::last() const { return empty() ? 0 : fine_.time(fine_.count - 1); }

double ChartHistory::continued(float seconds_since_midnight) const {
    if (empty()) {
        return static_cast<double>(seconds_since_midnight);
    }
    const float elapsed = platform::elapsed_between(newest_of_day_, seconds_since_midnight);
    return last() + std::max(0.0, static_cast<double>(elapsed));
}

// Samples as they came where they reach back far enough, else the ranges by the second.
const ChartHistory::Ring& ChartHistory::ring_for(double from) const {
    const bool nothing_older = coarse_.count == 0 || std::floor(fine_.time(0)) <= coarse_.time(0);
    return nothing_older || from >= fine_.time(0) ? fine_ : coarse_;
}

void ChartHistory::line(std::size_t channel, double from, double to, int columns, std::vector<Point>& points) const {
    points.clear();
    if (empty() || columns < 1 || to <= from) {
        return;
    }
    const Ring& ring = ring_for(from);
    std::size_t begin = ring.first_from(from);
    begin -= begin > 0 ? 1 : 0;
    const std::size_t end = std::min(ring.first_from(to) + 1, ring.count);
    const bool thin = end - begin <= static_cast<std::size_t>(columns) * 2;
    const double per_column = (to - from) / columns;

    double column = -std::numeric_limits<double>::infinity();
    Point low{};
    Point high{};
    const auto finish_column = [&] {
        if (std::isfinite(column)) {
            points.push_back(low.time <= high.time ? low : high);
            if (low.fraction != high.fraction) {
                points.push_back(low.time <= high.time ? high : low);
            }
        }
    };
    for (std::size_t i = begin; i < end; ++i) {
        const std::size_t slot = ring.slot(i);
        const double time = ring.times[slot];
        const float lowest = ring.low(channel, slot);
        const float highest = ring.high(channel, slot);
        const double own_column = thin ? static_cast<double>(i) : std::floor((time - from) / per_column);
        const bool gap = ring.gaps[slot] != 0 && i > begin;
        if (own_column != column || gap) {
            finish_column();
            if (gap) {
                points.push_back({time, no_value});
            }
            column = own_column;
            low = {time, lowest};
            high = {time, highest};
            continue;
        }
        if (lowest < low.fraction) {
            low = {time, lowest};
        }
        if (highest > high.fraction) {
            high = {time, highest};
        }
    }
    finish_column();
}

std::vector<float> ChartHistory::nearest(double time, double& found) const {
    std::vector<float> fractions;
    if (empty()) {
        return fractions;
    }
    const Ring& ring = ring_for(time);
    std::size_t i = std::min(ring.first_from(time), ring.count - 1);
    if (i > 0 && time - ring.time(i - 1) < ring.time(i) - time) {
        --i;
    }
    found = ring.time(i);
    const std::size_t slot = ring.slot(i);
    for (std::size_t channel = 0; channel < ring.lows.size(); ++channel) {
        fractions.push_back((ring.low(channel, slot) + ring.high(channel, slot)) / 2);
    }
    return fractions;
}

} // namespace ecu::logging
