// The windows that look something over: the link, and a record file.
#include "adapters/qt_timers.h"
#include "desktop/windows/windows.h"
#include "flash/frm_flash_check.h"
#include "link/frm_link.h"
#include "windows/window_bench.h"

#include <QClipboard>
#include <QScrollArea>

namespace ecu::desktop {
namespace {

void expect_to_fit(FormWindow& window) {
    for (const QSize size : {QSize(1366, 728), QSize(910, 470)}) {
        window.resize(size);
        QTest::qWait(1);
        const auto* scroll = window.findChild<QScrollArea*>();
        EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width());
    }
}

TEST(CheckWindows, LinkShowsItsFiguresAdviceAndFramesAndCopiesAReport) {
    QtHost host;
    adapters::QtTimers timers;
    link::FrmLink form(timers);
    const auto window = make_frm_link_window(form, host);
    expect_complete(*window);
    form.link_name.set_text("COM1 (/dev/ttyUSB0)");
    form.link_device.set_text("There, and nobody else has it open");
    form.link_latency.set_text("16 ms");
    form.link_mean.set_text("26.4 ms");
    form.link_range.set_text("19.1 ms to 131.5 ms");
    form.link_delay.set_text("7.4 ms");
    form.trip_bar[3].set_width(250);
    form.trip_bar[4].set_width(1000);
    form.trip_count[4].set_text("2147483");
    form.link_note.set_text("Asked 100 times, each was answered.");
    form.link_advice.set_text("The adapter holds received bytes back for up to 16 ms (its latency timer). Lower it:  "
                              "echo 1 | sudo tee /sys/bus/usb-serial/devices/ttyUSB0/latency_timer  until the adapter "
                              "is plugged in again.");
    form.form.show();
    expect_to_fit(*window);
    save_picture(*window, {910, 470});
    form.link_tab.set_current(1);
    form.trace_text.set_text("12:30:05.26  #1  02 08 41 30 30 30 DB 00 > 02 41 41 00  answered  19.2 ms\n");
    window->setObjectName("frm_link_frames");
    save_picture(*window, {760, 480});
    form.to_clipboard("a report");
    EXPECT_EQ(QApplication::clipboard()->text(), "a report");
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(form.form.visible());
}

TEST(CheckWindows, RecordFileShowsItsFindings) {
    QtHost host;
    flash::FrmFlashCheck form;
    const auto window = make_frm_flash_check_window(form, host);
    expect_complete(*window);
    form.check_file_name.set_text("firmware/engine-1-03-00.s");
    form.check_result.set_text("2 findings: read them before you flash this file.");
    form.check_result.set_fore_colour(platform::light_red);
    form.check_text.set_text(
        "engine.s: 7 lines, 16 bytes of data in 1 record\nHeader: HDR\nData: 7AF0 to 7AFF, 16 bytes\n"
        "Line 2 its checksum is 60; its bytes add up to 61\nLine 4 is blank\n2 findings\n");
    form.form.show();
    expect_to_fit(*window);
    save_picture(*window, {640, 420});
}

} // namespace
} // namespace ecu::desktop
