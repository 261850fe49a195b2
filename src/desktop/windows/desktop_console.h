// The console on a Qt desktop: the machine's ports, the console, and a window for each of its forms.
#pragma once

#include "adapters/qt_clock.h"
#include "adapters/qt_datagram_socket.h"
#include "adapters/qt_program.h"
#include "adapters/qt_serial_port.h"
#include "adapters/qt_timers.h"
#include "adapters/qt_waiting.h"
#include "console/console.h"
#include "desktop/appearance.h"
#include "desktop/finder.h"
#include "desktop/guide.h"
#include "desktop/qt_dialogs.h"
#include "desktop/qt_host.h"

namespace ecu::desktop {

// A QApplication must exist, and outlive this. The console works in the current folder.
class DesktopConsole {
public:
    // `settings` is the file of what is remembered; none: nothing is.
    explicit DesktopConsole(const QString& settings = {});
    ~DesktopConsole();
    DesktopConsole(const DesktopConsole&) = delete;
    DesktopConsole& operator=(const DesktopConsole&) = delete;

    console::Console& console() { return console_; }
    QtHost& host() { return host_; }
    Finder& finder() { return finder_; }
    Guide& guide() { return guide_; }
    adapters::QtProgram& program() { return program_; }
    const platform::Ports& ports() const { return console_.ports; }

private:
    void add_windows();
    void recall_chart();
    void remember_chart();

    adapters::QtClock clock_;
    adapters::QtWaiting waiting_;
    adapters::QtTimers timers_;
    QtDialogs dialogs_;
    adapters::QtProgram program_;
    adapters::QtSerialPorts serial_ports_;
    adapters::QtDatagramSockets datagram_sockets_;
    console::Console console_;
    std::unique_ptr<Remembered> remembered_;
    Appearance appearance_;
    QtHost host_; // goes before the forms that its windows show
    Finder finder_;
    Guide guide_;
};

} // namespace ecu::desktop
