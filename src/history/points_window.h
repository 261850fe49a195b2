// The window of the restore points: making one with a note, the list with the differences from each to the next,
// comparing, restoring by the differences, saving as a setup file. And the setting by which one is made before every
// upload, re-flash and reset of a map.
#pragma once

#include "history/changes_window.h"
#include "history/frm_restore_points.h"

namespace ecu::history {

class PointsWindow {
public:
    struct Use {
        const platform::Ports& ports;
        HistoryFile& file;
        ChangesWindow& changes;
        FrmRestorePoints& form;
    };
    explicit PointsWindow(const Use& use);

    void open();
    // Makes one now if the setting wants it. False when it was wanted and failed and the user does not go on without.
    bool before(std::string_view what);
    // The same with what was read already.
    bool keep_before(const ControllerCopy& copy, std::string_view what);

    std::function<void(const std::string& name)> compare_with_controller; // "@3"
    std::function<void(bool b, const std::string& name)> use_as;          // one of the two calibrations
    std::function<std::string(const std::string& name)> letter_of = {};   // "A", "B" or nothing
    std::function<std::string()> both;                                    // what A and B are

    void refresh();

private:
    void make();
    void restore();
    void save();
    void remove();
    void set_note();
    void choose();
    void show_buttons();
    bool keep_one(std::string_view note);
    bool keep_copy(const ControllerCopy& copy, std::string_view note);
    bool goes_on_without() const;
    void take_file(bool b);
    std::optional<std::int64_t> chosen() const;
    void say(const std::string& text) { use_.form.points_status.set_text(text); }

    Use use_;
    std::vector<std::int64_t> ids_; // of the rows
    bool stop_ = false;
    bool reading_ = false;
};

} // namespace ecu::history
