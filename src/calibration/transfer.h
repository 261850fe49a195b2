// Moves a whole calibration between controller and setup file. One long sequence of messages on the one thread, with
// frm_wait in front, the main form disabled and the scheduler kept out; a message without an answer is followed by the
// next one, and told at the end. A download goes to a new file beside the target, which takes the target's name at the
// end: whatever happens on the way, the older file stays whole. Both ways are with one controller only: when the port
// was lost and what answers then cannot be shown to be the same one, the transfer ends there.
#pragma once

#include "calibration/calibration_image.h"
#include "calibration/frm_wait.h"
#include "link/ecu_comm.h"
#include "link/link_selection.h"
#include "link/pause.h"
#include "link/same_controller.h"
#include "platform/safe_file.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ecu::calibration {

struct TransferResult {
    enum class Outcome : std::uint8_t {
        done,
        demo_mode,        // refused
        no_answer,        // to the probe
        cancelled,        // in the file dialog, or the path names no file
        incomplete,       // values had no answer and only a whole file was wanted; an older one is unchanged
        file_failed,      // could not be read or written; `trouble` says what and what to do
        stopped,          // by a line that fits no message; `trouble` says which
        other_controller, // or one that cannot be told from another; `trouble` says more. An older file is unchanged
    };
    Outcome outcome = Outcome::cancelled;
    std::string trouble;
    int lines = 0;               // written, or gone through
    int messages = 0;            // sent, the probe not counted
    int unanswered = 0;          // of these
    int older_lines = 0;         // of a download: lines whose values had no answer and are older ones
    std::vector<int> unknown_at; // numbers of the lines whose key stands in no row, from 1
    std::vector<int> odd_at;     // numbers of the lines whose value is no number, or not only one
};

class Transfer {
public:
    struct Use {
        const platform::Ports& ports;
        link::SharedState& state;
        link::EcuComm& comm;
        link::LinkSelection& link_selection;
        const CalibrationImage& image;
        FrmWait& form;
        platform::Form& main_form;        // FrmEcu, disabled meanwhile
        std::string_view console_version; // of the SW_REV line
    };
    explicit Transfer(const Use& use) : use_(use) {}

    // Closes every file that the console has open; may be empty.
    std::function<void()> close_files;

    // Takes what became of a transfer as one line, "tune1.set: 2,126 lines sent, 2 unknown: 20, 30"; may be empty.
    std::function<void(const std::string&)> tell_result;

    void menufilesave_Click(); // the controller to a file
    void menufileopen_Click(); // a file to the controller

    // Whether a file with older values in it replaces the one before.
    enum class Accept : std::uint8_t { older_values, whole_only };
    // The same without the file dialog. `path` is relative to the working folder unless absolute, in UTF-8. What goes
    // wrong is said in a message box and comes back in the result; an exception out of a dialog passes through and
    // leaves the forms usable and no unfinished file.
    TransferResult download_to(const std::string& path, Accept accept = Accept::older_values);
    TransferResult upload_from(const std::string& path);
    // An upload of a text that was read already. `name` stands for the path in caption and messages.
    TransferResult upload_text(const std::string& name, std::string_view text);
    // True of what a file dialog gives when nothing was chosen.
    static bool names_no_file(const std::string& path);
    // Takes one line with its line end; returns false to end the download there.
    using Sink = std::function<bool(std::string_view line)>;
    // A download whose lines go to `sink` instead of a file. `name` stands for the path in the caption.
    TransferResult download_lines(const std::string& name, const Sink& sink);

    // Single messages under the same rules, refusals and progress, for a sequence that is no file. It ends at the first
    // message that `ended` does not want to go on behind.
    struct Sequence {
        std::size_t count = 0;
        std::function<std::string()> begin; // once the controller answers; a text ends it
        std::function<std::pair<link::Message, int>(std::size_t)> message; // with the payload count awaited
        std::function<bool(std::size_t, bool answered)> ended;
    };
    TransferResult send_sequence(const std::string& name, const Sequence& sequence);

    // The program ends from inside a transfer: removes the file that is not whole.
    void abandon() { growing_.reset(); }

private:
    class Running;
    class Progress;
    enum class Direction : std::uint8_t { download, upload };

    using Action = std::function<TransferResult(const std::string& path)>;
    TransferResult run(Direction direction, const std::function<std::string()>& choose_path, const Action& act);
    TransferResult::Outcome start(Direction direction);
    TransferResult download(const std::string& path, Accept accept);
    TransferResult upload(const std::string& path);
    TransferResult send_lines(const std::string& path, std::string_view text, Progress& progress);
    void write_lines(const Sink& sink, Progress& progress, TransferResult& result);
    std::vector<std::uint8_t> read_batch(Progress& progress, TransferResult& result);
    bool send(const link::Message& message, int reply, TransferResult& result);
    bool other_controller(const std::string& what, TransferResult& result) const;
    static std::string result_text(Direction direction, const std::string& path, const TransferResult& result);
    void close_all_files() const;
    std::filesystem::path full_path(const std::string& path) const;

    Use use_;
    std::optional<platform::SafeFile> growing_;
    std::optional<link::SameController> controller_; // while a transfer runs
    bool running_ = false;
};

} // namespace ecu::calibration
