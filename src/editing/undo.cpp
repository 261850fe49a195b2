#include "editing/undo.h"

#include "platform/leading_number.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <utility>

namespace ecu::editing {

using platform::Grid;
using platform::Origin;
using platform::TextBox;

namespace {

constexpr float one_entry_seconds = 2; // keys of one value
constexpr std::size_t most_steps = 500;

// All grids of a step are painted once.
class Batch {
public:
    explicit Batch(const std::set<Grid*>& grids) : grids_(grids) {
        for (Grid* grid : grids_) {
            grid->begin_batch();
        }
    }
    ~Batch() {
        for (Grid* grid : grids_) {
            grid->end_batch();
        }
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

private:
    const std::set<Grid*>& grids_;
};

} // namespace

Undo::Undo(platform::Form& form, const platform::Ports& ports)
    : ports_(ports), menu_(form, "menu_edit", "&Edit"), undo_(menu_, "menu_edit_undo", "&Undo"),
      redo_(menu_, "menu_edit_redo", "&Redo"), revert_(menu_, "menu_edit_revert", "Re&vert pending") {
    undo_.shortcut = "Ctrl+Z";
    redo_.shortcut = "Ctrl+Y";
    undo_.set_tool_tip("Takes back what was entered last; nothing is sent before Update");
    redo_.set_tool_tip("Enters again what was taken back");
    revert_.set_tool_tip("Shows what the controller holds in place of all that is pending");
    undo_.clicked = [this] { undo(); };
    redo_.clicked = [this] { redo(); };
    revert_.clicked = [this] { revert(); };
    menu_.clicked = [this] { offer(); };
    offer();
}

void Undo::add(TextBox& box) { slots_[&box].resize(1); }

void Undo::add(Grid& grid) {
    slots_[&grid].resize(static_cast<std::size_t>(grid.rows() * grid.columns()));
    grid.remark = [this, &grid](int row, int column) {
        return remark(slot({&grid, row, column}), grid.cell_text(row, column));
    };
}

Undo::Slot& Undo::slot(const Place& place) {
    const int columns = place.row == 0 ? 0 : static_cast<Grid*>(place.control)->columns();
    const int index = place.row == 0 ? 0 : (place.row - 1) * columns + place.column - 1;
    return slots_.at(place.control).at(static_cast<std::size_t>(index));
}

Undo::Cell Undo::state(const Place& place) {
    if (place.row > 0) {
        return static_cast<Grid*>(place.control)->cell_state(place.row, place.column);
    }
    const auto& box = static_cast<const TextBox&>(*place.control);
    return {.text = box.text(), .back = box.back_colour(), .origin = box.origin()};
}

template <typename Act> void Undo::for_each(Act act) {
    for (auto& [control, slots] : slots_) {
        const int columns = slots.size() == 1 ? 1 : static_cast<Grid*>(control)->columns();
        for (int i = 0; i < static_cast<int>(slots.size()); ++i) {
            const Place place =
                slots.size() == 1 ? Place{control, 0, 0} : Place{control, i / columns + 1, i % columns + 1};
            act(place, slots[static_cast<std::size_t>(i)]);
        }
    }
}

void Undo::note(const Place& place) {
    if (reading_) {
        return;
    }
    settle();
    Slot& known = slot(place);
    const auto back = state(place).back; // still that of the text before
    if (known.shown.origin == Origin::reply && back != platform::pending) {
        known.confirmed = Cell{.text = known.shown.text, .back = back, .origin = Origin::reply};
    }
    touched_.push_back({.place = place,
                        .before = known.shown.text,
                        .unread_before = known.shown.origin == Origin::unread,
                        .after = {}});
    if (!posted_) {
        posted_ = true;
        ports_.timers.post([this] {
            posted_ = false;
            close_step();
        });
    }
}

// A reply writes the text first and says afterwards that it was one.
void Undo::settle() {
    for (Edit& edit : std::exchange(touched_, {})) {
        Slot& known = slot(edit.place);
        known.shown = state(edit.place);
        show_box_remark(edit.place, known);
        if (known.shown.origin == Origin::reply) {
            known.confirmed = known.shown;
        } else if (known.shown.origin == Origin::entry && !replaying_ && edit.before != known.shown.text) {
            edit.after = known.shown.text;
            const auto same = std::ranges::find(open_.edits, edit.place, &Edit::place);
            if (same != open_.edits.end()) {
                same->after = edit.after;
            } else {
                open_.edits.push_back(std::move(edit));
            }
        }
    }
}

// What happened in one round of events is one step, and so are the keys of one value.
void Undo::close_step() {
    settle();
    Step step = std::exchange(open_, {});
    if (!step.edits.empty()) {
        step.time = ports_.now();
        undone_.clear();
        Step* last = done_.empty() ? nullptr : &done_.back();
        if (last != nullptr && last->edits.size() == 1 && step.edits.size() == 1 &&
            last->edits[0].place == step.edits[0].place && last->edits[0].after == step.edits[0].before &&
            ports_.elapsed_since(last->time) < one_entry_seconds) {
            last->edits[0].after = step.edits[0].after;
            last->time = step.time;
            if (last->edits[0].after == last->edits[0].before) { // typed, and taken back by hand
                done_.pop_back();
            }
        } else {
            done_.push_back(std::move(step));
            if (done_.size() > most_steps) {
                done_.erase(done_.begin());
            }
        }
    }
    offer();
}

void Undo::reading() {
    settle();
    reading_ = true;
    offer();
}

void Undo::opened(bool anew) {
    reading_ = false;
    touched_.clear();
    open_ = {};
    if (anew) {
        done_.clear();
        undone_.clear();
    }
    for_each([&](const Place& place, Slot& known) {
        const bool new_here = anew || known.shown.origin == Origin::unread;
        known.shown = state(place);
        if (known.shown.origin == Origin::reply) {
            known.confirmed = known.shown;
        } else if (anew) {
            known.confirmed.reset();
        }
        if (new_here) {
            known.at_opening = known.shown.text;
        }
        show_box_remark(place, known);
    });
    offer();
}

void Undo::sent() {
    settle();
    for_each([](const Place& place, Slot& known) {
        known.shown = state(place);
        if (known.shown.origin == Origin::reply) {
            known.confirmed = known.shown; // with the shading that came behind it
        } else if (known.shown.origin == Origin::entry) {
            known.confirmed.reset();
        }
    });
    offer();
}

void Undo::put(const Place& place, const std::string& text, bool unread) {
    const std::optional<Cell> confirmed = slot(place).confirmed;
    const bool as_confirmed = confirmed && confirmed->text == text;
    if (place.row > 0) {
        auto& grid = static_cast<Grid&>(*place.control);
        if (unread) {
            grid.blank_cell(place.row, place.column);
        } else if (as_confirmed) {
            grid.restore_cell(place.row, place.column, *confirmed);
        } else {
            grid.set_cell_text(place.row, place.column, text);
        }
        return;
    }
    auto& box = static_cast<TextBox&>(*place.control);
    if (unread) {
        box.blank();
    } else if (as_confirmed) {
        box.confirm(text);
        box.set_back_colour(confirmed->back);
    } else {
        box.set_text(text);
    }
}

void Undo::replay(const Step& step, bool back) {
    std::set<Grid*> grids;
    for (const Edit& edit : step.edits) {
        if (edit.place.row > 0) {
            grids.insert(static_cast<Grid*>(edit.place.control));
        }
    }
    const Place& first = step.edits.front().place;
    if (reveal) {
        reveal(*first.control);
    }
    replaying_ = true;
    {
        const Batch batch(grids);
        for (const Edit& edit : step.edits) {
            put(edit.place, back ? edit.before : edit.after, back && edit.unread_before);
        }
    }
    settle();
    replaying_ = false;
    if (first.row > 0) {
        static_cast<Grid*>(first.control)->set_active_cell(first.row, first.column);
    }
    offer();
}

void Undo::undo() {
    close_step();
    if (done_.empty() || reading_) {
        return;
    }
    Step step = std::move(done_.back());
    done_.pop_back();
    step.time = -1e6F; // what is entered now is no part of it
    undone_.push_back(step);
    replay(step, true);
}

void Undo::redo() {
    close_step();
    if (undone_.empty() || reading_) {
        return;
    }
    const Step step = std::move(undone_.back());
    undone_.pop_back();
    done_.push_back(step);
    replay(step, false);
}

void Undo::revert() {
    close_step();
    Step step{.edits = {}, .time = -1e6F};
    for_each([&](const Place& place, const Slot& known) {
        const Cell now = state(place);
        if (now.back == platform::pending && now.origin == Origin::entry) {
            step.edits.push_back({.place = place,
                                  .before = now.text,
                                  .unread_before = false,
                                  .after = known.confirmed ? known.confirmed->text : known.at_opening});
        }
    });
    std::erase_if(step.edits, [](const Edit& edit) { return edit.before == edit.after || edit.after.empty(); });
    if (step.edits.empty() || reading_) {
        return;
    }
    undone_.clear();
    done_.push_back(step);
    replay(step, false);
}

void Undo::offer() {
    undo_.set_enabled(!reading_ && !(done_.empty() && open_.edits.empty() && touched_.empty()));
    redo_.set_enabled(!reading_ && !undone_.empty());
    bool pending = false;
    for_each([&](const Place& place, const Slot&) {
        const Cell now = state(place);
        pending = pending || (now.back == platform::pending && now.origin == Origin::entry);
    });
    revert_.set_enabled(!reading_ && pending);
}

// "was 0.984, +3.0 %"
std::string Undo::remark(const Slot& slot, const std::string& now) {
    if (slot.at_opening.empty() || slot.at_opening == now) {
        return {};
    }
    std::string text = "was " + slot.at_opening;
    const double was = platform::leading_number(slot.at_opening);
    if (was != 0 && platform::is_number(slot.at_opening) && platform::is_number(now)) {
        std::array<char, 40> rate{};
        std::snprintf(rate.data(), rate.size(), ", %+.1f %%",
                      (platform::leading_number(now) - was) / std::abs(was) * 100);
        text += rate.data();
    }
    return text;
}

// The row's own tip stays before it.
void Undo::show_box_remark(const Place& place, Slot& slot) {
    if (place.row > 0) {
        return;
    }
    std::string tip = place.control->tool_tip();
    if (!slot.remark.empty() && tip.ends_with(slot.remark)) {
        tip.resize(tip.size() - slot.remark.size());
    }
    slot.remark = remark(slot, slot.shown.text);
    if (!slot.remark.empty() && !tip.empty()) {
        slot.remark.insert(0, "\n");
    }
    place.control->set_tool_tip(tip + slot.remark);
}

} // namespace ecu::editing
