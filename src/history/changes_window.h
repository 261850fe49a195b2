// The window of the changes to be sent, for everything that sends differences: it shows the exact writes, sends the
// ticked ones, tells of each what became of it, and goes on from there after a lost link. And the reading of the
// controller that comes before, with its progress and its end on request.
#pragma once

#include "history/difference.h"
#include "history/frm_changes.h"
#include "history/restore_points.h"

namespace ecu::history {

class ChangesWindow {
public:
    struct Use {
        const platform::Ports& ports;
        link::SharedState& state;
        SendChanges& sender;
        const calibration::Scales& units;
        FrmChanges& form;
    };
    explicit ChangesWindow(const Use& use);

    // What is offered, and where it comes from. `wanted_scales` show the numbers to be sent.
    struct Offer {
        std::string title; // "Upload changes of tune1.set"
        std::string from;  // for the journal
        link::ControllerIdentity identity;
        calibration::Scales now_scales;
        calibration::Scales wanted_scales;
        std::vector<ChangeLine> lines;
        std::string when_empty; // in place of "Nothing differs"
        std::function<void(const SendResult&, const std::vector<ChangeLine>&)> ended = {}; // after each sending
    };
    void show(Offer offer);
    // Reads the controller, then shows what of `side` differs from it.
    void show_differences_to(const Side& side, const std::string& title,
                             std::function<void(const SendResult&, const std::vector<ChangeLine>&)> ended = {});

    // The same for single items that are to be as they were, which are read alone.
    void show_put_back(const std::vector<JournalRow>& rows, const calibration::CalibrationImage& image,
                       const std::string& title);

    void choose_file_and_show(); // Tools > Upload changes...

    // Reads the controller with its progress in `status`; nothing when it failed or was stopped, which `status` says.
    std::optional<ControllerCopy> read(platform::Label& status, const bool& stop);
    // The controller that the offer was read from.
    const link::ControllerIdentity& offered_to() const { return offer_.identity; }
    // Reading or sending, whoever asked for it.
    bool busy() const { return busy_; }
    // Why nothing can be read or sent now; empty when it can.
    std::string refusal() const;

    // Before the first value of a sending goes out; false keeps it back. May be empty.
    std::function<bool()> before_sending;

private:
    void send();
    void show_lines();
    void show_state();
    void tick_all(bool ticked);
    std::size_t ticked() const;

    Use use_;
    Offer offer_;
    bool busy_ = false;
    bool stop_ = false;
};

} // namespace ecu::history
