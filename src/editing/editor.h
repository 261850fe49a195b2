// The sequence of every window that edits the calibration: the opening read with progress and cancel, the Update walk
// with what is typed behind it, asking again, counting and telling, redrawing, and leaving. The window supplies its
// rows, their order and what it draws; a use in full:
//
//     editor_(ports, state, comm, scales, navigation,
//             {.form = form.form, .title = "Additional Mapping", .update_button = form.update_button,
//              .exit_button = form.exit_button, .status = form.map_status,
//              .update_waits = {0.2F, 0.2F},
//              .prepare = [this] { label_axes(); },
//              .read = [this] { return editor_.ask(read_request('C')) && editor_.read_table(table("CLTM"), read_9) &&
//              ...
//                                      && editor_.read_table(table("EGOL"), read_27, "target table"); },
//              .opened = [this] { shade(); },       // after a complete read
//              .walked = [this] { shade(); }})      // after each Update; typed behind the walk stays yellow
//     editor_.add(table("CLTM"), form.clt_map, {.group = "Fuel", .demo = "1.000"});       // nine boxes
//     editor_.add(table("EGOL"), form.lambda_sp_table, {.group = "Target", .demo = "1.000"}); // grid: wire_grid
//     besides editor_.add(parameter("BO_P"), 2, form.boost_p[2], {.group = "GPO 3"});             // element of a
//     vector editor_.add(CustomItem{.pending = [...], .send = [...](Walk& walk) {
//                     walk.note_fate(walk.link.write(write_message(row, n, raw), row.write.reply)); }});
//
// The editor owns the form's on_activate and on_unload, the clicks of its buttons, and `changed`, `cell_changed` and
// `pasted` of what is added. A value that neither a reply nor an entry has filled since the opening is never sent; keys
// are the window's (editing_rules.h), with update() behind Enter.
#pragma once

#include "editing/editor_items.h"
#include "editing/undo.h"
#include "shell/navigation.h"

#include <memory>
#include <span>

namespace ecu::editing {

// Seconds of waiting behind the raising and behind the lowering of the polling pause.
struct Waits {
    float before = 0.1F;
    float after = 0.1F;
};

// What the window is, and does of its own. Empty functions do nothing.
struct EditorWindow {
    platform::Form& form;
    std::string_view title; // the caption; the link's suffix follows
    platform::Button& update_button;
    platform::Button& exit_button;
    platform::Label& status; // progress of the opening read, then the count of pending values
    Waits opening_waits = {};
    Waits update_waits = {};
    bool blanks = true;                             // all values yellow and empty before the opening read
    bool reads_each_time = false;                   // at every activation, else once from opening to leaving
    bool locks = true;                              // boxes and grids take no entry while the opening read runs
    std::function<void()> prepare = {};             // captions and sizes, before the first read
    std::function<bool()> read;                     // the reads in their order; false when one of them said so
    std::function<void()> opened = {};              // after a complete read, before the user may edit
    std::function<void(bool allowed)> allow = {};   // what else waits for the opening read: menu items
    std::function<void(bool walking)> walking = {}; // around an Update
    std::function<void()> walked = {};              // ends an Update of values that still stand: shading, bars
    std::function<void()> redraw = {};  // once for any number of changes, with the next events; not in the opening read
    std::function<void()> ready = {};   // the user may edit: where the keyboard goes
    std::function<void()> leaving = {}; // windows that hang on this one
    platform::Button* read_again = nullptr; // enabled while there are values that no reply has filled
    std::function<void(const platform::Control&)> reveal = {}; // brings a box or grid in front: its tab, its map
};

class Editor {
public:
    Editor(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
           const calibration::Scales& scales, shell::Navigation& navigation, EditorWindow window);
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    // -- What is walked, in this order

