// Undo and redo of what is entered into the boxes and grids of one editor: typed, pasted, stepped, reset, and what the
// tools write into a block, each as one step. Texts only: nothing is sent, Update sends as ever. A value that goes back
// to what the controller confirmed last is confirmed again; anything else is pending. Replies are no steps. It owns the
// form's Edit menu, and tells of each value what it was when the window was opened.
#pragma once

#include "platform/form.h"
#include "platform/grid.h"
#include "platform/ports.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ecu::editing {

class Undo {
public:
    Undo(platform::Form& form, const platform::Ports& ports);
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;

    void add(platform::TextBox& box);
    void add(platform::Grid& grid);
    // Its text was written, by whomever; called before its background tells of it.
    void note(platform::TextBox& box) { note(Place{&box, 0, 0}); }
    void note(platform::Grid& grid, int row, int column) { note(Place{&grid, row, column}); }

    void reading();         // an opening read begins: what is written is no entry
    void opened(bool anew); // and has ended; unless it only read what was missing, what is shown now is the beginning
    void sent();            // an Update has ended: what it did not get confirmed has no sure value in the controller

    void undo();
    void redo();
    void revert(); // all that is pending

    // Brings a box or grid in front; may be empty.
    std::function<void(const platform::Control&)> reveal;

private:
    struct Place {
        platform::Control* control;
        int row; // 0: a box
        int column;
        bool operator==(const Place&) const = default;
    };
    using Cell = platform::Grid::Cell;
    struct Slot {
        Cell shown;                    // as it was last looked at
        std::optional<Cell> confirmed; // what the controller holds for sure
        std::string at_opening;
        std::string remark; // at the end of a box's tip
    };
    struct Edit {
        Place place;
        std::string before;
        bool unread_before = false;
        std::string after;
    };
    struct Step {
        std::vector<Edit> edits;
        float time = 0;
    };

    void note(const Place& place);
    void settle();
    void close_step();
    void replay(const Step& step, bool back);
    void put(const Place& place, const std::string& text, bool unread);
    void show_box_remark(const Place& place, Slot& slot);
    void offer();
    Slot& slot(const Place& place);
    static Cell state(const Place& place);
    static std::string remark(const Slot& slot, const std::string& now);
    template <typename Act> void for_each(Act act);

    const platform::Ports& ports_;
    platform::MenuItem menu_;
    platform::MenuItem undo_;
    platform::MenuItem redo_;
    platform::MenuItem revert_;
    std::map<platform::Control*, std::vector<Slot>> slots_;
    std::vector<Edit> touched_; // written since the last look: by an entry or a reply, which shows only behind it
    Step open_;                 // of this round of events
    std::vector<Step> done_, undone_;
    bool reading_ = false;
    bool replaying_ = false;
    bool posted_ = false;
};

} // namespace ecu::editing
