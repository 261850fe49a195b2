// The desktop of the tests: every port of the platform in simulated time, and the host of the forms. Message boxes,
// file dialogs and modal forms are answered from a script and recorded; one that the script does not foresee fails
// the test and gets the safe answer, and so does an answer that was never asked for.
// Declare it first in a fixture, before forms and console objects, so that it outlives them.
#pragma once

#include "platform/form.h"
#include "platform/ports.h"
#include "support/scripted_controller.h"
#include "support/sim_datagrams.h"

#include <filesystem>

namespace ecu::test {

// What Program::end throws; the code under test does not go on.
struct ProgramEnded {
    int status;
};

class SimDesktop final : public SimEvents,
                         public platform::Dialogs,
                         public platform::Program,
                         public platform::SerialPorts,
                         public platform::DatagramSockets,
                         public platform::FormHost {
public:
    SimDesktop();
    ~SimDesktop() override;
    SimDesktop(const SimDesktop&) = delete;
    SimDesktop& operator=(const SimDesktop&) = delete;

    platform::Ports ports() {
        return {*this, *this, *this, *this, *this, *this, *this, folder_, [this](const char* name) {
                    const auto found = environment.find(name);
                    return found == environment.end() ? std::string() : found->second;
                }};
    }
    std::map<std::string, std::string> environment; // what the program's surroundings say

    // The working directory, made for this desktop and removed with it.
    const std::filesystem::path& folder() const { return folder_; }
    std::string path(std::string_view name) const { return (folder_ / name).string(); }
    void write_file(std::string_view name, std::string_view text) const;
    std::string read_file(std::string_view name) const; // fails the test when there is none

    // The line of the console's serial port; usable before that is made.
    SimSerialLine& line() { return line_; }
    SimNetwork& network() { return network_; }

    // Answers the first box yet to come whose text contains this.
    void answer_box(std::string text, platform::Answer answer) { answers_.emplace_back(std::move(text), answer); }
    void expect_box(std::string text) { answer_box(std::move(text), platform::Answer::ok); }
    std::function<void()> while_choosing;                                     // runs inside the next file dialog
    void choose_file(std::string path) { files_.push_back(std::move(path)); } // "" cancels the dialog
    const std::vector<platform::MessageBox>& boxes() const { return boxes_; }
    std::vector<std::string> box_texts() const;
    const std::vector<platform::FileDialog>& file_dialogs() const { return file_dialogs_; }

    // What the user does with the next modal showing of the form, once its activation is done.
    void on_modal(const std::string& form, std::function<void(platform::Form&)> action);
    // How often a control announced a change of any property, or of this one.
    int changes(const std::string& form, const std::string& control,
                std::optional<platform::Property> property = {}) const;
    void clear_changes() { changes_.clear(); }

    platform::Answer message_box(const platform::MessageBox& box) override;
    std::string open_file(const platform::FileDialog& dialog) override { return next_file(dialog); }
    std::string save_file(const platform::FileDialog& dialog) override { return next_file(dialog); }
    [[noreturn]] void end(int status) override { throw ProgramEnded{status}; }
    std::unique_ptr<platform::SerialPort> make_serial_port() override { return std::make_unique<SimSerialPort>(line_); }
    std::unique_ptr<platform::DatagramSocket> make_datagram_socket() override {
        return std::make_unique<SimDatagramSocket>(&network_);
    }
    void form_shown(platform::Form& form) override {
        post([&form] { form.activate(); });
    }
    void form_hidden(platform::Form&) override {}
    void form_changed(platform::Form&, platform::FormChange) override {}
    void run_modal(platform::Form& form) override;
    void control_changed(platform::Control& control, platform::Property property) override {
        ++changes_[{&control, property}];
    }

private:
    std::string next_file(const platform::FileDialog& dialog);

    std::filesystem::path folder_;
    SimSerialLine line_{*this};
    SimNetwork network_{*this};
    std::vector<std::pair<std::string, platform::Answer>> answers_;
    std::deque<std::string> files_;
    std::vector<platform::MessageBox> boxes_;
    std::vector<platform::FileDialog> file_dialogs_;
    std::map<std::string, std::deque<std::function<void(platform::Form&)>>> modal_actions_;
    std::map<std::pair<const platform::Control*, platform::Property>, int> changes_;
};

} // namespace ecu::test
