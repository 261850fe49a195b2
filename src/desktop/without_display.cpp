#include "desktop/without_display.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace ecu::desktop {

namespace {

const char* program_name = "";

void say_without_display(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtFatalMsg) {
        return; // the reasons in Qt's own words, of no use to a tuner
    }
    const QByteArray x11 = qgetenv("DISPLAY");
    const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty()) {
        std::fprintf(stderr, "%s: there is no platform '%s' to show windows on (QT_QPA_PLATFORM): %s\n", program_name,
                     platform.constData(), message.section('\n', 0, 0).toLocal8Bit().constData());
    } else if (x11.isEmpty() && wayland.isEmpty()) {
        std::fprintf(stderr,
                     "%s: there is no display here; start it in a desktop session, or use ecu-cli, which needs none\n",
                     program_name);
    } else {
        std::fprintf(stderr,
                     "%s: the display %s cannot be reached; start it in a terminal of the desktop session (over ssh: "
                     "ssh -X), or use ecu-cli, which needs none\n",
                     program_name, (x11.isEmpty() ? wayland : x11).constData());
    }
    std::_Exit(1);
}

} // namespace

WithoutDisplay::WithoutDisplay(const char* program) {
    program_name = program;
    qInstallMessageHandler(say_without_display);
}

WithoutDisplay::~WithoutDisplay() { qInstallMessageHandler(nullptr); }

} // namespace ecu::desktop
