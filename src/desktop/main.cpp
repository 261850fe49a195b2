// The console: `ecu-console` or `ecu-console demo`, started in the folder that holds its files.
#include "adapters/end_signals.h"
#include "adapters/program_log.h"
#include "desktop/theme.h"
#include "desktop/welcome.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/without_display.h"
#include "shell/start_up.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>

#include <cstring>
#include <iostream>
#include <memory>

namespace {

namespace log = ecu::adapters::program_log;

constexpr const char* name = "ecu-console";
constexpr const char* usage = R"(Usage: ecu-console [demo] [--fresh] [--welcome]

Monitors and programs an engine controller. Start it in the folder that holds its files: port.cfg, OEM.JPG and OEM.TXT
must be there, lambda.txt and debug.ini may be.

  demo         no controller: made-up values, nothing is sent
  --fresh      with the looks, sizes and choices of a first start; none of this start's are remembered
  --welcome    as from the desktop's menu: in a folder of your documents, with a page that asks what to connect to
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

struct FirstStart {
    std::string words; // of the console's own start
    int port = 0;      // to be chosen as in the Comm menu
    int status = 0;    // of a start that ends here
};

int told(const QString& fault) {
    QMessageBox(QMessageBox::Warning, "ECU System Console", fault).exec();
    return 1;
}

// False: the program ends. Else the current folder is the session's, and what was chosen is set up.
bool ask_what_to_connect_to(const QString& settings, ecu::desktop::VirtualEngine& engine, FirstStart& first) {
    using ecu::desktop::Welcome;
    const QString folder = ecu::desktop::session_folder();
    const QString fault = ecu::desktop::prepare_session_folder(folder, ecu::desktop::starter_folder());
    if (!fault.isEmpty() || !QDir::setCurrent(folder)) {
        first.status = told(fault.isEmpty() ? folder + " may not be entered." : fault);
        return false;
    }
    constexpr const char* key = "welcome/choice";
    const auto remembered = settings.isEmpty() ? std::make_unique<ecu::desktop::Remembered>()
                                               : std::make_unique<ecu::desktop::Remembered>(settings);
    bool kept = false;
    auto choice = static_cast<Welcome::Choice>(remembered->value(key).toInt(&kept));
    if (!kept) {
        ecu::adapters::QtSerialPorts serial_ports;
        const auto port = serial_ports.make_serial_port();
        QList<Welcome::Port> ports;
        for (int number = 1; number <= 10; ++number) {
            if (const std::string device = port->device_of(number); !device.empty()) {
                ports.append({number, QString::fromStdString(device)});
            }
        }
        Welcome page(ports);
        page.exec();
        if (!page.choice()) {
            return false;
        }
        choice = *page.choice();
        first.port = choice == Welcome::Choice::adapter ? page.port() : 0;
        if (!page.ask_again()) {
            remembered->set_value(key, static_cast<int>(choice));
        }
    }
    if (choice == Welcome::Choice::demo) {
        first.words = "demo";
    } else if (choice == Welcome::Choice::virtual_engine) {
        const auto device =
            engine.start(QCoreApplication::applicationDirPath() + "/ecu-controller", "controller.state");
        if (!device) {
            first.status = told(engine.fault());
            return false;
        }
        for (int number = 1; number <= 10; ++number) {
            qputenv(qPrintable(QString("ECU_PORT_%1").arg(number)), device->toLocal8Bit());
        }
    }
    return true;
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
    const bool welcome = words.removeAll("--welcome") > 0;
    if (words.size() > 1 || (words.size() == 1 && words[0].compare("demo", Qt::CaseInsensitive) != 0)) {
        std::cerr << "usage: ecu-console [demo] [--fresh] [--welcome]\n";
        return 2;
    }
    log::open(log::folder_for(name), name, ecu::shell::console_version);
    ecu::desktop::theme::apply(application);
    const QString settings = fresh ? QString() : ecu::desktop::Remembered::file_of_user();
    ecu::desktop::VirtualEngine engine;
    FirstStart first{.words = words.isEmpty() ? "" : words[0].toStdString()};
    if (welcome && !ask_what_to_connect_to(settings, engine, first)) {
        return first.status;
    }
    ecu::desktop::DesktopConsole desktop(settings);
    desktop.program().at_end = [&engine](int status) {
        engine.stop();
        log::note_end(status, "the console's own exit");
    };
    const ecu::adapters::EndSignals end_signals([&desktop] {
        log::note("a signal asks for the end");
        desktop.ports().program.end(0);
    });
    desktop.console().start(first.words);
    if (first.port > 0) {
        desktop.console().forms.frm_ecu.ports.at(static_cast<std::size_t>(first.port - 1))->click();
    }
    const int status = QApplication::exec();
    log::note_end(status, "the last event");
    return status;
}
