#include "flash/flash_utility.h"

#include "platform/display_mask.h"
#include "platform/leading_number.h"

#include <algorithm>

namespace ecu::flash {

namespace {

constexpr int timer1_interval_ms = 100;
constexpr float answer_seconds = 0.25F;
constexpr std::size_t most_waiting = 128; // characters in the port's output when a line is added
constexpr int drain_slice_ms = 5;
constexpr float stalled_seconds = 2; // without a character leaving, before events get through to the Halt button
constexpr float progress_seconds = 0.1F;
constexpr double seconds_a_character = 10.0 / flash_baud;
constexpr float bar_width = 1000;

float delay_of(const platform::TextBox& box) { return static_cast<float>(platform::leading_number(box.text())); }

std::string size_text(std::size_t bytes) {
    return bytes < 1000 ? std::to_string(bytes) + " bytes" : std::to_string((bytes + 500) / 1000) + " kB";
}

std::string time_text(double seconds) {
    const int whole = std::max(1, static_cast<int>(seconds + 0.5));
    return whole < 100 ? std::to_string(whole) + " s"
                       : std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
}

} // namespace

FlashUtility::FlashUtility(const platform::Ports& ports, link::SharedState& state, platform::SerialPort& comm1,
                           platform::Form& main_form, FrmSflash& form)
    : ports_(ports), state_(state), comm1_(comm1), main_form_(main_form), form_(form),
      port_(ports.serial_ports.make_serial_port()), timer1_(ports.timers.make_timer(timer1_interval_ms)) {
    timer1_->on_tick = [this] { read_monitor_output(); };
    form_.form.on_activate = [this] { opened(); };
    form_.form.on_close = [this] { close_requested(); };
    form_.exit_flash.clicked = [this] { leave(); };
    form_.flash_button.clicked = [this] { flash_program(); };
    form_.halt_button.clicked = [this] { flash_halt_ = true; };
    form_.monitor_check_button.clicked = [this] { monitor_check(); };
}

void FlashUtility::open() {
    main_form_.hide();
    form_.form.show();
}

void FlashUtility::opened() {
    timer1_->set_running(true);
    set_flashing(false);
    monitor_check();
}

bool FlashUtility::take_over_serial_port() {
    while (comm1_.is_open()) {
        comm1_.discard_input();
        ports_.waiting.process_events();
        comm1_.close();
        ports_.waiting.process_events();
    }
    if (!port_->is_open()) {
        const int number = state_.comm_port_number;
        const std::string reason = port_->open(number, flash_baud);
        if (!reason.empty()) {
            show_port();
            ports_.dialogs.message_box(
                {.text = "The serial port COM" + std::to_string(number) + " could not be opened for flashing: " +
                         reason + "\nCheck the cable, end what else uses the port, then press Monitor Check.",
                 .icon = platform::Icon::warning});
            return false;
        }
        state_.link_title_suffix = " ->COM" + std::to_string(number);
    }
    show_port();
    return true;
}

void FlashUtility::show_port() {
    const std::string device = port_->device_of(state_.comm_port_number);
    const std::string name =
        "COM" + std::to_string(state_.comm_port_number) + (device.empty() ? "" : " (" + device + ")");
    form_.flash_port.set_text(port_->is_open() ? name + " at " + std::to_string(flash_baud) + " baud"
                                               : name + " is not open.");
}

void FlashUtility::monitor_check() {
    if (take_over_serial_port()) {
        terminal_.clear();
        show_terminal();
        send("q");
    }
}

void FlashUtility::send(std::string_view text) {
    port_->write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void FlashUtility::read_monitor_output() {
    if (!port_->is_open() || port_->available() == 0) {
        return;
    }
    const bool error_before = terminal_.flash_error;
    while (port_->available() > 0) {
        terminal_.receive(port_->read(1).front());
    }
    show_terminal();
    if (!flashing_ && terminal_.flash_error && !error_before && bytes_sent_ > 0) {
        form_.flash_note.set_text("The monitor reports an error (E). Flash the controller again.");
    }
}

void FlashUtility::show_terminal() { form_.terminal.set_text(terminal_.text()); }

void FlashUtility::flash_program() {
    if (preparing_ || flashing_) {
        return;
    }
    preparing_ = true;
    const bool ready = monitor_answers() && choose_file();
    preparing_ = false;
    if (ready) {
        run();
    }
}

bool FlashUtility::monitor_answers() {
    const platform::Answer answer = ports_.dialogs.message_box(
        {.text = "The reflash opperation requires that ALL other applications be halted, or errors may occur. Press "
                 "Cancel if you need to halt other applications",
         .buttons = platform::Buttons::ok_cancel,
         .icon = platform::Icon::warning,
         .preset = platform::Answer::cancel});
    if (answer != platform::Answer::ok || !take_over_serial_port()) {
        return false;
    }
    port_->discard_input(); // what the monitor said earlier is no answer to this question
    terminal_.monitor_ready = false;
    terminal_.clear();
    show_terminal();
    send("q");
    ports_.wait_seconds(answer_seconds);
    if (!form_.form.visible()) {
        return false; // left meanwhile
    }
    read_monitor_output();
    if (!terminal_.monitor_ready) {
        ports_.dialogs.message_box({.text = "The controller doesnt appear to be ready to reflash, prepare it from the "
                                            "System Console Tool menu.",
                                    .icon = platform::Icon::warning});
    }
    return terminal_.monitor_ready;
}

bool FlashUtility::choose_file() {
    const std::string path = ports_.dialogs.open_file(
        {.title = "Flash Program", .default_extension = "s", .filter = "Setup Files (*.s)|", .initial_name = "*.S"});
    if (path.empty() || path == "*.S") {
        return false;
    }
    const std::filesystem::path file = ports_.folder / std::filesystem::path(std::u8string(path.begin(), path.end()));
    const std::string reason = file_.open(file);
    if (!reason.empty()) {
        ports_.dialogs.message_box({.text = "The record file " + path + " could not be used: " + reason +
                                            ". Nothing has been sent. Choose another file.",
                                    .icon = platform::Icon::warning});
        return false;
    }
    const std::u8string name = file.filename().u8string();
    file_name_.assign(name.begin(), name.end());
    form_.flash_file.set_text(file_name_ + ", " + size_text(file_.bytes()) + ", " +
                              std::to_string(file_.lines().size()) + " lines");
    form_.flash_file.set_tool_tip(path);
    return true;
}

void FlashUtility::run() {
    read_monitor_output();
    terminal_.clear();
    terminal_.print("Flashing controller firmware.");
    terminal_.print("Please stand by.");
    show_terminal();
    flash_halt_ = leave_at_end_ = false;
    set_flashing(true);
    if (take_over_serial_port()) {
        port_->discard_input(); // an "E" of earlier does not end this run
        terminal_.flash_error = false;
        form_.lines_sent.set_text("0");
        tell_end(send_lines());
    }
    file_.close();
    set_flashing(false);
    if (leave_at_end_) {
        leave();
    }
}

FlashUtility::End FlashUtility::send_lines() {
    opening_ = port_->openings();
    run_began_ = ports_.now();
    bytes_sent_ = 0;
    const std::vector<std::string_view>& lines = file_.lines();
    std::size_t sent = 0;
    show_progress(sent, true);
    if (await_room()) {
        send(lines.front());
        bytes_sent_ += lines.front().size();
        ++sent;
    }
    while (sent > 0 && sent < lines.size()) {
        ports_.waiting.process_events();
        if (!await_room() || flash_halt_ || !send_line(lines[sent])) {
            break;
        }
        form_.lines_sent.set_text(std::to_string(sent)); // the first is not counted
        show_progress(++sent, false);
        ports_.waiting.process_events();
        if (terminal_.flash_error) {
            break;
        }
    }
    show_progress(sent, true);
    if (port_lost()) {
        return End::port_lost;
    }
    if (terminal_.flash_error) {
        return End::error;
    }
    return sent == lines.size() ? End::complete : End::halted;
}

// False when the port went meanwhile.
bool FlashUtility::send_line(std::string_view line) {
    if (form_.char_delay_box.checked()) {
        for (const char character : line) {
            send({&character, 1});
            ports_.wait_seconds(delay_of(form_.char_dly));
            if (port_lost()) {
                return false;
            }
        }
        send("\r\n");
        ports_.wait_seconds(delay_of(form_.char_dly));
    } else {
        send(line);
    }
    bytes_sent_ += line.size();
    if (form_.line_delay_box.checked()) {
        ports_.wait_seconds(delay_of(form_.line_dly));
    }
    return !port_lost();
}

// The port drains by itself, with events standing still. Only a line that takes nothing at all lets them through, so
// that the Halt button still works. False when the wait has no end: halted there, or the port is gone.
bool FlashUtility::await_room() {
    float moved_at = ports_.now();
    std::size_t waiting = port_->output_pending();
    while (waiting > most_waiting && !port_lost()) {
        port_->drain_output(drain_slice_ms);
        const std::size_t left = port_->output_pending();
        if (left < waiting) {
            moved_at = ports_.now();
        } else if (ports_.elapsed_since(moved_at) > stalled_seconds) {
            form_.flash_note.set_text("The line takes nothing at the moment; nothing is lost. Waiting...");
            ports_.waiting.process_events();
            if (flash_halt_) {
                return false;
            }
        }
        waiting = left;
    }
    return !port_lost();
}

bool FlashUtility::port_lost() const { return !port_->is_open() || port_->openings() != opening_; }

void FlashUtility::show_progress(std::size_t line, bool now) {
    if (!now && ports_.elapsed_since(progress_shown_) < progress_seconds) {
        return;
    }
    progress_shown_ = ports_.now();
    const std::size_t lines = file_.lines().size();
    form_.flash_bar.set_width(bar_width * static_cast<float>(line) / static_cast<float>(lines));
    std::string text = "Line " + std::to_string(line) + " of " + std::to_string(lines);
    if (line < lines) {
        const std::size_t left = file_.bytes() - std::min(file_.bytes(), bytes_sent_);
        const float elapsed = ports_.elapsed_since(run_began_);
        const double pace =
            elapsed > 1 && bytes_sent_ > 0 ? elapsed / static_cast<double>(bytes_sent_) : seconds_a_character;
        text += ", about " + time_text(pace * static_cast<double>(left)) + " left";
    }
    form_.flash_note.set_text(text);
}

void FlashUtility::tell_end(End end) {
    const std::string at = form_.flash_note.text().substr(0, form_.flash_note.text().find(','));
    std::string reason;
    switch (end) {
    case End::complete:
        form_.flash_note.set_text("All " + std::to_string(file_.lines().size()) +
                                  " lines have been sent. The terminal shows what the monitor says to them.");
        return;
    case End::error:
        reason = "The monitor reported an error (E). " + at + ".";
        break;
    case End::halted:
        reason = "Halted by the user. " + at + ".";
        break;
    case End::port_lost:
        reason = "The device of the serial port is gone. " + at + ". Plug it in again, then press Monitor Check.";
        port_->close();
        show_port();
        break;
    }
    form_.flash_note.set_text(reason);
    ports_.dialogs.message_box({.text =
                                    "An error has occurred durring the program Flash opperation, you must Flash the "
                                    "controller again.",
                                .icon = platform::Icon::critical,
                                .details = reason});
}

void FlashUtility::set_flashing(bool flashing) {
    flashing_ = flashing;
    form_.exit_flash.set_enabled(!flashing);
    form_.monitor_check_button.set_enabled(!flashing);
    form_.halt_button.set_enabled(flashing);
    form_.flash_button.set_enabled(!flashing);
}

// The question stands inside the run's own handling of events, so the run stands still until it is answered.
void FlashUtility::close_requested() {
    if (!flashing_) {
        leave();
        return;
    }
    const platform::Answer answer = ports_.dialogs.message_box(
        {.text = "The controller is being flashed. If you stop now it has no usable program and must be flashed again. "
                 "Do you really want to stop and close the flash utility?",
         .buttons = platform::Buttons::yes_no,
         .icon = platform::Icon::warning,
         .preset = platform::Answer::no});
    if (answer == platform::Answer::yes) {
        flash_halt_ = leave_at_end_ = true;
    }
}

void FlashUtility::leave() {
    timer1_->set_running(false);
    port_->close();
    state_.current_view = link::View::none;
    form_.form.hide();
    main_form_.show();
}

} // namespace ecu::flash
