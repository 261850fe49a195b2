#include "desktop/windows/windows.h"
#include "link/frm_retries.h"

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_retries_window(link::FrmRetries& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host, WindowKind::dialog);
    window->setAttribute(Qt::WA_ShowWithoutActivating); // a notice; the keyboard stays where it is
    Panel notice = window->panel();
    notice.figure(f.retries_label, f.retries, "", "10");
    window->set_body(notice);
    return window;
}

} // namespace ecu::desktop
