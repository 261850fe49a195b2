// The console: `ecu-console` or `ecu-console demo`, started in the folder that holds its files.
#include "adapters/end_signals.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"

#include <QApplication>

#include <iostream>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("ecu-console");
    QApplication::setQuitOnLastWindowClosed(false); // between two views no window is up for a moment

    const QStringList words = QApplication::arguments().mid(1);
    if (words.size() > 1 || (words.size() == 1 && words[0].compare("demo", Qt::CaseInsensitive) != 0)) {
        std::cerr << "usage: ecu-console [demo]\n";
        return 2;
    }
    ecu::desktop::theme::apply(application);
    ecu::desktop::DesktopConsole desktop;
    const ecu::adapters::EndSignals end_signals([&desktop] { desktop.ports().program.end(0); });
    desktop.console().start(words.isEmpty() ? "" : words[0].toStdString());
    return QApplication::exec();
}
