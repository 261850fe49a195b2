// A chart recorder: up to 21 channels, each fed with fractions of full scale (1.0 is the top), with a colour and an
// enable of its own, and text stamps at a height. It holds no history: the desktop that draws it keeps what it shows.
#pragma once

#include "platform/control.h"

#include <span>
#include <vector>

namespace ecu::platform {

class StripChart : public Control {
public:
    struct Channel {
        Colour colour;
        bool enabled = false;
        std::string caption;
    };
    struct Sample {
        double time = 0;               // seconds since midnight at the sample
        std::vector<float> fractions;  // one per channel
        std::vector<double> values;    // the same in the channel's own units, for reading off
    };
    StripChart(Form& form, std::string_view name, std::size_t channels)
        : Control(form, name, -1, Kind::strip_chart, ""), channels_(channels) {}

    const std::vector<Channel>& channels() const { return channels_; }
    void set_channel(std::size_t i, const Channel& channel) {
        channels_.at(i) = channel;
        announce(Property::scale);
    }
    void set_enabled_channel(std::size_t i, bool enabled) {
        channels_.at(i).enabled = enabled;
        announce(Property::scale);
    }
    double seconds_shown() const { return seconds_shown_; } // width of the time window
    void set_seconds_shown(double seconds) {
        seconds_shown_ = seconds;
        announce(Property::scale);
    }
    void add_sample(const Sample& sample) {
        if (on_sample) {
            on_sample(sample);
        }
    }
    void add_stamp(std::string_view text, float height) {
        if (on_stamp) {
            on_stamp(text, height);
        }
    }

    // Set by the desktop.
    std::function<void(const Sample&)> on_sample;
    std::function<void(std::string_view text, float height)> on_stamp;
    // Called by the desktop for a left click on the chart.
    std::function<void()> clicked;

private:
    std::vector<Channel> channels_;
    double seconds_shown_ = 600;
};

} // namespace ecu::platform
