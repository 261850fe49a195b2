// The console on a Qt desktop: the machine's ports, the console, and a window for each of its forms.
#pragma once

#include "console/console.h"
#include "desktop/adapters/qt_clock.h"
#include "desktop/adapters/qt_datagram_socket.h"
#include "desktop/adapters/qt_program.h"
#include "desktop/adapters/qt_serial_port.h"
#include "desktop/adapters/qt_timers.h"
#include "desktop/adapters/qt_waiting.h"
#include "desktop/qt_dialogs.h"
#include "desktop/qt_host.h"

namespace ecu::desktop {

// A QApplication must exist, and outlive this. The console works in the current folder.
class DesktopConsole {
public:
    DesktopConsole();
    DesktopConsole(const DesktopConsole&) = delete;
    DesktopConsole& operator=(const DesktopConsole&) = delete;

    console::Console& console() { return console_; }
    QtHost& host() { return host_; }
    const platform::Ports& ports() const { return console_.ports; }

private:
    void add_windows();

    QtClock clock_;
    QtWaiting waiting_;
    QtTimers timers_;
    QtDialogs dialogs_;
    QtProgram program_;
    QtSerialPorts serial_ports_;
    QtDatagramSockets datagram_sockets_;
    console::Console console_;
    QtHost host_; // goes before the forms that its windows show
};

} // namespace ecu::desktop
