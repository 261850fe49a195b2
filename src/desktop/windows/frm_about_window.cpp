#include "desktop/windows/windows.h"
#include "shell/frm_about.h"

#include <QLabel>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_about_window(shell::FrmAbout& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host, WindowKind::dialog);
    QWidget* picture = window->make(f.Picture1, "Picture of the installation");
    picture->setMinimumSize(240, 160);
    Panel versions = window->panel("Versions");
    versions.row("Console", f.ECU_Rev);
    versions.row("Firmware", f.FW_Rev);
    versions.row("Serial number", f.serial_num);
    auto* failed = static_cast<QLabel*>(versions.row("Last failed message", f.comm_details));
    failed->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard); // to be reported
    versions.fill();
    Panel text = window->panel("Installation");
    text.add(f.oemtext, "Installation", 1)->setMinimumSize(460, 120);
    window->set_body(window->down({window->across({picture, versions}), text}, {1, 1}));
    window->set_footer(window->buttons({&f.exit_button}));
    window->close_on_escape();
    return window;
}

} // namespace ecu::desktop
