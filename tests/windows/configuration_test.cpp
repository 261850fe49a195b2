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

TEST_F(ConfigurationWindow, every_control_stands_in_it_and_every_page_scrolls_rather_than_clips) {
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

} // namespace
} // namespace ecu::desktop
