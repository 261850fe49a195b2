#include "desktop/curve_layout.h"
#include "desktop/curve_view.h"
#include "desktop/grid_view.h"
#include "desktop/theme.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/windows/windows.h"
#include "maps/correction_curves.h"
#include "maps/graphing.h"
#include "platform/display_mask.h"
#include "windows/window_bench.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTabBar>
#include <QTabWidget>

namespace ecu::desktop {
namespace {

TEST(CurveLayout, EachPointOfTheGraphStandsAboveItsBoxAndNothingOverlaps) {
    for (const QSize room : {QSize(360, 90), QSize(430, 110), QSize(655, 190)}) {
        const CurveLayout layout = curve_layout(room, 15, 22);
        for (std::size_t i = 0; i < 9; ++i) {
            const double point =
                layout.graph.left() +
                layout.graph.width() * (maps::bars_left + maps::bars_width * static_cast<double>(i) / 8);
            EXPECT_NEAR(point, layout.boxes[i].center().x() + 0.5, 1.6) << room.width() << ' ' << i;
            EXPECT_EQ(layout.captions[i].center().x(), layout.boxes[i].center().x());
            EXPECT_TRUE(i == 0 || layout.boxes[i].left() > layout.boxes[i - 1].right());
        }
        EXPECT_LT(layout.title.bottom(), layout.graph.top());
        EXPECT_LT(layout.graph.bottom(), layout.boxes[0].top());
        EXPECT_LT(layout.boxes[0].bottom(), layout.captions[0].top());
        EXPECT_LE(layout.captions[8].bottom(), room.height());
        EXPECT_TRUE(QRect(QPoint(), room).contains(layout.graph));
    }
}

// A console in demo mode with the window open.
struct CorrectionWindow : testing::Test {
    DesktopConsole desktop;
    console::Console& console = desktop.console();
    maps::Frm2d& form = console.forms.frm_2d;

    CorrectionWindow() {
        console.state.demo_mode = true;
        console.navigation.open(link::View::additional_mapping);
        EXPECT_TRUE(QTest::qWaitFor([&] { return form.Command3d2.enabled() && !console.state.polling_paused; }));
    }
    ~CorrectionWindow() override {
        form.Command3d1.press();
        QTest::qWait(1);
    }
    FormWindow& window() { return static_cast<FormWindow&>(desktop.host().window_of(form.form)); }
    QWidget* focus() { return window().focusWidget(); }
    void fill() {
        for (const maps::CorrectionCurve& curve : maps::correction_curves) {
            for (int i = 0; i < 9; ++i) {
                const int raw = (curve.page == 1 ? 64 : 70) + (i - 4) * (i - 4) * 3 - 10;
                (form.*curve.boxes)[static_cast<std::size_t>(i)].confirm(
                    calibration::shown(*curve.table, raw, console.scales));
            }
        }
        for (int i = 0; i < 81; ++i) {
            form.lambda_sp_table.confirm_cell(maps::row_of(form.lambda_sp_table, i),
                                              maps::column_of(form.lambda_sp_table, i),
                                              platform::masked(1.02 - i % 9 * 0.016 - i / 9 * 0.008, "0.000"));
        }
        console.additional_mapping.shade_lambda_table(0, 0);
        console.graphing.draw_surface(maps::surface::lambda);
        console.additional_mapping.draw_all_table_bars();
    }
    void pictures(const char* suffix, QSize size) {
        for (int page = 0; page < 3; ++page) {
            form.map_tabs.set_current(page);
            window().setObjectName(QString("frm_2d_%1%2").arg(page).arg(suffix));
            save_picture(window(), size);
        }
        window().setObjectName("frm_2d");
    }
};

TEST_F(CorrectionWindow, IsCompleteFitsItsScreensAndCanBeLookedAt) {
    expect_complete(window());
    fill();
    form.clt_map[2].set_text("1.5");
    form.ign_rpm[8].set_text("-16.000");
    form.lambda_sp_table.set_cell_text(3, 3, "0.91");
    console.live.injector_pw = 0.008123F;
    console.additional_mapping.refresh_live();
    pictures("", {1366, 728});
    pictures("_150", {902, 472});
    pictures("_large", {1900, 1040});
    const QPalette light = QApplication::palette();
    QApplication::setPalette(theme::dark_palette());
    pictures("_dark", {1240, 720});
    QApplication::setPalette(light);
}

} // namespace
} // namespace ecu::desktop
