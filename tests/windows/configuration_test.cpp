#include "configuration/frm_tool.h"
#include "desktop/side_tabs.h"
#include "desktop/windows/windows.h"
#include "windows/window_bench.h"

#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTabBar>

namespace ecu::desktop {
namespace {

struct ConfigurationWindow : testing::Test {
    QtHost host;
    configuration::FrmTool form;
    std::unique_ptr<FormWindow> window = make_frm_tool_window(form, host);
    SideTabs& tabs = named<SideTabs>(*window, "tool_tab");

    ConfigurationWindow() {
        form.form.show();
        QTest::qWait(1);
    }
    void fill() {
        int value = 0;
        for (platform::TextBox& box : form.boxes) {
            box.confirm(std::to_string(value++ % 97 * 7) + ".25");
        }
        form.boxes(calibration::parameter("STUT"), 0).confirm("85");
        form.boxes(calibration::parameter("STUT"), 5).confirm("255");
        form.map_type[2].set_checked(true);
        form.EGO_type[1].set_checked(true);
        form.aux_in_used_as[1].set_checked(true);
        for (std::size_t n = 0; n < 6; ++n) {
            form.ph_used[n].set_checked(true);
            form.inj_ph[n][n].set_checked(true);
            form.ign_ph[n][n % 3].set_checked(true);
        }
        form.inj_ph[2][4].set_fore_colour(platform::pending);
        form.EGO_type[1].set_fore_colour(platform::pending);
        form.box("RLI_HRD1").set_back_colour(platform::pending);
        form.tool_tab.set_pending_on(0, 1);
        form.tool_tab.set_pending_on(4, 2);
        form.tool_status.set_text("4 values pending");
        form.stutter_text.set_text("11100001110000111000011100001110000");
    }
    void pictures(const char* suffix, QSize size) {
        for (int page = 0; page < 13; ++page) {
            form.tool_tab.set_current(page);
            window->setObjectName(QString("frm_tool_%1_%2").arg(page).arg(suffix));
            save_picture(*window, size);
        }
        window->setObjectName("frm_tool");
    }
};

TEST_F(ConfigurationWindow, EveryControlStandsInItAndEveryPageScrollsRatherThanClips) {
    expect_complete(*window);
    fill();
    for (const platform::Control* control : form.form.controls()) {
        if (const QWidget* widget = window->binding().widget_of(*control);
            widget != nullptr && control->kind() != platform::Kind::label && control->kind() != platform::Kind::tabs) {
            EXPECT_FALSE(widget->toolTip().isEmpty()) << control->full_name();
        }
    }
    window->resize(1366 * 2 / 3, 768 * 2 / 3 - 30); // a screen of 1366 x 768 at a scale of 150 %
    for (int page = 0; page < tabs.count(); ++page) {
        form.tool_tab.set_current(page);
        QTest::qWait(1);
        const auto* scroll = qobject_cast<QScrollArea*>(tabs.widget(page));
        ASSERT_NE(scroll, nullptr);
        EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width()) << page;
        EXPECT_EQ(tabs.tabText(page).toStdString(), calibration::tab_captions[static_cast<std::size_t>(page)]);
    }
    EXPECT_GE(tabs.tabBar()->tabRect(12).bottom(), 0);
    EXPECT_LE(tabs.tabBar()->tabRect(12).bottom(), tabs.tabBar()->height());
    pictures("small", window->size());
    pictures("large", {1180, 720});
}

TEST_F(ConfigurationWindow, PagesAreReachedByKeysFromWhereverTheKeyboardIs) {
    auto& first = named<QLineEdit>(*window, "full_scale_rpm");
    first.setFocus();
    QTest::keyClick(&first, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(form.tool_tab.current(), 1);
    EXPECT_EQ(window->focusWidget(), tabs.tabBar());
    QTest::keyClick(tabs.tabBar(), Qt::Key_Down);
    EXPECT_EQ(form.tool_tab.current(), 2);
    QTest::keyClick(tabs.tabBar(), Qt::Key_Up);
    QTest::keyClick(tabs.tabBar(), Qt::Key_PageUp, Qt::ControlModifier);
    QTest::keyClick(tabs.tabBar(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(form.tool_tab.current(), 12);
    QTest::keyClick(tabs.tabBar(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(form.tool_tab.current(), 0);
    form.tool_tab.set_current(7);
    EXPECT_EQ(tabs.currentIndex(), 7);
    QTest::keyClick(tabs.tabBar(), Qt::Key_Tab);
    EXPECT_TRUE(tabs.currentWidget()->isAncestorOf(window->focusWidget())) << "the page follows its tab";
}

TEST_F(ConfigurationWindow, PendingValuesMarkTheirTabAndTheirSwitch) {
    const auto at_dot = [&](int page) {
        const QRect field = tabs.tabBar()->tabRect(page);
        const QImage picture = tabs.tabBar()->grab().toImage();
        return picture.pixelColor(
            (QPointF(field.right() - 10, field.center().y()) * picture.devicePixelRatio()).toPoint());
    };
    EXPECT_NE(at_dot(8), QColor(0xFF, 0xFF, 0x55));
    form.tool_tab.set_pending_on(8, 2);
    EXPECT_EQ(at_dot(8), QColor(0xFF, 0xFF, 0x55));
    EXPECT_EQ(tabs.tabBar()->tabToolTip(8).toStdString(), "Engine Startup: 2 values pending");
    form.tool_tab.set_pending_on(8, 0);
    EXPECT_NE(at_dot(8), QColor(0xFF, 0xFF, 0x55));

    auto& speed = named<QLineEdit>(*window, "full_scale_rpm");
    platform::TextBox& box = form.box("FS_RPM");
    box.changed = [&box] { box.set_back_colour(platform::pending); };
    const QColor white = speed.palette().color(QPalette::Base);
    for (const char* text : {"9000", "9100"}) { // read, and read again while it can be edited
        box.confirm(text);
        EXPECT_EQ(speed.palette().color(QPalette::Base), white) << text;
    }

    QWidget& driver = named<QWidget>(*window, "ign_ph_15(7)");
    form.ign_ph[15][7].set_fore_colour(platform::pending);
    EXPECT_EQ(driver.palette().color(QPalette::Base), QColor(0xFF, 0xFF, 0x55));
    EXPECT_EQ(driver.accessibleName().toStdString(), "Eng. Phase 16, ignition driver 8");
    form.ign_ph[15][7].set_fore_colour(platform::black);
    EXPECT_NE(driver.palette().color(QPalette::Base), QColor(0xFF, 0xFF, 0x55));
}

TEST_F(ConfigurationWindow, StutterMarksFollowTheirBoxes) {
    QWidget* marks = named<QLineEdit>(*window, "stutter_table(3)").parentWidget()->findChildren<QWidget*>().last();
    const auto full = [&](int event) {
        const QImage picture = marks->grab().toImage();
        const QColor inside =
            picture.pixelColor((QPointF(event * 9 + event / 8 * 6 + 3, 6) * picture.devicePixelRatio()).toPoint());
        return inside != picture.pixelColor(picture.width() - 1, 0);
    };
    QTest::keyClicks(&named<QLineEdit>(*window, "stutter_table(3)"), "65");
    EXPECT_TRUE(full(24) && full(30));
    EXPECT_FALSE(full(25) || full(31) || full(0));
}

} // namespace
} // namespace ecu::desktop
