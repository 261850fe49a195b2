// Which stretch of the chart's past is shown, and how much of its height: the arithmetic of zooming and panning, with
// no drawing in it. While live the window ends with the newest sample and scrolls with it; panning, or zooming about
// an older moment, holds it still until go_live().
// Times are seconds as ChartHistory counts them, heights are fractions of full scale.
#pragma once

namespace ecu::logging {

struct ChartRange {
    double from = 0;
    double to = 1;
    double size() const { return to - from; }
    friend bool operator==(const ChartRange&, const ChartRange&) = default;
};

class ChartWindow {
public:
    static constexpr double shortest = 0.5; // seconds
    static constexpr double longest = 25 * 3600;
    static constexpr ChartRange whole_height{-0.02, 1.02};
    static constexpr double least_height = 0.1;
    static constexpr double most_height = 3;

    explicit ChartWindow(double seconds) : live_seconds_(seconds), model_seconds_(seconds), times_{-seconds, 0} {}

    bool live() const { return live_; }
    const ChartRange& times() const { return times_; }
    const ChartRange& heights() const { return heights_; }
    // Whether go_live() would change anything but the place in time.
    bool at_default() const { return live_ && live_seconds_ == model_seconds_ && heights_ == whole_height; }

    // The width that the interval menu gives; a new one takes the place of the user's.
    void set_model_seconds(double seconds);
    void follow(double newest);           // while live
    void hold_nothing() { live_ = true; } // the past is gone
    void go_live(double newest);
    // `factor` below 1 comes closer. A zoom about the newest moment of a live window goes on scrolling.
    void zoom(double factor, double about);
    void zoom_height(double factor, double about);
    // Half of the window at most may lie before the first sample or after the last one.
    void pan(double seconds, double first, double last);

private:
    bool live_ = true;
    double live_seconds_;  // width while live
    double model_seconds_; // what the interval menu gave for it
    ChartRange times_;
    ChartRange heights_ = whole_height;
};

} // namespace ecu::logging
