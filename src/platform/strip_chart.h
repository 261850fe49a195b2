// A chart recorder: a number of channels, each fed with fractions of full scale (1.0 is the top), with a colour and an
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
        std::string caption = {}; // with its span in brackets
        // For reading off: a fraction stands for offset + fraction * span of this quantity.
        std::string unit = {};
        float offset = 0;
        float span = 1;
        int decimals = 0;
        friend bool operator==(const Channel&, const Channel&) = default;
        std::string_view name() const { return std::string_view(caption).substr(0, caption.find(" [")); }
    };
    struct Sample {
        float time = 0;                   // seconds since midnight
        std::span<const float> fractions; // one per channel, valid during the call
    };
    struct Stamp {
        float time = 0;        // seconds since midnight
        float height = 0;      // fraction of full scale
        std::string_view text; // valid during the call
    };
    StripChart(Form& form, std::string_view name, std::size_t channels)
        : Control(form, name, -1, Kind::strip_chart, ""), channels_(channels) {}

    const std::vector<Channel>& channels() const { return channels_; }
    void set_channel(std::size_t i, const Channel& channel) {
        if (!(channels_.at(i) == channel)) {
            channels_[i] = channel;
            announce(Property::scale);
        }
    }
    void set_channel_enabled(std::size_t i, bool enabled) {
        if (channels_.at(i).enabled != enabled) {
            channels_[i].enabled = enabled;
            announce(Property::scale);
        }
    }
    double seconds_shown() const { return seconds_shown_; } // width of the scrolling window
    void set_seconds_shown(double seconds) {
        if (seconds_shown_ != seconds) {
            seconds_shown_ = seconds;
            announce(Property::scale);
        }
    }
    const std::string& hint() const { return hint_; } // shown in its middle while not empty
    void set_hint(std::string_view hint) {
        if (hint_ != hint) {
            hint_ = hint;
            announce(Property::content);
        }
    }
    // Samples come too fast to be announced one by one to the host; they go straight to what draws them, if anything.
    void add_sample(const Sample& sample) {
        if (on_sample) {
            on_sample(sample);
        }
    }
    void add_stamp(const Stamp& stamp) {
        if (on_stamp) {
            on_stamp(stamp);
        }
    }

    // Set by the desktop.
    std::function<void(const Sample&)> on_sample;
    std::function<void(const Stamp&)> on_stamp;
    std::function<bool(const std::string& path)> save_picture; // what is shown, as PNG; false when it can't be written
    // Called by the desktop for a left click on the chart.
    std::function<void()> clicked;

private:
    std::vector<Channel> channels_;
    double seconds_shown_ = 600;
    std::string hint_;
};

} // namespace ecu::platform
