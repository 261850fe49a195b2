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

TwoCalibrations::TwoCalibrations(const Use& use) : use_(use) {
    use_.journal.written = [this] {
        if (!switching_ && held_ && held_->sure) {
            held_->sure = false;
            show_title();
        }
    };
}

std::string TwoCalibrations::name_of(bool b) { return use_.file.setting(settings.at(b ? 1 : 0)); }

// A path without its folders.
std::string TwoCalibrations::short_name(bool b) {
    const std::string name = name_of(b);
    return name.substr(name.find_last_of("/\\") + 1);
}

std::string TwoCalibrations::both() {
    const std::string a = short_name(false);
    const std::string b = short_name(true);
    return "A: " + (a.empty() ? "not chosen" : a) + "    B: " + (b.empty() ? "not chosen" : b);
}

void TwoCalibrations::choose(bool b, const std::string& name) {
    if (const std::string why = use_.file.set_setting(settings.at(b ? 1 : 0), name); !why.empty()) {
        use_.ports.dialogs.say("The choice could not be kept: " + why + ".");
    }
    lose_sight();
}

std::string TwoCalibrations::letter_of(const std::string& name) {
    const bool a = name_of(false) == name;
    const bool b = name_of(true) == name;
    return a && b ? "A and B" : a ? "A" : b ? "B" : "";
}

std::optional<Side> TwoCalibrations::side_of(bool b) {
    const std::string name = name_of(b);
    if (name.empty()) {
        use_.ports.dialogs.say("Two calibrations are needed to switch between. Choose them in Tools, Restore point: "
                               "Use as A, Use as B, or a file.");
        return std::nullopt;
    }
    const auto id = point_of_name(name);
    Side side = id ? side_of_point(use_.file, *id)
                   : side_of_file(use_.ports.folder / std::filesystem::path(std::u8string(name.begin(), name.end())),
                                  short_name(b));
    if (!side.failure.empty()) {
        use_.ports.dialogs.say("Calibration " + std::string(letters.at(b ? 1 : 0)) + ", " + side.name +
                               ", cannot be used: " + side.failure + ". Choose another in Tools, Restore point.");
        return std::nullopt;
    }
    return side;
}

void TwoCalibrations::switch_over() {
    if (const std::string why = use_.changes.refusal(); !why.empty()) {
        use_.ports.dialogs.say(why + ".");
        return;
    }
    // A title of the link's own: the port was opened anew, and another hand may have been at the controller.
    const bool sure = held_ && held_->sure && use_.main_form.caption().ends_with(title_);
    const bool to_b = wanted_ ? *wanted_ : held_ && !held_->b;
    const auto wanted = side_of(to_b);
    if (!wanted || !side_of(!to_b)) {
        return;
    }
    const std::string title = "Switch to " + std::string(letters.at(to_b ? 1 : 0)) + ", " + wanted->name;
    if (!sure) {
        preview(to_b, *wanted, title);
        return;
    }
    std::vector<ChangeLine> lines = changes_to(wanted->values, held_->values);
    const link::ControllerIdentity identity = held_->identity;
    lose_sight(); // until every value is verified
    wanted_ = to_b;
    switching_ = true;
    const SendResult result = use_.changes.send_at_once(lines, identity, title);
    switching_ = false;
    if (result.complete() && all_sent(lines)) {
        now_holds(to_b, *wanted, identity);
        return;
    }
    use_.ports.dialogs.message_box({.text = title + ": " + result_text(result) +
                                            ".\nThe controller may hold a part of each now. Switch again: it is read "
                                            "first, and what is missing shown.",
                                    .icon = platform::Icon::warning});
}

void TwoCalibrations::preview(bool to_b, const Side& wanted, const std::string& title) {
    use_.changes.show_differences_to(
        wanted, title, [this, to_b, wanted](const SendResult& result, const std::vector<ChangeLine>& lines) {
            if (result.complete() && all_sent(lines)) {
                now_holds(to_b, wanted, use_.changes.offered_to());
            }
        });
}

void TwoCalibrations::now_holds(bool b, const Side& side, const link::ControllerIdentity& identity) {
    wanted_.reset();
    held_ = Held{.b = b, .name = side.name, .values = side.values, .identity = identity};
    show_title();
    use_.result.set_text("The controller holds " + std::string(letters.at(b ? 1 : 0)) + ", " + side.name);
}

void TwoCalibrations::lose_sight() {
    held_.reset();
    wanted_.reset();
    show_title();
}

// The rest of the title belongs to the link, which sets it anew with each opening.
void TwoCalibrations::show_title() {
    std::string caption = use_.main_form.caption();
    if (!title_.empty() && caption.ends_with(title_)) {
        caption.resize(caption.size() - title_.size());
    }
    title_ = held_ ? " - holds " + std::string(letters.at(held_->b ? 1 : 0)) + ", " + held_->name +
                         (held_->sure ? "" : ", changed since")
                   : "";
    use_.main_form.set_caption(caption + title_);
}

} // namespace ecu::history
