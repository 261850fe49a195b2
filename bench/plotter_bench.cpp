// The row rate of the log at the fastest interval, with the chart drawing all 21 channels and without, over a
// pseudo-terminal paced at 38400 baud. The two take turns in short spells, so that a change of the machine's load
// meets both alike. Prints both rates and their ratio, and fails below 0.98.
//
//     plotter_bench [spells] [seconds per spell]
#include "bench/controller_process.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr double least_ratio = 0.98;
constexpr std::size_t fastest = 7;

void run_for(double seconds) {
    QElapsedTimer timer;
    timer.start();
    while (static_cast<double>(timer.elapsed()) < seconds * 1000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    }
}

void write(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
        std::exit(2);
    }
}

} // namespace

int main(int argc, char** argv) {
    const int spells = argc > 1 ? std::atoi(argv[1]) : 6;
    const double seconds = argc > 2 ? std::atof(argv[2]) : 5;
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    const ecu::bench::ControllerProcess controller(ecu::bench::controller_program(argv[0]), {"--pace", "38400"});
    QApplication::setQuitOnLastWindowClosed(false);
    ecu::desktop::theme::apply(application);
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    QPixmap picture(8, 8);
    picture.fill(Qt::black);
    picture.save(folder.filePath("OEM.JPG"));
    write(folder.filePath("OEM.TXT"), "bench");
    write(folder.filePath("port.cfg"), "1\r\n");

    ecu::desktop::DesktopConsole desktop;
    ecu::console::Console& console = desktop.console();
    console.start("");
    run_for(0.5);
    ecu::logging::FrmPlotter& form = console.forms.frm_plotter;
    console.forms.frm_ecu.menu_View_Plotter.click();
    run_for(1.5);
    for (ecu::platform::CheckBox& box : form.Check3d1) {
        box.set_checked(true);
    }
    form.menu_log_int[fastest].click();
    form.start_log_button.press();
    run_for(2);

    std::array<double, 2> rows{};
    QElapsedTimer clock;
    std::array<double, 2> spent{};
    for (int spell = 0; spell < 2 * spells; ++spell) {
        const bool drawing = spell % 2 == 0;
        form.skip_graphics.set_checked(!drawing);
        run_for(0.2);
        const std::int32_t before = console.plotter.log_sample_count();
        clock.start();
        run_for(seconds);
        spent[drawing] += static_cast<double>(clock.nsecsElapsed()) * 1e-9;
        rows[drawing] += console.plotter.log_sample_count() - before;
    }
    form.stop_log_button.press();

    const double with = rows[true] / spent[true];
    const double without = rows[false] / spent[false];
    std::printf("rows a second: drawing %.2f, not drawing %.2f, ratio %.4f (at least %.2f)\n", with, without,
                with / without, least_ratio);
    return without > 0 && with / without >= least_ratio ? 0 : 1;
}
