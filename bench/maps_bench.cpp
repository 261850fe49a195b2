// The map windows' budgets: shading and repainting all four maps (10 ms), drawing the surface anew (5 ms), and the
// opening reads of the basic map, the additional map and the outputs' window against their time on a wire paced at
// 38400 baud (1.05).
#include "bench/controller_process.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"
#include "editing/editing_rules.h"
#include "platform/display_mask.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <optional>

namespace {

using ecu::console::Console;

constexpr int paced_baud = 38400;
constexpr double read_budget = 1.05;
constexpr int map_bytes = 32 * (8 + 39);
// Spans, modes, temperatures, switches, eight maps in three blocks each, and the servos' parameters.
constexpr int additional_bytes = 14 * (8 + 16) + 3 * (8 + 34);
constexpr int output_bytes = (8 + 23) + (8 + 9) + (8 + 9) + (8 + 13) + 8 * 3 * (8 + 34) + (8 + 45);
constexpr std::size_t openings = 9;

void wait(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

QWidget* shown(const char* window, const char* widget) {
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName() == window) {
            return top->findChild<QWidget*>(widget);
        }
    }
    std::exit(2);
}

// A window that reads at its opening, and the label that tells of it.
struct Editor {
    const char* name;
    ecu::platform::MenuItem& opens;
    ecu::platform::Button& closes;
    const ecu::platform::Label& status;
    int wire_bytes;
};

// From the first read's announcement to the end of the last.
double opening_read_seconds(const Editor& editor) {
    QElapsedTimer clock;
    std::optional<qint64> begin;
    std::optional<qint64> end;
    const ecu::platform::Label& status = editor.status;
    QTimer watch;
    watch.setTimerType(Qt::PreciseTimer);
    QObject::connect(&watch, &QTimer::timeout, [&] {
        const bool reading = status.text().starts_with("Reading");
        if (reading && !begin) {
            begin = clock.nsecsElapsed();
        } else if (!reading && begin && !end) {
            end = clock.nsecsElapsed();
        }
    });
    clock.start();
    watch.start(1);
    editor.opens.click();
    while (!end) {
        wait(50);
    }
    wait(200);
    return static_cast<double>(*end - *begin) * 1e-9;
}

// The median of its openings over the wire's time.
double opening_read_ratio(const Editor& editor) {
    std::array<double, openings> seconds{};
    for (double& one : seconds) {
        one = opening_read_seconds(editor);
        editor.closes.press();
        wait(100);
    }
    std::ranges::sort(seconds);
    const double wire = editor.wire_bytes * 10.0 / paced_baud;
    const double ratio = seconds[openings / 2] / wire;
    std::printf("opening read of the %s, median: %.1f ms, wire time %.1f ms, ratio %.3f (at most %.2f)\n", editor.name,
                seconds[openings / 2] * 1e3, wire * 1e3, ratio, read_budget);
    return ratio;
}

// Every cell's shade changes from one pass to the next.
void shade_and_repaint(benchmark::State& state, Console& console) {
    auto& form = console.forms.frm_3d;
    bool high = false;
    for (auto _ : state) {
        high = !high;
        for (std::size_t n = 0; n < form.grids.size(); ++n) {
            for (std::size_t other = 0; other < form.grids.size(); ++other) {
                form.grids[other]->set_visible(other == n);
            }
            const float top = high ? 1000.0F : 0.001F;
            switch (n) {
            case 0:
                console.basic_mapping.shade_fuel_map(0, top);
                break;
            case 1:
                console.basic_mapping.shade_ign_map(0, top);
                break;
            case 2:
                console.basic_mapping.shade_tps_map(0, top);
                break;
            default:
                console.basic_mapping.shade_tps_mix(0, top);
            }
            shown("frm_3d", form.grids[n]->name().c_str())->repaint();
        }
    }
}

void redraw_surface(benchmark::State& state, Console& console) {
    QWidget* picture = shown("frm_3d_graph", "Picture1");
    int view = 0;
    for (auto _ : state) {
        view = (view + 1) % 100;
        console.forms.frm_3d_graph.HScroll1.set_value(view);
        picture->repaint();
    }
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    benchmark::Initialize(&argc, argv);
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
    ecu::console::Forms& forms = console.forms;
    const double outputs = opening_read_ratio({.name = "outputs' window",
                                               .opens = forms.frm_ecu.menu_View_supp,
                                               .closes = forms.frm_sup.exit_button,
                                               .status = forms.frm_sup.map_status,
                                               .wire_bytes = output_bytes});
    const double additional = opening_read_ratio({.name = "additional map window",
                                                  .opens = forms.frm_ecu.menu_view_temperature,
                                                  .closes = forms.frm_2d.exit_button,
                                                  .status = forms.frm_2d.map_status,
                                                  .wire_bytes = additional_bytes});
    const double maps = opening_read_ratio({.name = "map window",
                                            .opens = forms.frm_ecu.menu_View_Mapping,
                                            .closes = forms.frm_3d.exit_button,
                                            .status = forms.frm_3d.map_status,
                                            .wire_bytes = map_bytes});
    forms.frm_ecu.menu_View_Mapping.click();
    wait(1000);

    console.state.polling_paused = true;
    auto& form = console.forms.frm_3d;
    for (ecu::platform::Grid* grid : form.grids) {
        for (int i = 0; i < 256; ++i) {
            ecu::maps::write_at(*grid, i, ecu::platform::masked(0.5 + i % 37 * 0.03, "#.000"));
        }
    }
    form.show_this_graph.press();
    wait(200);
    benchmark::RegisterBenchmark("shade_and_repaint_four_maps", [&](benchmark::State& state) {
        shade_and_repaint(state, console);
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("redraw_surface", [&](benchmark::State& state) {
        redraw_surface(state, console);
    })->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    return std::max({outputs, additional, maps}) <= read_budget ? 0 : 1;
}
