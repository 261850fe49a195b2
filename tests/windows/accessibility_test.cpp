// What a screen reader is told of values that are drawn.
#include "desktop/windows/windows.h"
#include "views/frm_dashboard.h"
#include "views/frm_mon.h"
#include "windows/window_bench.h"

#include <QAccessible>

namespace ecu::desktop {
namespace {

QString told(QWidget& widget, QAccessible::Text what) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&widget);
    return spoken == nullptr ? QString() : spoken->text(what);
}

TEST(Accessibility, AFigureIsToldWithItsValueAndUnitAndALampWhetherItIsLit) {
    QtHost host;
    views::FrmMon monitor;
    const auto window = make_frm_mon_window(monitor, host);
    monitor.ECU_Data[views::FrmMon::Row::engine_speed].set_text("3006");
    QWidget& speed = *window->binding().widget_of(monitor.ECU_Data[views::FrmMon::Row::engine_speed]);
    EXPECT_EQ(told(speed, QAccessible::Value), "3006 RPM");
    EXPECT_EQ(told(speed, QAccessible::Name), "Engine Speed 3006 RPM");
    views::FrmDashboard dashboard;
    const auto gauges = make_frm_dashboard_window(dashboard, host);
    QWidget& lamp = *gauges->binding().widget_of(dashboard.afr_led[8]);
    const QString dark = lamp.accessibleName() + lamp.accessibleDescription();
    EXPECT_TRUE(dark.contains("dark")) << dark.toStdString();
    dashboard.afr_led[8].set_back_colour(platform::palette[10]);
    const QString lit = lamp.accessibleName() + lamp.accessibleDescription();
    EXPECT_TRUE(lit.contains("lit")) << lit.toStdString();
}

} // namespace
} // namespace ecu::desktop
