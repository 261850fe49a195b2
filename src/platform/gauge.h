// A round gauge: needle value, limits, tick step, and two boundaries above which the zones a and b begin.
#pragma once

#include "platform/control.h"

namespace ecu::platform {

class Gauge : public Control {
public:
    struct Scale {
        float minimum = 0;
        float full_scale = 100;
        float tick_step = 10;
        // Zones of caution and alarm are drawn from a up to b and from b up to full scale, where a < b. One that begins
        // at the scale's own beginning is no caution: it is not drawn.
        float zone_a_start = 0;
        float zone_b_start = 0;
        friend bool operator==(const Scale&, const Scale&) = default;
    };
    Gauge(Form& form, std::string_view name, std::string_view caption = "", int index = -1)
        : Control(form, name, index, Kind::gauge, caption) {}
    std::string unit = {};        // below the caption; empty where that says it
    std::string spoken_unit = {}; // behind the value where that is another, as of a scale in thousands
    float value() const { return value_; }
    void set_value(float value) {
        if (value_ != value) {
            value_ = value;
            announce(Property::value);
        }
    }
    const Scale& scale() const { return scale_; }
    void set_scale(const Scale& scale) {
        if (!(scale_ == scale)) {
            scale_ = scale;
            announce(Property::scale);
        }
    }

private:
    float value_ = 0;
    Scale scale_;
};

} // namespace ecu::platform