    void add(const calibration::Parameter& row, int element, platform::TextBox& box, ItemTexts texts = {},
             AfterEcho after = {});
    void add(const calibration::Table& row, int index, platform::TextBox& box, ItemTexts texts = {});
    void add(const calibration::Table& row, platform::Grid& grid, ItemTexts texts = {});
    void add(CustomItem item, ItemTexts texts = {});
    // Every element of a vector or of a table of nine boxes.
    template <typename Row, std::size_t N>
    void add(const Row& row, platform::ControlArray<platform::TextBox, N>& boxes, const ItemTexts& texts = {}) {
        for (std::size_t i = 0; i < N; ++i) {
            add(row, static_cast<int>(i), boxes[i], texts);
        }
    }

    // -- For the window's `read`: each returns false when the opening has to stop

    bool ask(const calibration::ReadRequest& request);
    // With progress: "Reading <name>, 3 of 70".
    bool ask_all(std::span<const calibration::ReadRequest> requests, std::string_view name);
    // A table block by block: "Reading <name>, block 3 of 8". Without a name the status stays.
    bool read_table(const calibration::Table& row, const calibration::BlockRead& block, std::string_view name = {});
    // Exit was pressed, the link was lost, or the window was opened anew meanwhile. To be asked after reads of one's
    // own.
    bool stopped() const;

    // -- What the user does

    void open();                  // the form's activation
    void update();                // sends exactly what is pending; asked for while it runs it walks once more
    void close();                 // as the exit button
    void hush() { link_.hush(); } // an Update that runs asks and says nothing more, since the user wants to leave
    // A message of a tool's own, with the window as during an Update. Nothing while one of the other runs, or when no
    // message would go out.
    void run_tool(const std::function<void()>& send);
    // Reads what is still unread, and nothing else; what is typed stays pending. A custom item with unread values has
    // every single message sent again.
    void read_again();

    // -- What the window may ask for

    // All values yellow and empty, or the samples of demo mode.
    void blank_all();
    void changed(); // something of a custom item: counts, and redraws, with the next events
    void entered(); // the same, by the user or a tool: what the last Update told is over
    void show_status();
    void show_progress(std::string_view text); // while the opening read runs
    bool opening() const { return loading_; }
    bool reading_again() const { return reading_again_; } // asked by what a read brings along
    int pending() const;
    int unread() const { return counts().unread; }
    Counts counts() const;
    std::vector<GroupCount> pending_by_group() const; // groups in the order of their first item, the empty ones too
    EditorLink& link() { return link_; }

private:
    struct Entry {
        std::unique_ptr<EditorItem> item;
        ItemTexts texts;
    };

    void add_box(std::unique_ptr<BoxItem> item, ItemTexts texts);
    void run_opening(bool again);
    std::string show_place(platform::Control& control, int row, int column);
    void note_paste(const GridItem& item, const platform::Grid::Paste& paste);
    template <typename... What> bool wanted(const What&... what) const;
    bool replaced(int opening) const { return opening != opening_; }
    void allow_editing(bool allowed);
    void unloading();
    void walk(int opening);
    void end_walk();
    void note_fate(Fate fate);
    void tell_other_controller();
    GridItem* grid_of(const calibration::Table& row) const;

    const platform::Ports& ports_;
    link::SharedState& state_;
    shell::Navigation& navigation_;
    EditorWindow window_;
    EditorLink link_;
    Undo undo_;
    std::vector<Entry> items_;
    std::vector<GridItem*> grids_; // of the items

    bool activated_ = false;
    bool loading_ = false;        // the opening read runs
    bool exit_requested_ = false; // stops a running read; an Update runs to its end behind the closed window
    bool updating_ = false;
    bool other_controller_ = false; // a walk has ended at one: what is shown is not what that one holds
    bool update_again_ = false;     // asked for during an Update
    bool change_posted_ = false;
    bool reading_again_ = false; // the read that runs is for unread values only
    Tally tally_;                // of the last Update
    std::string note_;           // of the last paste, until something is entered
    int reading_ = 0;            // the opening that `read` runs for
    int opening_ = 0; // tells a read or an Update that its values are gone: opened again, or closed with the link lost
    platform::Grid* filling_ = nullptr; // the grid that a read fills; it and the progress are shown at each tick
    std::string progress_;
    std::unique_ptr<platform::Timer> paint_timer_;
};

} // namespace ecu::editing
