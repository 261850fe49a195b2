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

    using Ended = std::function<void(const SendResult&, const std::vector<ChangeLine>&)>;
    // What is offered, and where it comes from. `wanted_scales` show the numbers to be sent.
    struct Offer {
        std::string title; // "Upload changes of tune1.set"
        std::string from;  // for the journal
        link::ControllerIdentity identity;
        calibration::Scales now_scales;
        calibration::Scales wanted_scales;
        std::vector<ChangeLine> lines;
        std::uint64_t writes = 0;                // so far, when these were read
        std::string when_empty;                  // in place of "Nothing differs"
        Ended ended = {};                        // after each sending
        std::optional<ControllerCopy> copy = {}; // the whole calibration, as it was read for the offer
    };
    void show(Offer offer);
    // Reads the controller, then shows what of `side` differs from it.
    void show_differences_to(const Side& side, const std::string& title, Ended ended = {});
    // The same for single items, which are read alone. `serial` is whose values they are, where that is known.
    struct Items {
        std::string title;
        calibration::Snapshot wanted;
        std::optional<std::uint32_t> serial = {};
        Ended ended = {};
    };
    void show_items(Items items);
    void choose_file_and_show(); // Tools > Upload changes...

    // Sends without a preview. Not while something else is under way.
    SendResult send_at_once(std::vector<ChangeLine>& lines, const link::ControllerIdentity& to,
                            const std::string& from);

    // Reads the controller with its progress in `status`; nothing when it failed or was stopped, which `status` says.
    std::optional<ControllerCopy> read(platform::Label& status, const bool& stop);
    // The controller that the offer was read from.
    const link::ControllerIdentity& offered_to() const { return offer_.identity; }
    // Reading or sending, whoever asked for it.
    bool busy() const { return busy_; }
    // Why nothing can be read or sent now; empty when it can.
    std::string refusal() const;

    // Before the first value of an upload goes out, with what the controller held; false keeps it back. May be empty.
    std::function<bool(const ControllerCopy&, const std::string& title)> before_sending;
    // Told when `busy` changes: windows enable their buttons by it.
    std::vector<std::function<void()>> busy_changed;

private:
    class Busy;
    void send();
    bool kept_before();
    void show_result(const SendResult& result);
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
