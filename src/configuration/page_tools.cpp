// The three tools of the configuration page. They write into boxes, which thereby become pending; Update sends those.
#include "configuration/configuration_page.h"
#include "configuration/stutter_tool.h"
#include "messages/catalogue.h"
#include "platform/display_mask.h"
#include "platform/leading_number.h"

#include <cmath>

namespace ecu::configuration {

using platform::leading_number;
using platform::masked;

namespace {

constexpr double feet_in_a_mile = 5280;
constexpr double inches_in_a_foot = 12;
constexpr double minutes_in_an_hour = 60;
constexpr double scaler_ticks = 16;
constexpr std::array throttle_messages{messages::closed_throttle, messages::open_throttle};
constexpr std::array throttle_keys{std::string_view("TPS_BASE"), std::string_view("TPS_FS")};

} // namespace

void ConfigurationPage::wire_tools() {
    for (std::size_t n = 0; n < 2; ++n) {
        form_.calibrate_tps_val[n].clicked = [this, n] { calibrate_throttle(n); };
        form_.make_stutter_text[n].clicked = [this] { make_stutter_text(); };
        form_.create_stutter_patterns_from_text[n].clicked = [this, n] { use_stutter_text(n); };
        form_.speed_wizard_calc[n].clicked = [this, n] { work_out_wheel_scaler(n); };
    }
}

// The box is cleared first, so that what stands in it afterwards is what the controller measured; without its answer it
// stays a value that was not read, which Update does not send.
void ConfigurationPage::calibrate_throttle(std::size_t which) {
    editor_.run_tool([this, which] {
        const messages::Command& measure = throttle_messages.at(which);
        form_.box(throttle_keys.at(which)).blank();
        editor_.link().read({measure.code, 0, 0, 0}, measure.reply);
    });
}

void ConfigurationPage::make_stutter_text() {
    const std::string text =
        stutter_text(leading_number(form_.skip_fire_bits.text()), leading_number(form_.fire_bits.text()));
    if (!text.empty()) {
        form_.stutter_text.set_text(text);
    }
}

void ConfigurationPage::use_stutter_text(std::size_t pattern) {
    const StutterWords words = stutter_words(form_.stutter_text.text());
    for (int n = 0; n < words_of_pattern; ++n) {
        form_.box("STUT", static_cast<int>(pattern) * words_of_pattern + n)
            .set_text(std::to_string(words[static_cast<std::size_t>(n)]));
    }
}

void ConfigurationPage::work_out_wheel_scaler(std::size_t from) {
    if (from == 0) {
        const double circumference = leading_number(form_.rolling_circum_inches.text());
        const double turns = feet_in_a_mile / circumference * inches_in_a_foot;
        if (circumference == 0 || !std::isfinite(turns)) {
            return;
        }
        form_.revs_mile.set_text(masked(turns, "###0.0"));
    }
    const double pulses_per_hour = leading_number(form_.trigs_rev.text()) * leading_number(form_.revs_mile.text());
    const double pulses_per_minute = pulses_per_hour / minutes_in_an_hour;
    const double scaler = minutes_in_an_hour / (pulses_per_minute * scaler_ticks);
    if (pulses_per_hour != 0 && std::isfinite(scaler)) {
        form_.box("WRPM_SCL").set_text(masked(scaler, "0.000000"));
    }
}

} // namespace ecu::configuration
