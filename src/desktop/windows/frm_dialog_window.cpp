#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "link/frm_dialog.h"

#include <QLabel>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_dialog_window(link::FrmDialog& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host, WindowKind::dialog);
    auto* question = static_cast<QLabel*>(window->make(f.dialog_caption, "Question"));
    question->setWordWrap(true);
    question->setMinimumWidth(380);
    auto* details = static_cast<QLabel*>(window->make(f.dialog_details, "Reason"));
    details->setWordWrap(true);
    QPalette muted;
    muted.setColor(QPalette::WindowText, theme::muted_text(QPalette()));
    details->setPalette(muted);
    window->set_body(window->stack({question, details}));
    window->set_footer(
        window->buttons({&f.dialog_button[0], &f.dialog_button[1], &f.dialog_button[2], &f.dialog_button[3]}));
    return window;
}

} // namespace ecu::desktop
