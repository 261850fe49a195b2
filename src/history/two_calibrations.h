// Two calibrations at a keystroke: restore points A and B, of which the controller holds one after a switch. The first
// switch, and every one behind other writes, reads the controller and shows what it will send; the next ones send what
// differs between the two at once, each value verified. The main window's title tells which one is held.
#pragma once

#include "history/changes_window.h"

namespace ecu::history {

class TwoCalibrations {
public:
    struct Use {
        const platform::Ports& ports;
        HistoryFile& file;
        Journal& journal;
        SendChanges& sender;
        ChangesWindow& changes;
        platform::Form& main_form;
        platform::Label& result; // of the main window
    };
    explicit TwoCalibrations(const Use& use) : use_(use) {}

    void choose(bool b, const std::string& name); // "@3"
    // "A", "B", "A and B" or nothing.
    std::string letter_of(const std::string& name);
    void switch_over();

private:
    std::string name_of(bool b);
    std::optional<Side> side_of(bool b);
    void now_holds(bool b, const link::ControllerIdentity& identity);
    void lost_sight();
    void show_title();

    Use use_;
    std::optional<bool> holds_b_;
    std::uint64_t writes_at_switch_ = 0;
    link::ControllerIdentity identity_; // of the controller that holds it
    std::string title_;                 // what stands behind the main window's own
};

} // namespace ecu::history
