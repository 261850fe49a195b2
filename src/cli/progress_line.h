// What the verbs that transfer show meanwhile, and how the console's texts stand on a terminal.
#pragma once

#include "cli/interrupt.h"
#include "cli/session.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <unistd.h>

namespace ecu::cli {

// What frm_wait shows, on one line of a terminal; nothing when the errors go elsewhere. Also where a transfer notices
// that the user wants to end it.
class ProgressLine {
public:
    explicit ProgressLine(Session& session) : session_(session), on_terminal_(isatty(STDERR_FILENO) == 1) {
        session_.terminal.watch("frm_wait", [this](platform::Control& control) {
            if (interrupted()) {
                throw Interrupted{};
            }
            if (on_terminal_ && control.kind() == platform::Kind::shape) {
                show();
            }
        });
    }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() {
        session_.terminal.watch("", {});
        if (shown_) {
            std::cerr << "\r\033[K" << std::flush;
        }
    }

private:
    void show() {
        const calibration::FrmWait& wait = session_.console.forms.frm_wait;
        const int percent = static_cast<int>(100 * wait.percent_bar.width() / wait.percent_track.width());
        std::cerr << "\r" << percent << " %, " << wait.tx_bytes.text() << " bytes sent, " << wait.rx_bytes.text()
                  << " received\033[K" << std::flush;
        shown_ = true;
    }

    Session& session_;
    bool on_terminal_;
    bool shown_ = false;
};

// The console's texts are for a message box: several lines.
inline std::string on_one_line(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

// Asks on the terminal. Throws Failure where there is none, with `refusal`.
inline bool agreed(const std::string& question, const std::string& refusal) {
    if (isatty(STDIN_FILENO) != 1) {
        throw Failure(Status::usage, refusal);
    }
    std::cerr << question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    if (interrupted()) {
        std::cerr << std::endl;
        throw Interrupted{};
    }
    return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace ecu::cli
