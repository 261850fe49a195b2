// The console: `ecu-console` or `ecu-console demo`, started in the folder that holds its files.
#include "adapters/end_signals.h"
#include "adapters/program_log.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/without_display.h"
#include "shell/start_up.h"

#include <QApplication>

#include <cstring>
#include <iostream>
#include <memory>

namespace {

namespace log = ecu::adapters::program_log;

constexpr const char* name = "ecu-console";
constexpr const char* usage = R"(Usage: ecu-console [demo] [--fresh]

Monitors and programs an engine controller. Start it in the folder that holds its files: port.cfg, OEM.JPG and OEM.TXT
must be there, lambda.txt and debug.ini may be.

  demo         no controller: made-up values, nothing is sent
  --fresh      with the looks, sizes and choices of a first start; none of this start's are remembered
  --help       this text
  --version    the version

Serial port n is the device named by the environment variable ECU_PORT_<n>; without it the first that exists of
/dev/ttyUSB<n-1>, /dev/ttyACM<n-1> and /dev/ttyS<n-1> (on Windows COM<n>).
)";

// Answered before there is a window: neither needs a display.
bool answered(int argc, char** argv) {
    if (argc != 2) {
        return false;
    }
    if (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
        std::cout << usage << "\nWhat ended it stands in " << (log::folder_for(name) / name).string() << ".log\n";
        return true;
    }
    if (std::strcmp(argv[1], "--version") == 0) {
        std::cout << name << ' ' << ecu::shell::console_version << '\n';
        return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (answered(argc, argv)) {
        return 0;
    }
    auto without_display = std::make_unique<ecu::desktop::WithoutDisplay>(name);
    QApplication application(argc, argv);
    without_display.reset();
    QApplication::setApplicationName(name);
    QApplication::setQuitOnLastWindowClosed(false); // between two views no window is up for a moment

    QStringList words = QApplication::arguments().mid(1);
    const bool fresh = words.removeAll("--fresh") > 0;
    if (words.size() > 1 || (words.size() == 1 && words[0].compare("demo", Qt::CaseInsensitive) != 0)) {
        std::cerr << "usage: ecu-console [demo] [--fresh]\n";
        return 2;
    }
    log::open(log::folder_for(name), name, ecu::shell::console_version);
    ecu::desktop::theme::apply(application);
    ecu::desktop::DesktopConsole desktop(fresh ? QString() : ecu::desktop::Remembered::file_of_user());
    desktop.program().at_end = [](int status) { log::note_end(status, "the console's own exit"); };
    const ecu::adapters::EndSignals end_signals([&desktop] {
        log::note("a signal asks for the end");
        desktop.ports().program.end(0);
    });
    desktop.console().start(words.isEmpty() ? "" : words[0].toStdString());
    const int status = QApplication::exec();
    log::note_end(status, "the last event");
    return status;
}
