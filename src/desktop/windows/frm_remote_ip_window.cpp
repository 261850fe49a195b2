// The question for the server's address: four boxes in a line with points between them.
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "link/frm_remote_ip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

namespace ecu::desktop {

std::unique_ptr<FormWindow> make_frm_remote_ip_window(link::FrmRemoteIp& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host, WindowKind::dialog);
    auto* line = new QWidget;
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::gap);
    for (platform::TextBox& box : f.client_ip_address) {
        if (box.index() > 0) {
            layout->addWidget(new QLabel("."));
        }
        const std::string name = "Remote IP address, field " + std::to_string(box.index() + 1);
        auto* edit = static_cast<QLineEdit*>(window->make(box, std::string_view(name)));
        edit->setAlignment(Qt::AlignHCenter);
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 12);
        layout->addWidget(edit);
    }
    layout->addStretch(1);
    Panel panel = window->panel("Remote IP address");
    panel.add(line);
    panel.note("The address that the other console shows in its Remote Server window.");
    window->set_body(panel);
    window->set_footer(window->buttons({&f.remote_ip_done, &f.remote_ip_cancel}));
    window->close_on_escape();
    auto* first = static_cast<QLineEdit*>(window->binding().widget_of(f.client_ip_address[0]));
    window->focus_first([&f, first]() -> platform::Control& {
        first->selectAll(); // what is typed replaces the last address
        return f.client_ip_address[0];
    });
    return window;
}

} // namespace ecu::desktop
