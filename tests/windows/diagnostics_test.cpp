// The windows of the diagnostics and of the flash utility: complete, nothing clipped, and the drawings under the mouse.
#include "desktop/plot_view.h"
#include "desktop/theme.h"
#include "desktop/windows/windows.h"
#include "diagnostics/frm_diagnostics.h"
#include "flash/frm_sflash.h"
#include "windows/window_bench.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextCursor>

#include <cmath>

namespace ecu::desktop {
namespace {

using diagnostics::FrmDiagnostics;
using platform::palette;
using platform::Picture;

// A body that is higher than the screen scrolls; one that is wider would hide half of each line.
void expect_nothing_clipped(FormWindow& window, QSize size, bool may_scroll = false) {
    window.resize(size);
    QTest::qWait(1);
    const auto* scroll = window.findChild<QScrollArea*>();
    ASSERT_NE(scroll, nullptr);
    EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width()) << size.width();
    EXPECT_TRUE(may_scroll || scroll->widget()->minimumSizeHint().height() <= scroll->viewport()->height());
}

void draw_something(FrmDiagnostics& form) {
    Picture& wheel = form.wheel_speed_plot;
    wheel.set_line_width(2);
    int x = 0;
    int y = wheel.height() / 2;
    for (int i = 0; i < 120; ++i) {
        const bool gap = i % 35 == 27;
        const int next_x = wheel.width() * i / 119;
        const int next_y =
            gap ? wheel.height() / 2 : static_cast<int>(wheel.height() * (0.5 + 0.05 * std::cos(i / 2.8)));
        wheel.line(x, y, next_x, next_y, palette[gap ? 12 : 14]);
        x = next_x;
        y = next_y;
    }
    wheel.set_axes({"Tooth of the capture", {{0, "1"}, {0.5, "60"}, {1, "120"}}},
                   {"Period, % of the mean", {{0, "50"}, {0.5, "100"}, {1, "150"}}});
    wheel.set_marker(wheel.width() / 3);
    form.wheel_reading.set_text("Tooth 40: period 812, 98.4 % of the mean");
    form.wheel_summary.set_text("3 of 120 periods lie beyond 50 % of the mean: tooth 28, 63, 98");
    Picture& dyno = form.dyno_plot_screen;
    for (int run = 0; run < 2; ++run) {
        for (int i = 1; i < 40; ++i) {
            const auto at = [&](int k, double factor) {
                return std::pair(
                    dyno.width() * k / 40,
                    static_cast<int>(dyno.height() * (1 - factor * std::sin(k / 16.0) * (0.8 - 0.1 * run))));
            };
            for (const auto& [factor, colour] :
                 {std::pair{0.9, run == 0 ? 9U : 8U}, std::pair{0.02 * i, run == 0 ? 12U : 7U}}) {
                const auto [x1, y1] = at(i - 1, factor);
                const auto [x2, y2] = at(i, factor);
                dyno.set_line_width(1);
                dyno.line(x1, y1, x2, y2, palette[colour]);
                dyno.circle(x2, y2, 20 / 15.0, palette[colour]);
            }
        }
    }
    dyno.set_axes({"Engine speed, rpm", {{0, "2500"}, {0.5, "5250"}, {1, "8000"}}},
                  {"Torque and power figures", {{0, "0"}, {0.5, "1309"}, {1, "2618"}}});
    form.dyno_reading.set_text("3300 rpm: torque figure 800, power figure 503 (reference at 3600 rpm: 1100, 754)");
    form.dyno_peaks.set_text(
        "Newest run: greatest torque figure 1832 at 8000 rpm, greatest power figure 2791 at 8000 rpm.\n"
        "Reference: greatest torque figure 1900 at 5500 rpm, greatest power figure 1990 at 5500 rpm.");
    form.dyno_stat.set_text("Running");
    form.dyno_samples.set_text("65535");
    form.dyno_note.set_text("The run is finished: 1234 rows in dyno_temp.csv");
    form.dyno_save_note.set_text("Saves as dyno_001.csv: replaces the existing file, 549 kB");
    form.test_result[0].set_text("No answer: whether it fired is not known (injector channel 1, 2, 3, 4, 5, 6, 7, 8)");
}

class DiagnosticsWindow : public testing::TestWithParam<bool> {
protected:
    DiagnosticsWindow() {
        if (GetParam()) {
            theme::use(theme::Theme::dark);
        }
    }
    ~DiagnosticsWindow() override { QApplication::setPalette(QPalette()); }
    std::string suffix() const { return GetParam() ? "_dark" : ""; }
    QtHost host_;
};
INSTANTIATE_TEST_SUITE_P(LightAndDark, DiagnosticsWindow, testing::Bool());

TEST_P(DiagnosticsWindow, ShowsEveryTabWholeAtEachSizeOfScreen) {
    FrmDiagnostics form;
    for (Picture* picture : {&form.wheel_speed_plot, &form.dyno_plot_screen}) {
        picture->pointed_at = [](int, int) {};
    }
    const auto window = make_frm_diagnostics_window(form, host_);
    expect_complete(*window);
    form.show_demo_mode.set_visible(true);
    form.form.show();
    QTest::qWait(1);
    draw_something(form);
    for (int page = 0; page < 4; ++page) {
        form.diags_tab.set_current(page);
        expect_nothing_clipped(*window, {1366, 700});
        expect_nothing_clipped(*window, {910, 470}, true); // the same screen at a scale of 150 %
        window->setObjectName(QString::fromStdString("frm_diagnostics_small_" + std::to_string(page) + suffix()));
        save_picture(*window);
        window->resize(1000, 680);
        QTest::qWait(1);
        for (Picture* picture : {&form.wheel_speed_plot, &form.dyno_plot_screen}) {
            picture->clear();
        }
        draw_something(form);
        window->setObjectName(QString::fromStdString("frm_diagnostics_" + std::to_string(page) + suffix()));
        save_picture(*window);
    }
}

TEST_P(DiagnosticsWindow, OfTheFlashUtilityIsWholeAndItsTerminalCanBeCopiedWhileItGrows) {
    flash::FrmSflash form;
    const auto window = make_sflash_window(form, host_);
    expect_complete(*window);
    form.flash_file.set_text("a rather long name of a firmware for an engine controller.s19, 206 kB, 2642 lines");
    form.flash_note.set_text("Line 1234 of 2642, about 1 min 43 s left");
    form.flash_port.set_text("COM3 (/dev/ttyUSB2) at 19200 baud");
    form.flash_bar.set_width(467);
    form.lines_sent.set_text("1233");
    std::string text = "Flashing controller firmware.\nPlease stand by.\n";
    for (int line = 0; line < 30; ++line) {
        text += "........................................\n";
    }
    form.form.show();
    form.terminal.set_text(text);
    expect_nothing_clipped(*window, {910, 470});
    window->setObjectName(QString::fromStdString("sflash" + suffix()));
    save_picture(*window, {760, 480});
    auto& area = named<QPlainTextEdit>(*window, "terminal");
    EXPECT_TRUE(area.isReadOnly());
    QTextCursor cursor(area.document());
    cursor.select(QTextCursor::LineUnderCursor);
    area.setTextCursor(cursor);
    form.terminal.set_text(text + "<b>no markup</b>");
    EXPECT_EQ(area.textCursor().selectedText(), "Flashing controller firmware.");
    EXPECT_EQ(area.toPlainText().toStdString(), text + "<b>no markup</b>");
    form.terminal.set_text("anew");
    EXPECT_EQ(area.toPlainText(), "anew");
}

TEST(PlotView, TellsOfThePlaceUnderTheMouseMovesByKeysAndSavesDrawingAndAxes) {
    QtHost host;
    FrmDiagnostics form;
    QPoint pointed(-1, -1);
    int key = 0;
    form.wheel_speed_plot.pointed_at = [&](int x, int y) { pointed = {x, y}; };
    form.wheel_speed_plot.key_down = [&](platform::KeyPress& press) { key = press.code; };
    const auto window = make_frm_diagnostics_window(form, host);
    form.diags_tab.set_current(2);
    form.form.show();
    QTest::qWait(1);
    auto& view = named<PlotView>(*window, "wheel_speed_plot");
    auto* drawing = view.findChild<QWidget*>();
    ASSERT_NE(drawing, nullptr);
    EXPECT_EQ(QSize(form.wheel_speed_plot.width(), form.wheel_speed_plot.height()), drawing->size());
    const int before = form.wheel_speed_plot.width();
    form.wheel_speed_plot.set_axes({}, {"", {{0, "100000000"}}}); // wider numbers leave the drawing less room
    EXPECT_LT(form.wheel_speed_plot.width(), before);
    QMouseEvent move(QEvent::MouseMove, QPointF(17, 9), drawing->mapToGlobal(QPointF(17, 9)), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(drawing, &move);
    EXPECT_EQ(pointed, QPoint(17, 9));
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(key, platform::key::right);
    QTemporaryDir folder;
    const QString path = folder.filePath("wheel.png");
    EXPECT_TRUE(form.wheel_speed_plot.save_as_image(path.toStdString()));
    EXPECT_EQ(QImage(path).size(), view.size());
    EXPECT_FALSE(form.wheel_speed_plot.save_as_image(folder.filePath("none/wheel.png").toStdString()));
}

} // namespace
} // namespace ecu::desktop
