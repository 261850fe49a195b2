// What happens between the program's start and its main window: the command line, the files of the working directory
// and the first values, in an order that later steps rest on.
#pragma once

#include "link/link_selection.h"
#include "shell/frm_about.h"
#include "shell/frm_ecu.h"
#include "shell/units.h"

#include <functional>
#include <string_view>

namespace ecu::shell {

inline constexpr std::string_view console_version = "V1.02.00 02/12/10";

struct StartUp {
    const platform::Ports& ports;
    link::SharedState& state;
    calibration::Scales& scales;
    link::LinkSelection& link_selection;
    Units& units;
    FrmEcu& main_form;
    FrmAbout& about_form;
    const platform::FormRegistry& forms;
    // Writes the axis labels of the correction tables from the spans; may be empty.
    std::function<void()> label_axes = {};
};

// `command_line` is "demo" in any case of letters, or empty. A missing file is told in a message box and ends the
// program with status 1; a picture that is none is told, and the console goes on without.
void start_up(const StartUp& console, std::string_view command_line);

} // namespace ecu::shell
