#include "editing/editor.h"

#include "editing/editing_rules.h"

#include <algorithm>

namespace ecu::editing {

using platform::TextBox;

namespace {

constexpr int paint_interval = 60; // ms, of what an opening read fills

} // namespace

Editor::Editor(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
               const calibration::Scales& scales, shell::Navigation& navigation, EditorWindow window)
    : ports_(ports), state_(state), navigation_(navigation), window_(std::move(window)),
      link_(ports, state, comm, scales), paint_timer_(ports.timers.make_timer(paint_interval)) {
    window_.form.on_activate = [this] { open(); };
    window_.form.on_unload = [this] { unloading(); };
    window_.exit_button.clicked = [this] { close(); };
    window_.update_button.clicked = [this] { update(); };
    paint_timer_->on_tick = [this] {
        if (filling_ != nullptr) {
            filling_->end_batch();
            filling_->begin_batch();
        }
        window_.status.set_text(progress_);
    };
}

// -- Items

void Editor::wire(TextBox& box) {
    box.changed = [this, &box] {
        box.set_back_colour(platform::pending);
        changed();
    };
}

void Editor::add(const calibration::Parameter& row, int element, TextBox& box, ItemTexts texts) {
    wire(box);
    items_.push_back({std::make_unique<BoxItem>(row, element, box, texts.demo), std::move(texts)});
}

void Editor::add(const calibration::Table& row, int index, TextBox& box, ItemTexts texts) {
    wire(box);
    items_.push_back({std::make_unique<BoxItem>(row, index, box, texts.demo), std::move(texts)});
}

void Editor::add(const calibration::Table& row, platform::Grid& grid, ItemTexts texts) {
    auto item = std::make_unique<GridItem>(row, grid, texts.demo);
    grid.cell_changed = [this, grid_item = item.get()](int cell_row, int column) {
        platform::Grid& written = grid_item->grid();
        written.set_cell_back(cell_row, column, platform::pending);
        if (updating_) {
            grid_item->note_changed(index_of(written, cell_row, column));
        }
        changed();
    };
    grids_.push_back(item.get());
    items_.push_back({std::move(item), std::move(texts)});
}

void Editor::add(CustomItem item, ItemTexts texts) {
    items_.push_back({std::make_unique<OtherItem>(std::move(item)), std::move(texts)});
}

GridItem* Editor::grid_of(const calibration::Table& row) const {
    const auto found = std::ranges::find_if(grids_, [&](const GridItem* item) { return &item->row() == &row; });
    return found == grids_.end() ? nullptr : *found;
}

// -- Opening and leaving

void Editor::open() {
    window_.form.set_caption(std::string(window_.title) + state_.link_title_suffix);
    if (activated_ && !window_.reads_each_time) {
        return;
    }
    activated_ = true;
    exit_requested_ = false;
    update_again_ = false;
    not_taken_ = 0;
    const int opening = ++opening_;
    loading_ = true;
    allow_editing(false);
    bool complete = false;
    {
        const PollingPause pause(state_);
        ports_.wait_seconds(window_.opening_waits.before);
        if (window_.blanks || state_.demo_mode) {
            blank_all();
        }
        if (window_.prepare) {
            window_.prepare();
        }
        ports_.waiting.process_events();
        const int below = std::exchange(reading_, opening);
        complete = !stopped() && window_.read() && !stopped();
        reading_ = below;
        if (complete) {
            if (window_.opened) {
                window_.opened();
            }
            window_.exit_button.set_enabled(true);
            window_.form.set_enabled(true);
            allow_editing(true);
            loading_ = false;
            if (window_.ready) {
                window_.ready();
            }
            show_status();
        }
    }
    ports_.wait_seconds(window_.opening_waits.after);
    if (!complete && !replaced(opening)) {
        close();
    }
}

void Editor::blank_all() {
    for (const Entry& entry : items_) {
        entry.item->open(state_.demo_mode, window_.blanks);
    }
}

// What is typed into a map that is being read would be overwritten, or lose its yellow to the shading behind the read.
void Editor::allow_editing(bool allowed) {
    window_.update_button.set_enabled(allowed);
    if (window_.locks) {
        for (const Entry& entry : items_) {
            entry.item->lock(!allowed);
        }
    }
    if (window_.allow) {
        window_.allow(allowed);
    }
}

void Editor::close() {
    exit_requested_ = true;
    window_.form.unload();
}

void Editor::unloading() {
    exit_requested_ = true; // also when another view's menu item or the window's own button closed it
    if (state_.comm_aborted) {
        blank_all();
        ++opening_; // an Update under way must not send what is no value
    }
    activated_ = false;
    loading_ = false;
    if (window_.leaving) {
        window_.leaving();
    }
    navigation_.view_closed(window_.form);
}

// -- Update

// The walk runs to its end though the window be closed under it, for the tuner asked for all of it; only a new opening,
// which reads everything anew, or a lost link ends it. Asked for again meanwhile it walks once more before the maps are
// shaded.
void Editor::update() {
    if (updating_) {
        update_again_ = true;
        return;
    }
    if (loading_) {
        return;
    }
    updating_ = true;
    if (window_.walking) {
        window_.walking(true);
    }
    {
        const PollingPause pause(state_);
        ports_.wait_seconds(window_.update_waits.before);
        int opening = opening_;
        do {
            update_again_ = false;
            opening = opening_;
            walk(opening);
        } while (update_again_);
        updating_ = false;
        if (!replaced(opening)) {
            end_walk();
        }
    }
    if (window_.walking) {
        window_.walking(false);
    }
    ports_.wait_seconds(window_.update_waits.after);
}

void Editor::walk(int opening) {
    not_taken_ = 0;
    Walk context{.link = link_,
                 .go_on = [this, opening] { return !replaced(opening); },
                 .note_fate = [this](Fate fate) { note_fate(fate); }};
    for (const Entry& entry : items_) {
        if (!context.go_on()) {
            return;
        }
        entry.item->send(context);
    }
}

// Shading takes the yellow of a cell that was refused or had no reply, but not of one that the walk did not see.
void Editor::end_walk() {
    for (const Entry& entry : items_) {
        entry.item->keep_behind();
    }
    if (window_.walked) {
        window_.walked();
    }
    for (const Entry& entry : items_) {
        entry.item->restore_behind();
    }
    show_status();
    changed();
}

void Editor::note_fate(Fate fate) {
    const bool taken = fate == Fate::accepted || fate == Fate::skipped || (fate == Fate::not_sent && state_.demo_mode);
    not_taken_ += taken ? 0 : 1;
    changed();
}

// -- Counting and telling

void Editor::changed() {
    if (change_posted_) {
        return;
    }
    change_posted_ = true;
    ports_.timers.post([this] {
        change_posted_ = false;
        show_status();
        if (window_.redraw && !loading_) {
            window_.redraw();
        }
    });
}

int Editor::pending() const {
    int count = 0;
    for (const Entry& entry : items_) {
        count += entry.item->pending();
    }
    return count;
}

std::vector<GroupCount> Editor::pending_by_group() const {
    std::vector<GroupCount> groups;
    for (const Entry& entry : items_) {
        auto group = std::ranges::find(groups, entry.texts.group, &GroupCount::group);
        if (group == groups.end()) {
            group = groups.insert(group, {.group = entry.texts.group});
        }
        group->pending += entry.item->pending();
    }
    return groups;
}

void Editor::show_status() {
    if (loading_) {
        return; // the label tells how far the read is
    }
    const int count = pending();
    const auto values = [](int n) { return n == 1 ? "1 value" : std::to_string(n) + " values"; };
    std::string text;
    if (state_.comm_aborted) {
        text = "Aborted: nothing is sent until a view is opened";
    } else if (not_taken_ == 0) {
        text = (count == 0 ? "No values" : values(count)) + " pending";
    } else if (count == 0) { // the shading took their yellow
        text = values(not_taken_) + (not_taken_ == 1 ? " was" : " were") + " not taken by the controller";
    } else {
        text = values(count) + " pending, " + std::to_string(not_taken_) + " not taken";
    }
    window_.status.set_text(text);
}

} // namespace ecu::editing
