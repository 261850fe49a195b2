#include "views/held_note.h"

namespace ecu::views {

HeldNote::HeldNote(FrmDashboard& dashboard, std::initializer_list<platform::Form*> views) : dashboard_(dashboard) {
    for (platform::Form* view : views) {
        platform::Label& label = labels_.emplace_back(*view, "held_note");
        label.set_back_colour(platform::palette[4]);
        label.set_fore_colour(platform::bright_white);
        label.set_tool_tip("Set on the dashboard, and undone there");
        label.set_visible(false);
    }
}

void HeldNote::refresh() {
    std::string text;
    if (dashboard_.kill_timing.checked()) {
        text = "Timing is held at 0° for verification.";
    }
    if (dashboard_.kill_ego.checked()) {
        text += std::string(text.empty() ? "" : " ") + "Oxygen control is switched off.";
    }
    for (platform::Label& label : labels_) {
        label.set_text(text);
        label.set_visible(!text.empty());
    }
}

} // namespace ecu::views
