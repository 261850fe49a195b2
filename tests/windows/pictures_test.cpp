#include "adapters/qt_timers.h"
#include "calibration/frm_wait.h"
#include "desktop/windows/windows.h"
#include "link/frm_dialog.h"
#include "link/frm_retries.h"
#include "shell/frm_about.h"
#include "shell/frm_ecu.h"
#include "views/frm_dashboard.h"
#include "views/frm_mon.h"
#include "windows/window_bench.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>

namespace ecu::desktop {
namespace {

void expect_nothing_clipped(FormWindow& window, QSize size) {
    window.resize(size);
    QTest::qWait(1);
    const auto* scroll = window.findChild<QScrollArea*>();
    ASSERT_NE(scroll, nullptr);
    EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width()) << size.width();
    EXPECT_LE(scroll->widget()->minimumSizeHint().height(), scroll->viewport()->height()) << size.height();
}

TEST(Windows, MonitorShowsEveryFigureAtEachSizeOfScreen) {
    QtHost host;
    views::FrmMon form;
    const auto window = make_frm_mon_window(form, host);
    expect_complete(*window);
    const std::array<const char*, 20> data{"12345", ".987",    "-125",   "100.0", "250.0", "12.345", "1.023",
                                           "1.100", "0.250",   "1.250",  "13.85", "38",    "4.998",  "",
                                           "101.3", "CLOSING", "ERR255", "255",   "9500",  "-47.75A"};
    for (std::size_t i = 0; i < data.size(); ++i) {
        form.ECU_Data[i].set_text(data[i]);
    }
    form.ego_lambda_setpoint.set_text("1.000");
    for (std::size_t i = 0; i < 8; ++i) {
        form.inj_pw[i].set_text("12.345");
        form.inj_duty[i].set_text("88");
        form.inj_duty[i].set_fore_colour(i == 3 ? platform::light_red : platform::black);
        form.ign_dwell[i].set_text("3.250");
        form.ign_duty[i].set_text("45");
    }
    for (auto* label : {&form.num_trigs, &form.num_cams, &form.cpu_secs, &form.can_rx_frames}) {
        label->set_text("65535");
    }
    for (auto* label : {&form.aux_stat, &form.map_sel_stat, &form.trig_b_stat}) {
        label->set_text("HIGH");
    }
    form.rev_limit_stat.set_text("RPM1");
    form.flat_shift_stat.set_text("FLAT+");
    form.EGT.set_text("1250.5");
    form.speed_MPH.set_text("155.25");
    form.rpm_mph_ratio.set_text("1234.56");
    form.gear_number.set_text("10");
    form.tx_bytes.set_text("2147483647");
    form.rx_bytes.set_text("2147483647");
    form.group_delay.set_text("9999.9");
    form.map_num.set_text("1");
    form.wheel_idx_num.set_text("1");
    form.cam_idx_num.set_text("1");
    form.err_flgs.set_text("255");
    form.show_demo_mode.set_visible(true);
    form.form.show();
    expect_nothing_clipped(*window, {1280, 760});
    expect_nothing_clipped(*window, {1280 * 2 / 3, 760 * 2 / 3}); // the same screen at a scale of 150 %
    form.tx_bytes.set_text("-2147483648");                        // wider than any before, with the window up
    expect_nothing_clipped(*window, window->size());
    window->setObjectName("frm_mon_small");
    save_picture(*window);
    window->setObjectName("frm_mon");
    save_picture(*window, {1280, 760});
    form.form.hide();
    form.speed_MPH.set_text("-123456789012"); // wider still, with the window away: it comes back fitted
    form.form.show();
    expect_nothing_clipped(*window, window->size());
}

TEST(Windows, MonitorNamesEachFigureByRowAndColumnAndItsUnitsByTheirText) {
    QtHost host;
    views::FrmMon form;
    const auto window = make_frm_mon_window(form, host);
    const auto name = [&](const char* label) { return named<QLabel>(*window, label).accessibleName().toStdString(); };
    EXPECT_EQ(name("ECU_Data(0)"), "Engine Speed");
    EXPECT_EQ(name("inj_pw(0)"), "Chan1 Inj ms");
    EXPECT_EQ(name("ign_dwell(4)"), "Chan5 Dwell");
    EXPECT_EQ(name("inj_duty(7)"), "Chan8 Inj ms Duty%"); // there are two columns of this title
    EXPECT_EQ(name("ign_duty(7)"), "Chan8 Dwell Duty%");
    form.unit_of_lambda.set_text("%O2");
    EXPECT_EQ(name("Label1(8)"), "%O2");
    form.ECU_Data[1].set_text("20.9");
    EXPECT_EQ(name("ECU_Data(1)"), "A/F Ratio");
}

TEST(Windows, MainWindowHasItsButtonsMenusAndLinkState) {
    QtHost host;
    shell::FrmEcu form;
    const auto window = make_frm_ecu_window(form, host);
    expect_complete(*window);
    form.form.set_caption("ECU System Console ->COM3");
    form.form.show();
    save_picture(*window);
}

TEST(Windows, SmallWindowsAreComplete) {
    QtHost host;
    adapters::QtTimers timers;
    link::FrmDialog dialog;
    link::FrmRetries retries(timers);
    shell::FrmAbout about;
    calibration::FrmWait wait;
    const auto dialog_window = make_frm_dialog_window(dialog, host);
    const auto retries_window = make_frm_retries_window(retries, host);
    const auto about_window = make_frm_about_window(about, host);
    const auto wait_window = make_frm_wait_window(wait, host);

    dialog.dialog_caption.set_text("Communications has failed, Run Demo mode?");
    for (std::size_t i = 0; i < 4; ++i) {
        dialog.dialog_button[i].set_text(std::array{"Try Again", "Demo", "Abort", "Terminate"}[i]);
    }
    retries.retries.set_text("7");
    about.ECU_Rev.set_text("V1.02.00 02/12/10");
    about.FW_Rev.set_text("V1.02.00");
    about.serial_num.set_text("123456");
    about.comm_details.set_text("Buffer = 02 08 41 30 30 30 DB 00    Cnt = 0");
    about.oemtext.set_text("Installed by the workshop.\nCall us when the engine does not.");
    wait.tx_bytes.set_text("15744");
    wait.rx_bytes.set_text("15260");
    wait.percent_bar.set_width(wait.percent_track.width() / 3);
    for (FormWindow* window : {dialog_window.get(), retries_window.get(), about_window.get(), wait_window.get()}) {
        expect_complete(*window);
        window->form().show();
        QTest::qWait(1);
        wait.update_info.set_text("Unknown Configuration Parameter found: XYZ=1"); // activation cleared it
        save_picture(*window);
    }
    QTest::keyClick(&named<QWidget>(*about_window, "oemtext"), Qt::Key_Escape);
    EXPECT_FALSE(about.form.visible());
    QTest::keyClick(dialog_window.get(), Qt::Key_Escape);
    EXPECT_TRUE(dialog.form.visible()) << "the question wants an answer";
}

TEST(Windows, FailureDialogShowsTheWholeOfALongQuestionAndReason) {
    QtHost host;
    link::FrmDialog dialog;
    const auto window = make_frm_dialog_window(dialog, host);
    window->setObjectName("frm_Dialog_long");
    const int short_height = window->sizeHint().height();
    QTimer::singleShot(0, window.get(), [&] {
        for (const char* text : {"dialog_caption", "dialog_details"}) {
            const auto& label = named<QLabel>(*window, text);
            EXPECT_GT(label.heightForWidth(label.width()), label.fontMetrics().height()) << "too short to be a test";
            EXPECT_GE(label.height(), label.heightForWidth(label.width())) << text;
        }
        EXPECT_GT(window->height(), short_height);
        EXPECT_TRUE(named<QPushButton>(*window, "dialog_button(1)").isVisible());
        EXPECT_FALSE(named<QPushButton>(*window, "dialog_button(2)").isVisible());
        save_picture(*window);
        QTest::keyClick(window.get(), Qt::Key_Return);
    });
    EXPECT_EQ(dialog.ask("Communications has failed, Remote server IS responding, ECU hardware is NOT.",
                         {"Exit", "Demo", "", ""},
                         "Port 3 is /dev/serial/by-id/usb-Controller_Cable_A900XYZ-if00-port0: permission denied. "
                         "Another program may hold it."),
              1); // what Enter gives goes on; the other answer ends the program
}

TEST(Windows, FailureDialogOpensWithItsFirstAnswerFocusedAndNothingMalformed) {
    QtHost host;
    link::FrmDialog dialog;
    const auto window = make_frm_dialog_window(dialog, host);
    EXPECT_GE(named<QLabel>(*window, "dialog_details").minimumHeight(), 0);
    for (int opening = 0; opening < 2; ++opening) {
        QTimer::singleShot(0, window.get(), [&] {
            EXPECT_EQ(window->focusWidget(), &named<QPushButton>(*window, "dialog_button(0)"));
            named<QPushButton>(*window, "dialog_button(2)").setFocus();
            QTest::keyClick(window->focusWidget(), Qt::Key_Return);
        });
        EXPECT_EQ(dialog.ask("Communications has failed", {"Try Again", "Demo", "Abort", "Terminate"}), 2);
    }
}

TEST(Windows, DashboardOpensWithNoTrimInTheWayOfTheKeyboard) {
    QtHost host;
    views::FrmDashboard form;
    const auto window = make_frm_dashboard_window(form, host);
    form.form.show();
    form.ecu_pgm[0].confirm("14.000");
    QTest::keyClicks(window->focusWidget(), "12");
    EXPECT_EQ(form.ecu_pgm[0].text(), "14.000");
    EXPECT_EQ(window->focusWidget(), &named<QPushButton>(*window, "Command1"));
}

TEST(Windows, MonitorHasItsSizeOfFiguresFromTheFirstFrame) {
    QtHost host;
    views::FrmMon form;
    const auto window = make_frm_mon_window(form, host);
    form.form.show();
    const auto& figure = named<QLabel>(*window, "ECU_Data(0)");
    const double at_once = figure.font().pointSizeF();
    EXPECT_GT(at_once, 8);
    window->resize(window->size() + QSize(1, 1));
    QTest::qWait(1);
    EXPECT_NEAR(figure.font().pointSizeF(), at_once, 0.5);
}

} // namespace
} // namespace ecu::desktop
