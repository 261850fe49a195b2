// What an editor tells: its status line, and where the value is that a box speaks of.
#include "editing/editor.h"

#include <algorithm>

namespace ecu::editing {

void Editor::entered() {
    if (!updating_ && !loading_) { // else it may be a reply to this editor
        tally_ = {};
        note_.clear();
    }
    changed();
}

// Half of one engine's calibration is not written into another's.
void Editor::tell_other_controller() {
    note_ = "Nothing sent: another controller may answer now. Leave this window and open it again to read it";
    show_status();
}

void Editor::changed() {
    if (change_posted_) {
        return;
    }
    change_posted_ = true;
    ports_.timers.post([this] {
        change_posted_ = false;
        if (!window_.form.visible()) {
            return; // a download fills the closed windows too; the opening counts
        }
        show_status();
        if (window_.redraw && !loading_) {
            window_.redraw();
        }
    });
}

Counts Editor::counts() const {
    Counts counts;
    for (const Entry& entry : items_) {
        counts += entry.item->counts();
    }
    return counts;
}

int Editor::pending() const { return counts().pending; }

std::vector<GroupCount> Editor::pending_by_group() const {
    std::vector<GroupCount> groups;
    for (const Entry& entry : items_) {
        auto group = std::ranges::find(groups, entry.texts.group, &GroupCount::group);
        if (group == groups.end()) {
            group = groups.insert(group, {.group = entry.texts.group});
        }
        group->pending += entry.item->counts().pending;
    }
    return groups;
}

void Editor::show_status() {
    if (loading_) {
        return; // the label tells how far the read is
    }
    const Counts all = counts();
    window_.status.set_text(status_text({.counts = all,
                                         .groups = pending_by_group(),
                                         .tally = updating_ ? Tally{} : tally_,
                                         .aborted = state_.comm_aborted,
                                         .demo = state_.demo_mode,
                                         .note = note_}));
    if (window_.read_again != nullptr) {
        window_.read_again->set_enabled(all.unread > 0 && !updating_ && !other_controller_ && !state_.demo_mode &&
                                        !state_.comm_aborted);
    }
}

// "Fuel, 265 kPa, 312 rpm", and the keyboard stands there when the box has been read.
std::string Editor::show_place(platform::Control& control, int row, int column) {
    const auto found =
        std::ranges::find_if(items_, [&](const Entry& entry) { return entry.item->control() == &control; });
    if (found == items_.end()) {
        return {};
    }
    if (window_.reveal) {
        window_.reveal(control);
    }
    std::string text(found->texts.group);
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
    if (row > 0) {
        static_cast<platform::Grid&>(control).set_active_cell(row, column);
        add(found->texts.place ? found->texts.place(row, column)
                               : "row " + std::to_string(row) + ", column " + std::to_string(column));
    } else {
        control.set_focus();
        if (found->texts.place) {
            add(found->texts.place(0, control.index()));
        } else if (control.index() >= 0) {
            add("number " + std::to_string(control.index() + 1));
        }
    }
    return text;
}

// Said before anything is sent: what was left out of a paste, and what would not arrive as it was pasted.
void Editor::note_paste(const GridItem& item, const platform::Grid::Paste& paste) {
    const auto place = [&](int row, int column) {
        return item.grid().place ? item.grid().place(row, column)
                                 : "row " + std::to_string(row) + ", column " + std::to_string(column);
    };
    std::string note;
    if (paste.refused > 0) {
        note = std::to_string(paste.refused) + " not pasted, no number" +
               (paste.refused == 1 ? ": \"" : "s, first \"") + paste.first_text.substr(0, 12) + "\" at " +
               place(paste.first_row, paste.first_column);
    }
    int outside = 0;
    std::string first;
    for (const auto& [row, column] : paste.written) {
        const std::string& text = item.grid().cell_text(row, column);
        if (link_.out_of_range(item.row(), text) && outside++ == 0) {
            first = text + " at " + place(row, column);
        }
    }
    if (outside > 0) {
        note += (note.empty() ? "" : "; ") + std::to_string(outside) + " outside the map's range, first " + first;
    }
    note_ = note;
    changed();
}

} // namespace ecu::editing
