// The server: who is served and what passes on the left, what was refused on the right, the warning below.
#include "desktop/windows/windows.h"
#include "link/frm_server.h"

#include <QLabel>

namespace ecu::desktop {

namespace {

constexpr const char* widest_address = "255.255.255.255";
constexpr const char* widest_count = "2147483647";

// A text of any length, broken into lines.
QLabel* lines(QWidget* label) {
    auto* text = static_cast<QLabel*>(label);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return text;
}

} // namespace

std::unique_ptr<FormWindow> make_frm_server_window(link::FrmServer& f, QtHost& host) {
    auto window = std::make_unique<FormWindow>(f.form, host);
    Panel client = window->panel("Serving");
    client.figure("Client IP address", f.Client_IP, "", widest_address);
    client.figure("Comm TX bytes", f.num_comm_bytes, "", widest_count);
    client.figure("Comm RX bytes", f.num_sock_bytes, "", widest_count);
    lines(client.row("This machine's address", f.server_address));
    lines(client.row("Controller", f.server_serial));
    lines(client.row("Who may ask", f.server_allowed));
    client.fill();

    Panel refused = window->panel("Refused, and not answered");
    refused.figure("Datagrams", f.num_refused, "", widest_count);
    constexpr std::array<const char*, link::refusal_kinds> reasons{
        "Neither a greeting nor a whole frame",
        "From a server's port",
        "From an address that may not ask",
        "From another console meanwhile",
        "More waiting than can wait",
        "Too old to be written",
        "The first one after the serial port was opened anew"};
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        static_cast<QLabel*>(refused.row(reasons[i], f.refused[i]))->setAlignment(Qt::AlignRight);
    }
    refused.fill();

    Panel warning = window->panel("Open to the network");
    lines(warning.add(f.server_warning, "Warning"));
    window->set_body(window->across({client, refused}));
    window->set_footer(warning); // never scrolled away
    window->set_footer(window->buttons({&f.server_cancel}));
    window->focus_first([&f]() -> platform::Control& { return f.server_cancel; });
    window->resize(820, 400);
    return window;
}

} // namespace ecu::desktop
