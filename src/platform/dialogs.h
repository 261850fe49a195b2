// How the core asks the user: message boxes and file dialogs. Each call returns when the user has answered.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ecu::platform {

enum class Buttons : std::uint8_t { ok, ok_cancel, yes_no, yes_no_cancel };
enum class Icon : std::uint8_t { none, information, question, warning, critical };
enum class Answer : std::uint8_t { ok, cancel, yes, no };

struct MessageBox {
    std::string text;
    std::string title = "ECU System Console";
    Buttons buttons = Buttons::ok;
    Icon icon = Icon::none;
    Answer preset = Answer::ok; // the default button: yes or OK unless set to no or cancel
    std::string details = {};   // the system's reason, shown on request
};

struct FileDialog {
    std::string title = {};
    std::string default_extension = {}; // without the point
    std::string filter = {};            // "Setup Files (*.set)|"
    std::string initial_name = {};      // "*.SET"
};

class Dialogs {
public:
    virtual ~Dialogs() = default;
    virtual Answer message_box(const MessageBox& box) = 0;
    // Empty when cancelled.
    virtual std::string open_file(const FileDialog& dialog) = 0;
    virtual std::string save_file(const FileDialog& dialog) = 0; // asks before overwriting

    void say(std::string_view text) { message_box({.text = std::string(text)}); }
};

// Ends the program at once: nothing that follows the call runs.
class Program {
public:
    virtual ~Program() = default;
    [[noreturn]] virtual void end(int status) = 0;
};

} // namespace ecu::platform
