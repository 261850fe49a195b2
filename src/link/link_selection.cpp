#include "link/link_selection.h"

#include "link/frm_dialog.h"
#include "platform/display_mask.h"
#include "platform/rounding.h"
#include "platform/safe_file.h"
#include "platform/small_file.h"

#include <algorithm>
#include <limits>

namespace ecu::link {

namespace {

constexpr const char* port_file = "port.cfg";

} // namespace

LinkSelection::LinkSelection(const platform::Ports& ports, SharedState& state, platform::SerialPort& comm1,
                             FrmDialog& dialog, platform::Form& main_form)
    : ports_(ports), state_(state), comm1_(comm1), dialog_(dialog), main_form_(main_form) {}

void LinkSelection::open_comm_link() {
    state_.comm_aborted = false;
    state_.last_activity_time = ports_.now();
    if (!state_.demo_mode) {
        if (!state_.remote_server_ip.empty()) {
            state_.comm_ready = !state_.remote_connecting; // the greeting comes before any message
            return;
        }
        if (!comm1_.is_open()) {
            const std::string reason = comm1_.open(state_.comm_port_number, controller_baud);
            if (!reason.empty()) {
                no_port(reason);
                return;
            }
            state_.link_title_suffix = " ->COM" + std::to_string(state_.comm_port_number);
            state_.comm_ready = true;
            main_form_.set_caption("ECU System Console" + state_.link_title_suffix);
        }
        state_.comm_link_opened = 1;
        if (!state_.demo_mode) {
            return;
        }
        // Demo mode was chosen by an event handled during the open.
        state_.link_title_suffix = " ->DEMO";
    }
    state_.comm_link_opened = 1;
    state_.comm_ready = true;
}

void LinkSelection::no_port(const std::string& reason) {
    const std::string text =
        "No COM port found for COM" + std::to_string(state_.comm_port_number) + ".  Choose and option below.";
    const std::optional<int> answer = dialog_.ask(text, {"Exit", "Demo", "", ""}, reason);
    if (answer == 1) {
        state_.demo_mode = true;
        state_.comm_link_opened = 1;
        state_.comm_ready = true;
    } else if (answer == 0) {
        std::string list;
        for (const std::string& port : list_serial_ports()) {
            list += list.empty() ? port : "\n" + port;
        }
        ports_.dialogs.say(list);
        ports_.dialogs.say("Program is going to be terminated since it must either be set as Demo or Normal mode");
        ports_.program.end(0);
    }
}

std::array<std::string, 16> LinkSelection::list_serial_ports() {
    std::array<std::string, 16> list;
    comm1_.close();
    for (int number = 1; number <= static_cast<int>(list.size()); ++number) {
        const bool present = comm1_.open(number, controller_baud).empty();
        comm1_.close();
        list[static_cast<std::size_t>(number - 1)] =
            "COM-" + platform::masked(number, "00") + (present ? " PRESENT" : " FAILED");
    }
    return list;
}

bool LinkSelection::read_port_file() {
    const std::optional<std::string> content = platform::read_small_file(ports_.folder / port_file);
    if (!content) {
        ports_.dialogs.message_box(
            {.text = "There is no readable file " + platform::named_in_folder(ports_, port_file) +
                     ".\nIt holds the number of the serial port. Put a file of this name with the number, 1 to 10, "
                     "as its only line there and start again.",
             .icon = platform::Icon::critical});
        return false;
    }
    using Limits = std::numeric_limits<std::int16_t>;
    state_.comm_port_number = static_cast<std::int16_t>(std::clamp<std::int32_t>(
        platform::round_to_even(platform::number_of_file(*content)), Limits::min(), Limits::max()));
    return true;
}

void LinkSelection::choose_port(int number) {
    const std::string reason = platform::replace_file(ports_.folder / port_file, std::to_string(number) + "\n");
    if (!reason.empty()) {
        ports_.dialogs.message_box(
            {.text = "The port number could not be written to " + platform::named_in_folder(ports_, port_file) +
                     ".\nThe next start uses the number that the file holds now. Make the folder writable and choose "
                     "the port again.",
             .icon = platform::Icon::warning,
             .details = reason});
    }
    if (!comm1_.is_open()) {
        state_.comm_port_number = static_cast<std::int16_t>(number);
    }
}

} // namespace ecu::link
