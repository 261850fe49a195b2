// The console as a process: time from its start to the shown main window, memory, and processor use while the
// monitor polls the paced wire. Run it off screen or on a display.
#include "bench/controller_process.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace {

// Seconds since this process was started, from the system's own clock ticks.
double process_age() {
    std::ifstream stat("/proc/self/stat");
    std::string text;
    std::getline(stat, text);
    std::istringstream fields(text.substr(text.rfind(')') + 2));
    std::string field;
    for (int i = 3; i <= 22; ++i) {
        fields >> field;
    }
    std::ifstream uptime("/proc/uptime");
    double up = 0;
    uptime >> up;
    return up - std::stod(field) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double resident_megabytes() {
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / 1e6;
}

double processor_seconds() {
    rusage use{};
    getrusage(RUSAGE_SELF, &use);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
    };
    return seconds(use.ru_utime) + seconds(use.ru_stime);
}

} // namespace

int main(int argc, char** argv) {
    const std::string program = ecu::bench::controller_program(argv[0]);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    std::ofstream("port.cfg") << "1\n";
    QPixmap picture(8, 8);
    picture.fill(Qt::black);
    picture.save("OEM.JPG");
    std::ofstream("OEM.TXT") << "bench\n";
    ecu::desktop::theme::apply(application);
    ecu::desktop::DesktopConsole desktop;
    desktop.console().start("");
    QApplication::processEvents();
    std::printf("start to shown main window           %.2f s  (at most 0.4)\n", process_age());

    const ecu::bench::ControllerProcess controller(program, {"--pace", "38400", "--engine", "cycle"});
    desktop.console().forms.frm_ecu.monitor_button.press();
    desktop.ports().wait_seconds(2);
    const double before = processor_seconds();
    const auto start = std::chrono::steady_clock::now();
    desktop.ports().wait_seconds(10);
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("processor use with the monitor open  %.1f %% of a core (at most 5)\n",
                (processor_seconds() - before) / wall * 100);
    std::printf("resident memory                      %.0f MB (at most 100)\n", resident_megabytes());
    std::printf("messages a second                    %.1f\n",
                static_cast<double>(desktop.console().state.tx_byte_count[0]) / 8 / 12);
    std::fflush(stdout);
    std::_Exit(0);
}
