// Two calibrations at a keystroke: A and B, restore points or setup files, of which the controller holds one after a
// switch. The first switch, and every one behind other writes or another opening of the port, reads the controller and
// shows what it will send; the next ones send what differs between the two at once, each value verified. The main
// window's title tells which one is held, and that it was changed since.
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
    explicit TwoCalibrations(const Use& use);

    void choose(bool b, const std::string& name); // "@3", or the path of a setup file
    // "A", "B", "A and B" or nothing.
    std::string letter_of(const std::string& name);
    std::string both(); // for people
    // What the controller holds may be anything from now on.
    void lose_sight();
    void switch_over();

private:
    struct Held {
        bool b;
        std::string name;
        calibration::Snapshot values;
        link::ControllerIdentity identity;
        bool sure = true; // nothing was written since
    };

    std::string name_of(bool b);
    std::string short_name(bool b);
    std::optional<Side> side_of(bool b);
    void preview(bool to_b, const Side& wanted, const std::string& title);
    void now_holds(bool b, const Side& side, const link::ControllerIdentity& identity);
    void show_title();

    Use use_;
    std::optional<Held> held_;   // the last one
    std::optional<bool> wanted_; // the one that a switch did not reach
    bool switching_ = false;
    std::string title_; // what stands behind the main window's own
};

} // namespace ecu::history
