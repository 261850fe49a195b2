// The configuration page's budget: its opening read's 68 transactions against their time on a wire paced at 38400 baud
// (1.05), with its window shown.
#include "bench/controller_process.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>

namespace {

using ecu::console::Console;

constexpr int paced_baud = 38400;
constexpr double read_budget = 1.05;
constexpr int request_bytes = 8;
constexpr int checksum_bytes = 2;
constexpr std::size_t openings = 9;

int wire_bytes() {
    int bytes = 0;
    const auto add = [&bytes](int reply) { bytes += request_bytes + reply + checksum_bytes; };
    for (const auto& request : ecu::calibration::page_reads_before_tables) {
        add(request.reply);
    }
    for (std::size_t n = 0; n < ecu::calibration::page_read_tables.size(); ++n) {
        add(ecu::calibration::read_9.reply());
    }
    for (const auto& request : ecu::calibration::page_reads_after_tables) {
        add(request.reply);
    }
    return bytes;
}

void wait(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// While the page's values wait for the read, its tabs do.
double opening_read_seconds(Console& console) {
    QElapsedTimer clock;
    qint64 begin = 0;
    qint64 end = 0;
    QTimer watch;
    watch.setTimerType(Qt::PreciseTimer);
    QObject::connect(&watch, &QTimer::timeout, [&] {
        const bool reading = !console.forms.frm_tool.tool_tab.enabled();
        if (reading && begin == 0) {
            begin = clock.nsecsElapsed();
        } else if (!reading && begin != 0 && end == 0) {
            end = clock.nsecsElapsed();
        }
    });
    clock.start();
    watch.start(1);
    console.forms.frm_ecu.Menu_View_Injection.click();
    while (end == 0) {
        wait(50);
    }
    wait(200);
    return static_cast<double>(end - begin) * 1e-9;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    ecu::desktop::theme::apply(application);
    const ecu::bench::ControllerProcess controller(ecu::bench::controller_program(argv[0]),
                                                   {"--pace", QString::number(paced_baud)});
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    QPixmap picture(8, 8);
    picture.fill(Qt::black);
    picture.save("OEM.JPG");
    std::ofstream("OEM.TXT") << "bench";
    std::ofstream("port.cfg") << "1\r\n";

    ecu::desktop::DesktopConsole desktop;
    Console& console = desktop.console();
    console.start("");
    wait(500);
    std::array<double, openings> seconds{};
    for (double& one : seconds) {
        one = opening_read_seconds(console);
        console.forms.frm_tool.exit_button.press();
        wait(200);
    }
    std::ranges::sort(seconds);
    const double median = seconds[openings / 2];
    const double wire = wire_bytes() * 10.0 / paced_baud;
    std::printf(
        "opening read of the configuration page, median: %.1f ms, wire time %.1f ms, ratio %.3f (at most %.2f)\n",
        median * 1e3, wire * 1e3, median / wire, read_budget);
    return median / wire <= read_budget ? 0 : 1;
}
