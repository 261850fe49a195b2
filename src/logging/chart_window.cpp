#include "logging/chart_window.h"

#include <algorithm>

namespace ecu::logging {

namespace {

constexpr double right_edge = 0.01; // of the window: a zoom about it goes on scrolling

// The range made `factor` times as wide, held to the limits, with `about` at its place on the screen.
ChartRange zoomed(const ChartRange& now, double factor, double about, double least, double most) {
    const double size = std::clamp(now.size() * factor, least, most);
    const double from = about - (about - now.from) * size / now.size();
    return {from, from + size};
}

} // namespace

void ChartWindow::set_model_seconds(double seconds) {
    if (model_seconds_ != seconds) {
        model_seconds_ = seconds;
        live_seconds_ = seconds;
    }
}

void ChartWindow::follow(double newest) {
    if (live_) {
        times_ = {newest - live_seconds_, newest};
    }
}

void ChartWindow::go_live(double newest) {
    live_ = true;
    live_seconds_ = model_seconds_;
    heights_ = whole_height;
    follow(newest);
}

void ChartWindow::zoom(double factor, double about) {
    if (live_ && times_.to - about <= times_.size() * right_edge) {
        live_seconds_ = std::clamp(times_.size() * factor, shortest, longest);
        follow(times_.to);
        return;
    }
    live_ = false;
    times_ = zoomed(times_, factor, about, shortest, longest);
}

void ChartWindow::zoom_height(double factor, double about) {
    heights_ = zoomed(heights_, factor, about, least_height, most_height);
}

void ChartWindow::pan(double seconds, double first, double last) {
    live_ = false;
    const double width = times_.size();
    const double earliest = first - width / 2;
    const double from = std::clamp(times_.from + seconds, earliest, std::max(earliest, last - width / 2));
    times_ = {from, from + width};
}

} // namespace ecu::logging
