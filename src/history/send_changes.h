// Brings the controller to a calibration by sending what differs and nothing else. Reading and sending keep the rules
// of a transfer: its refusals, its progress, one controller only. Every value is verified by its echo. What was read
// from one controller is not sent to another: before anything goes out the controller is asked who it is. A sequence
// that ends early tells what was sent and what was not, and goes on from there when it is started again.
#pragma once

#include "calibration/compare.h"
#include "calibration/transfer.h"
#include "history/journal.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ecu::history {

enum class LineState : std::uint8_t {
    waiting,
    sent,      // and the echo brought it back
    otherwise, // taken, but the controller holds another value now
    no_answer, // the controller may hold the older value or the new one
    unfit,     // no message carries this number; never sent
};

// A write that is wanted: the exact number that goes out.
struct ChangeLine {
    calibration::FileKey key;
    std::optional<std::int32_t> from; // what the controller held as it was read
    std::int32_t to = 0;
    bool ticked = true;
    LineState state = LineState::waiting;
    std::optional<std::int32_t> stored = {}; // by the echo
};

// What the controller holds, as one reading told it.
struct ControllerCopy {
    calibration::Snapshot values;
    link::ControllerIdentity identity;
    std::string setup; // the same as the text of a setup file
    std::string time;
    std::uint64_t writes = 0; // of the journal, as the reading began
};

struct ReadResult {
    std::optional<ControllerCopy> copy;
    std::string trouble; // why there is none, when nothing else has told it; empty when it was cancelled
    bool told = false;   // the transfer has said it in a box of its own
};

struct SendResult {
    int sent = 0;      // verified by their echo
    int otherwise = 0; // taken, but kept as another value
    int no_answer = 0;
    int left = 0;        // ticked and not sent
    std::string trouble; // why it ended early; empty when it went through
    bool complete() const { return left == 0 && no_answer == 0 && otherwise == 0 && trouble.empty(); }
};
// "12 sent and verified, 3 not sent: the link was lost at ..."
std::string result_text(const SendResult& result);

// Where `wanted` differs from `now`, in the order of a setup file. What only `now` has stays as it is.
std::vector<ChangeLine> changes_to(const calibration::Snapshot& wanted, const calibration::Snapshot& now);

class SendChanges {
public:
    struct Use {
        const platform::Ports& ports;
        link::SharedState& state;
        link::EcuComm& comm;
        calibration::Transfer& transfer;
        const calibration::CalibrationImage& image;
        Journal& journal;
    };
    explicit SendChanges(const Use& use) : use_(use) {}

    // Lines so far of all; returns false to end the reading.
    using Going = std::function<bool(int done, int all)>;
    ReadResult read(const Going& going = {});
    // These items alone, and what gives their numbers a scale; its `setup` stays empty.
    ReadResult read_items(const std::vector<calibration::FileKey>& keys);
    // Values written so far, by whatever window; what was read before the last of them may be out of date.
    std::uint64_t writes() const { return use_.journal.writes(); }
    // What was read of this table before, without a message; nothing where some of it was not.
    std::optional<ControllerCopy> as_read(const calibration::Table& table) const;

    // Sends the ticked lines that wait, in their order. `wanted_of` is who was read; `from` says where the values come
    // from, for the journal and the progress.
    SendResult send(std::vector<ChangeLine>& lines, const link::ControllerIdentity& wanted_of, const std::string& from,
                    const Going& going = {});

private:
    void learn_serial();
    std::string ask_who(const link::ControllerIdentity& wanted);
    std::optional<std::int32_t> held(const calibration::FileKey& key) const;

    Use use_;
};

} // namespace ecu::history
