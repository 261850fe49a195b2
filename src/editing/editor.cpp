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
      link_(ports, state, comm, scales), undo_(window_.form, ports),
      paint_timer_(ports.timers.make_timer(paint_interval)) {
    window_.form.on_activate = [this] { open(); };
    window_.form.on_unload = [this] { unloading(); };
    window_.exit_button.clicked = [this] { close(); };
    window_.update_button.clicked = [this] { update(); };
    if (window_.read_again != nullptr) {
        window_.read_again->set_enabled(false);
        window_.read_again->clicked = [this] { read_again(); };
    }
    undo_.reveal = window_.reveal;
    link_.show_place = [this](platform::Control& control, int row, int column) {
        return show_place(control, row, column);
    };
    link_.on_held = [this](const std::string& typed, const std::string& shown) {
        if (tally_.held++ == 0) {
            tally_.first_held = typed + " is " + shown;
        }
    };
    paint_timer_->on_tick = [this] {
        if (filling_ != nullptr) {
            filling_->end_batch();
            filling_->begin_batch();
        }
        window_.status.set_text(progress_);
    };
}

// -- Items

void Editor::add_box(std::unique_ptr<BoxItem> item, ItemTexts texts) {
    undo_.add(item->box());
    item->box().changed = [this, box_item = item.get()] {
        undo_.note(box_item->box());
        box_item->box().set_back_colour(platform::pending);
        box_item->note_changed();
        entered();
    };
    items_.push_back({std::move(item), std::move(texts)});
}

void Editor::add(const calibration::Parameter& row, int element, TextBox& box, ItemTexts texts, AfterEcho after) {
    add_box(std::make_unique<BoxItem>(row, element, box, texts.demo, std::move(after)), std::move(texts));
}

void Editor::add(const calibration::Table& row, int index, TextBox& box, ItemTexts texts) {
    add_box(std::make_unique<BoxItem>(row, index, box, texts.demo), std::move(texts));
}

void Editor::add(const calibration::Table& row, platform::Grid& grid, ItemTexts texts) {
    auto item = std::make_unique<GridItem>(row, grid, texts.demo);
    grid.place = texts.place;
    grid.cell_changed = [this, grid_item = item.get()](int cell_row, int column) {
        platform::Grid& written = grid_item->grid();
        undo_.note(written, cell_row, column);
        written.set_cell_back(cell_row, column, platform::pending);
        grid_item->note_changed(index_of(written, cell_row, column));
        entered();
    };
    grid.pasted = [this, grid_item = item.get()](const platform::Grid::Paste& paste) { note_paste(*grid_item, paste); };
    undo_.add(grid);
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
    other_controller_ = false;
    tally_ = {};
    note_.clear();
    run_opening(false);
}

void Editor::read_again() {
    if (loading_ || updating_ || other_controller_ || !activated_ || unread() == 0) {
        return;
    }
    for (const Entry& entry : items_) {
        entry.item->keep_entries();
    }
    run_opening(true);
}

void Editor::run_opening(bool again) {
    const int opening = ++opening_;
    loading_ = true;
    undo_.reading();
    allow_editing(false);
    bool complete = false;
    {
        const link::Pause pause(state_);
        ports_.wait_seconds(window_.opening_waits.before);
        const bool afresh = !again && !replaced(opening); // else another opening has read the values meanwhile
        if (afresh) {
            blank_all();
        }
        if (afresh && window_.prepare) {
            window_.prepare();
        }
        ports_.waiting.process_events();
        const int below = std::exchange(reading_, opening);
        const bool again_below = std::exchange(reading_again_, again);
        complete = !stopped() && window_.read() && !stopped();
        if (complete && window_.opened) {
            window_.opened();
        }
        reading_ = below;
        reading_again_ = again_below;
        if (complete) {
            for (const Entry& entry : items_) {
                if (again) {
                    entry.item->restore_entries();
                }
            }
            window_.exit_button.set_enabled(true);
            window_.form.set_enabled(true);
            allow_editing(true);
            loading_ = false;
            undo_.opened(!again);
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
    if (window_.read_again != nullptr && !allowed) {
        window_.read_again->set_enabled(false);
    }
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
    link_.hush();
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
    if (other_controller_) {
        tell_other_controller();
        return;
    }
    updating_ = true;
    tally_ = {};
    note_.clear();
    if (window_.walking) {
        window_.walking(true);
    }
    {
        const link::Pause pause(state_);
        ports_.wait_seconds(window_.update_waits.before);
        const EditorLink::ToOneController to_one(link_);
        int opening = opening_;
        do {
            update_again_ = false;
            opening = opening_;
            walk(opening);
        } while (update_again_);
        updating_ = false;
        if (!replaced(opening)) {
            other_controller_ = link_.lost();
            end_walk();
            undo_.sent();
        }
    }
    if (window_.walking) {
        window_.walking(false);
    }
    ports_.wait_seconds(window_.update_waits.after);
}

void Editor::run_tool(const std::function<void()>& send) {
    if (updating_ || loading_ || other_controller_ || state_.demo_mode || state_.comm_aborted) {
        return;
    }
    updating_ = true;
    if (window_.walking) {
        window_.walking(true);
    }
    {
        const link::Pause pause(state_);
        send();
    }
    updating_ = false;
    update_again_ = false;
    show_status();
    if (window_.walking) {
        window_.walking(false);
    }
}

void Editor::walk(int opening) {
    Walk context{.link = link_,
                 .go_on = [this, opening] { return !replaced(opening) && !link_.lost(); },
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
    tally_.sent += fate == Fate::accepted ? 1 : 0;
    changed();
}

} // namespace ecu::editing
