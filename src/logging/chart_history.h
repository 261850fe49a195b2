// What the chart holds of the past, in bounded memory however fast the rows come: the newest 32,768 samples as they
// came (eight minutes at the pace of the link), and of the last 24 hours the lowest and highest fraction of
// every channel in each second. The first costs at most 3 MB, the second 16 MB, taken only as they fill.
// Times come as seconds since midnight and are kept as seconds since the midnight before the first sample, so that
// they go on rising over midnight.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace ecu::logging {

class ChartHistory {
public:
    explicit ChartHistory(std::size_t channels);

    // `fractions` holds one value per channel. A pause of more than `gap_seconds` before it breaks the lines.
    void add(float seconds_since_midnight, std::span<const float> fractions, double gap_seconds);
    void clear();

    bool empty() const { return fine_.count == 0; }
    double first() const; // time of the oldest and the newest sample held; 0 when empty
    double last() const;
    // A time of day close to the newest sample, as the times here are counted.
    double continued(float seconds_since_midnight) const;

    struct Point {
        double time;
        float fraction; // not a number where a line breaks
    };
    // The line of a channel from `from` to `to`, reaching one sample beyond on either side, in at most about four
    // points for each of `columns` columns of the screen: a column with many samples keeps its lowest and highest.
    void line(std::size_t channel, double from, double to, int columns, std::vector<Point>& points) const;
    // Fractions of all channels at the sample nearest to `time`; for old times the middle of that second's range.
    // Empty when nothing is held. `found` gets the sample's own time.
    std::vector<float> nearest(double time, double& found) const;

private:
    // A ring of samples, channel by channel so that a line is one run of memory. Once full the oldest is overwritten.
    struct Ring {
        Ring(std::size_t channels, std::size_t capacity, bool ranges);
        void push(double time, bool after_gap, std::span<const float> fractions);
        void widen(std::span<const float> fractions); // the newest one's range
        void clear();
        std::size_t slot(std::size_t i) const { return count < capacity ? i : (start + i) % capacity; }
        double time(std::size_t i) const { return times[slot(i)]; }
        std::size_t first_from(double time) const; // index of the first at or after it, or count
        float low(std::size_t channel, std::size_t at_slot) const { return lows[channel][at_slot]; }
        float high(std::size_t channel, std::size_t at_slot) const {
            return highs.empty() ? lows[channel][at_slot] : highs[channel][at_slot];
        }

        std::size_t capacity;
        std::size_t count = 0;
        std::size_t start = 0; // the oldest one's slot
        std::vector<double> times;
        std::vector<std::uint8_t> gaps;
        std::vector<std::vector<float>> lows;
        std::vector<std::vector<float>> highs; // empty in a ring of single samples
    };
    const Ring& ring_for(double from) const;

    Ring fine_;
    Ring coarse_;
    float newest_of_day_ = 0; // the newest sample's time as it came
};

} // namespace ecu::logging
