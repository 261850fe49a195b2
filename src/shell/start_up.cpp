#include "shell/start_up.h"

#include "platform/picture.h"
#include "platform/small_file.h"
#include "platform/text_encoding.h"
#include "shell/jpeg.h"

#include <algorithm>
#include <cctype>

namespace ecu::shell {

namespace {

constexpr const char* picture_file = "OEM.JPG";
constexpr const char* text_file = "OEM.TXT";
constexpr std::size_t longest_text = 65536; // bytes
constexpr const char* master_mode_file = "debug.ini";

bool says_demo(std::string_view command_line) {
    constexpr std::string_view word = "demo";
    return std::ranges::equal(command_line, word, {}, [](unsigned char c) { return std::tolower(c); });
}

std::string required_file(const StartUp& console, const char* name, const std::string& purpose) {
    std::optional<std::string> content = platform::read_small_file(console.ports.folder / name);
    if (!content) {
        console.ports.dialogs.message_box(
            {.text = "There is no readable file " + platform::named_in_folder(console.ports, name) + ".\nIt holds " +
                     purpose + ". Copy the file of this name from the installation there and start again.",
             .icon = platform::Icon::critical});
        console.ports.program.end(1);
    }
    return *std::move(content);
}

void check_port_item(const StartUp& console) {
    const int number = console.state.comm_port_number;
    for (int i = 0; i < static_cast<int>(console.main_form.ports.size()); ++i) {
        console.main_form.ports[static_cast<std::size_t>(i)]->set_checked(i + 1 == number);
    }
}

void set_title(const StartUp& console) {
    std::error_code ignored;
    console.state.master_mode = std::filesystem::exists(console.ports.folder / master_mode_file, ignored);
    console.main_form.form.set_caption(console.state.master_mode ? "ECU System Console [Master Mode]"
                                                                 : "ECU System Console");
}

void show_picture(const StartUp& console) {
    if (!is_whole_jpeg(required_file(console, picture_file, "the picture of the installation"))) {
        console.ports.dialogs.message_box({.text = platform::named_in_folder(console.ports, picture_file) +
                                                   " is not a JPEG picture, or only a part of one.\nThe console goes "
                                                   "on without it. Replace the file by a whole picture in that "
                                                   "format, or copy the one of the installation there.",
                                           .icon = platform::Icon::warning});
        return;
    }
    const std::string path = (console.ports.folder / picture_file).string();
    for (platform::Picture* picture : {&console.main_form.Picture1, &console.about_form.Picture1,
                                       &console.forms.get<platform::Picture>("frm_dashboard", "Picture1")}) {
        picture->load_image(path);
    }
}

// A text box that is given megabytes holds the whole console up.
std::string about_text(std::string file) {
    const bool whole = file.size() <= longest_text;
    if (!whole) {
        file.resize(longest_text);
        // No half of a character stays at the end: the whole would be taken for another encoding.
        while (!file.empty() && (static_cast<unsigned char>(file.back()) & 0xC0U) == 0x80U) {
            file.pop_back();
        }
        if (!file.empty() && static_cast<unsigned char>(file.back()) >= 0xC0U) {
            file.pop_back();
        }
    }
    std::string text = platform::as_utf8(file);
    return whole ? text : text + "\n... (the file is longer; only its beginning is shown)";
}

} // namespace

void start_up(const StartUp& console, std::string_view command_line) {
    console.state.link_title_suffix.clear();
    console.scales.full_scale_rpm = 10000;
    console.state.current_view = link::View::none;
    console.scales.lambda_scale = 1.0F;
    console.state.demo_mode = false;
    if (says_demo(command_line)) {
        console.state.demo_mode = true;
        console.ports.dialogs.say("Demo Mode has been selected, Communicatons will not be performed.");
    }
    if (!console.link_selection.read_port_file()) {
        console.ports.program.end(1);
    }
    check_port_item(console);
    set_title(console);
    show_picture(console);
    console.about_form.oemtext.set_text(about_text(required_file(console, text_file, "the text of the About window")));
    console.scales.map_span = 115;
    console.scales.map_base = 10;
    if (console.label_axes) {
        console.label_axes();
    }
    console.about_form.ECU_Rev.set_text(console_version);
    console.units.start();
}

} // namespace ecu::shell
