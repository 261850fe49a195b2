// What editing sends: reads, whose replies the decoders show, and entries, each by the one order that every window
// keeps: the question, the replaced text into the box, the notice, the refusal, and else the message. And the pause
// that keeps the scheduler's polling out of a sequence.
#pragma once

#include "calibration/encoding.h"
#include "link/ecu_comm.h"
#include "link/pause.h"
#include "link/same_controller.h"
#include "platform/grid.h"
#include "platform/ports.h"

#include <functional>
#include <utility>

namespace ecu::editing {

// What became of a value that was to be sent.
enum class Fate : std::uint8_t {
    accepted,
    unanswered, // sent, but the controller did not take it
    not_sent,   // the link let no message through, or there is none (demo mode)
    refused,    // by its range, which was said
    skipped,    // by the user's answer, because it was no longer wanted when the user had answered, or lost()
};

// Asked after whatever let events through: is the value still to be sent? Empty: always.
using GoOn = std::function<bool()>;
// What has to follow the accepted echo of a value at once.
using AfterEcho = std::function<void()>;

class EditorLink {
public:
    EditorLink(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
               const calibration::Scales& scales)
        : ports_(ports), state_(state), comm_(comm), scales_(scales) {}

    // A scalar (element 0) or element of a vector that a box shows.
    // What is entered into the box until all of it has come back is a new entry and stays.
    Fate send_entry(const calibration::Parameter& row, int element, platform::TextBox& box, const GoOn& go_on = {},
                    const AfterEcho& after = {});
    // A table's cell, in one of nine boxes or in a grid. `index` counts the table's bytes.
    Fate send_entry(const calibration::Table& row, int index, platform::TextBox& box, const GoOn& go_on = {});
    Fate send_entry(const calibration::Table& row, int index, platform::Grid& grid, const GoOn& go_on = {});
    // A value that is no text: switches, options, a word made of several controls.
    Fate write(const link::Message& message, int expected_length);

    // For the time of an Update's walk: its values go to the controller that is there now. When the port is lost and
    // what answers then cannot be shown to be the same one, this is said and nothing more is sent.
    class ToOneController {
    public:
        explicit ToOneController(EditorLink& link)
            : link_(link), controller_(link.comm_, link.state_), before_(std::exchange(link.one_, &controller_)) {
            link.demo_before_ = link.state_.demo_mode;
            link.hushed_ = false;
        }
        ~ToOneController() {
            link_.one_ = before_;
            link_.hushed_ = false;
        }
        ToOneController(const ToOneController&) = delete;
        ToOneController& operator=(const ToOneController&) = delete;

    private:
        EditorLink& link_;
        link::SameController controller_;
        link::SameController* before_;
    };
    bool lost() const { return one_ != nullptr && one_->lost(); }
    // The user has left the window in mid-walk: nothing is asked or said any more. What would need a word is not sent.
    void hush() { hushed_ = one_ != nullptr; }

    // Whether an entry would be refused or held.
    bool out_of_range(const calibration::Table& row, std::string_view text) const;

    void read(const link::Message& message, int expected_length) { comm_.poll(message, expected_length); }
    // Reads `count` blocks from `address` upward. Before block k it calls progress(k); after each it looks at the
    // link and at stop(), and gives up with false.
    bool read_blocks(const calibration::BlockRead& block, int address, int count,
                     const std::function<void(int)>& progress, const std::function<bool()>& stop,
                     const std::function<bool(int)>& skip = {});

    // Before a value's box is said: shows where the value is, and returns it for the box's details. `row` 0: a box.
    std::function<std::string(platform::Control& control, int row, int column)> show_place;
    // An accepted entry stands at a limit, which nothing said: what was entered, and what the echo shows.
    std::function<void(const std::string& entered, const std::string& shown)> on_held;

    link::SharedState& state() const { return state_; }
    const platform::Ports& ports() const { return ports_; }

private:
    // Where an entry stands: a box (row 0) or a cell.
    struct Place {
        platform::Control& control;
        int row = 0;
        int column = 0;
        std::string text() const;
        void replace(std::string_view text) const;
        void begin_sending() const;
        bool end_sending() const; // whether something was entered meanwhile
    };
    Fate settle(const calibration::EncodedEntry& entry, const Place& place, const GoOn& go_on,
                const link::Message& message, int expected_length, const AfterEcho& after = {});
    // The failure dialog inside this walk was answered so that no message goes out any more.
    bool given_up() const;
    link::Outcome send(const link::Message& message, int expected_length);
    platform::Answer say(const Place& place, std::string_view text, platform::Buttons buttons = platform::Buttons::ok);

    const platform::Ports& ports_;
    link::SharedState& state_;
    link::EcuComm& comm_;
    const calibration::Scales& scales_;
    link::SameController* one_ = nullptr; // while a walk runs
    bool demo_before_ = false;            // the walk began in demo mode
    bool hushed_ = false;
};

} // namespace ecu::editing
