#include "history/two_calibrations.h"

#include <algorithm>

namespace ecu::history {

namespace {

constexpr std::array<std::string_view, 2> settings{"calibration_a", "calibration_b"};
constexpr std::array<std::string_view, 2> letters{"A", "B"};

bool all_sent(const std::vector<ChangeLine>& lines) {
    return std::ranges::all_of(lines, [](const ChangeLine& line) { return line.state == LineState::sent; });
}

} // namespace

std::string TwoCalibrations::name_of(bool b) { return use_.file.setting(settings.at(b ? 1 : 0)); }

void TwoCalibrations::choose(bool b, const std::string& name) {
    if (const std::string why = use_.file.set_setting(settings.at(b ? 1 : 0), name); !why.empty()) {
        use_.ports.dialogs.say("The choice could not be kept: " + why + ".");
    }
    lost_sight();
}

std::string TwoCalibrations::letter_of(const std::string& name) {
    const bool a = name_of(false) == name;
    const bool b = name_of(true) == name;
    return a && b ? "A and B" : a ? "A" : b ? "B" : "";
}

std::optional<Side> TwoCalibrations::side_of(bool b) {
    const auto id = point_of_name(name_of(b));
    if (!id) {
        use_.ports.dialogs.say(
            "Two calibrations are needed to switch between. Choose them in Tools, Restore point: Use "
            "as A, Use as B.");
        return std::nullopt;
    }
    Side side = side_of_point(use_.file, *id);
    if (!side.failure.empty()) {
        use_.ports.dialogs.say("Calibration " + std::string(letters.at(b ? 1 : 0)) + ", " + side.name +
                               ", cannot be used: " + side.failure + ".");
        return std::nullopt;
    }
    return side;
}

void TwoCalibrations::switch_over() {
    if (const std::string why = use_.changes.refusal(); !why.empty()) {
        use_.ports.dialogs.say(why + ".");
        return;
    }
    if (holds_b_ && use_.journal.writes() != writes_at_switch_) {
        lost_sight(); // something else was written since: neither is held for sure
    }
    const bool to_b = holds_b_ ? !*holds_b_ : false;
    const auto wanted = side_of(to_b);
    const auto other = wanted ? side_of(!to_b) : std::nullopt;
    if (!wanted || !other) {
        return;
    }
    const std::string title = "Switch to " + std::string(letters.at(to_b ? 1 : 0)) + ", " + wanted->name;
    if (!holds_b_) {
        use_.changes.show_differences_to(*wanted, title,
                                         [this, to_b](const SendResult& result, const std::vector<ChangeLine>& lines) {
                                             if (result.complete() && all_sent(lines)) {
                                                 now_holds(to_b, use_.changes.offered_to());
                                             }
                                         });
        return;
    }
    std::vector<ChangeLine> lines = changes_to(wanted->values, other->values);
    const link::ControllerIdentity identity = identity_;
    lost_sight(); // until every value is verified
    const SendResult result = use_.sender.send(lines, identity, title);
    if (result.complete() && all_sent(lines)) {
        now_holds(to_b, identity);
    } else {
        use_.ports.dialogs.message_box({.text = title + ": " + result_text(result) +
                                                ".\nThe controller holds a part of each now. Switch again: it is read "
                                                "first, and what is missing shown.",
                                        .icon = platform::Icon::warning});
    }
}

void TwoCalibrations::now_holds(bool b, const link::ControllerIdentity& identity) {
    holds_b_ = b;
    identity_ = identity;
    writes_at_switch_ = use_.journal.writes();
    show_title();
    use_.result.set_text("The controller holds " + std::string(letters.at(b ? 1 : 0)) + ", " + name_of(b));
}

void TwoCalibrations::lost_sight() {
    holds_b_.reset();
    show_title();
}

// The rest of the title belongs to the link, which sets it anew with each opening.
void TwoCalibrations::show_title() {
    std::string caption = use_.main_form.caption();
    if (!title_.empty() && caption.ends_with(title_)) {
        caption.resize(caption.size() - title_.size());
    }
    title_ = holds_b_ ? " - holds " + std::string(letters.at(*holds_b_ ? 1 : 0)) + ", " + name_of(*holds_b_) : "";
    use_.main_form.set_caption(caption + title_);
}

} // namespace ecu::history
