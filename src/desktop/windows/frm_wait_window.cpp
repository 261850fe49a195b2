#include "calibration/frm_wait.h"
#include "desktop/windows/windows.h"

#include <QLabel>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_wait_window(calibration::FrmWait& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host, WindowKind::dialog);
    QWidget* bar = window->progress(f.percent_track, f.percent_bar, "Progress");
    bar->setMinimumWidth(440);
    Panel counts = window->panel("Transfer");
    counts.figure("Bytes sent", f.tx_bytes, "bytes", "0000000");
    counts.figure("Bytes received", f.rx_bytes, "bytes", "0000000");
    auto* info = static_cast<QLabel*>(window->make(f.update_info, "Message"));
    info->setWordWrap(true);
    info->setMinimumHeight(2 * info->fontMetrics().height());
    window->set_body(window->stack({bar, counts, info}));
    return window;
}

} // namespace ecu::desktop
