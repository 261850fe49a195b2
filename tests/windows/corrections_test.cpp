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
#include <QStatusBar>
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
        EXPECT_TRUE(QTest::qWaitFor([&] { return form.update_button.enabled() && !console.state.polling_paused; }));
    }
    ~CorrectionWindow() override {
        form.exit_button.press();
        QTest::qWait(1);
    }
    FormWindow& window() { return static_cast<FormWindow&>(desktop.host().window_of(form.form)); }
    QWidget* widget(const platform::Control& control) { return window().binding().widget_of(control); }
    std::string focused() { return window().focusWidget()->objectName().toStdString(); }
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
    for (const QSize size : {QSize(1366, 728), QSize(902, 472)}) { // of a screen of 1366 x 768, also at 150 %
        window().resize(size);
        for (int n = 0; n < 3; ++n) {
            form.map_tabs.set_current(n);
            QTest::qWait(1);
            const auto* page = static_cast<QScrollArea*>(named<QTabWidget>(window(), "map_tabs").widget(n));
            EXPECT_LE(page->widget()->minimumSizeHint().width(), page->viewport()->width()) << size.width();
            EXPECT_LE(page->widget()->minimumSizeHint().height(), page->viewport()->height()) << size.height();
        }
        const auto& targets = named<GridView>(window(), "lambda_sp_table");
        EXPECT_LE(QFontMetrics(targets.font()).horizontalAdvance("00.00"), targets.columnWidth(0) * 6 / 7);
        for (int i = 0; i < 9; ++i) {
            const auto* edit = static_cast<QLineEdit*>(widget(form.ign_rpm[static_cast<std::size_t>(i)]));
            EXPECT_LE(edit->fontMetrics().horizontalAdvance("-16.000") + 8, edit->width());
        }
    }
    pictures("", {1366, 728});
    pictures("_150", {902, 472});
    pictures("_large", {1900, 1040});
    const QPalette light = QApplication::palette();
    theme::use(theme::Theme::dark);
    pictures("_dark", {1240, 720});
    QApplication::setPalette(light);
}

TEST_F(CorrectionWindow, IsUsedByKeyboardAlone) {
    EXPECT_EQ(focused(), "clt_map(0)");
    QTest::keyClick(window().focusWidget(), Qt::Key_Down);
    EXPECT_EQ(focused(), "mat_data(0)");
    QTest::keyClicks(window().focusWidget(), "1.25"); // over the value, which was selected
    EXPECT_EQ(form.mat_data[0].text(), "1.25");
    QTest::keyClick(&window(), Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(std::to_string(form.map_tabs.current()) + focused(), "1ign_map(0)");
    QTest::keyClick(window().focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(focused(), "ign_map(1)");
    QTest::keyClick(&window(), Qt::Key_F6);
    EXPECT_EQ(std::to_string(form.map_tabs.current()) + focused(), "2lambda_sp_table");
    QTest::keyClick(&window(), Qt::Key_F6);
    EXPECT_EQ(focused(), "dwell_vbat(0)");
    window().resize(700, 360); // a page that has to scroll keeps the box in sight
    QTest::qWait(1);
    form.idle_rpm_map[8].set_focus();
    QTest::qWait(1);
    EXPECT_FALSE(widget(form.idle_rpm_map[8])->visibleRegion().isEmpty());
}

TEST_F(CorrectionWindow, ACopiedRowGoesOverTheBoxesAndACurveIsCopiedWhole) {
    QApplication::clipboard()->setText("1,5\t\tlean\t.75\n2\r\n3\n");
    for (const std::size_t from : {2U, 7U}) {
        form.clt_map[from].set_focus();
        QTest::keyClick(widget(form.clt_map[from]), Qt::Key_V, Qt::ControlModifier);
    }
    QTest::keyClick(widget(form.clt_map[0]), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "1.000\t1.000\t1.5\t1.000\t1.000\t.75\t2\t1.5\t1.000\n");
    EXPECT_TRUE(form.clt_map[5].is_pending());
    EXPECT_FALSE(form.clt_map[4].is_pending());
    const auto bar = [this] { return window().statusBar()->currentMessage().toStdString(); };
    EXPECT_EQ(bar(), "1 not pasted, no number: \"lean\" at Coolant Enrichment at 51 °C");
    form.ign_map[1].set_focus();
    const auto paste_one = [this](const char* text) {
        QApplication::clipboard()->setText(text);
        QTest::keyClick(widget(form.ign_map[1]), Qt::Key_V, Qt::ControlModifier);
        return form.ign_map[1].text();
    };
    EXPECT_EQ(paste_one(" ") + paste_one("rich"), "1.0001.000");
    EXPECT_FALSE(form.ign_map[1].is_pending());
    EXPECT_EQ(bar(), "1 not pasted, no number: \"rich\" at MAP Ignition at 24 kPa");
    EXPECT_EQ(paste_one(" 7,5 "), "7.5");
}

TEST_F(CorrectionWindow, GraphAndTabFollowWhatIsTyped) {
    auto& tabs = named<QTabWidget>(window(), "map_tabs");
    const auto& mark = named<QLabel>(window(), "tab_status(0)");
    EXPECT_TRUE(mark.isHidden());
    const QRect narrow = tabs.tabBar()->tabRect(0);
    const auto& graph = named<CurveView>(window(), "mat_enr_graph");
    EXPECT_EQ(form.mat_enr_graph.width(), graph.width());
    const auto flat = CurveView::curve_of(form.mat_enr_graph);
    ASSERT_EQ(flat.size(), 9U);
    form.mat_data[8].set_focus();
    QTest::keyClicks(widget(form.mat_data[8]), "2");
    QTest::qWait(1);
    const auto bent = CurveView::curve_of(form.mat_enr_graph);
    EXPECT_LT(bent[8].y2(), flat[8].y2());
    EXPECT_GT(bent[0].y2(), flat[0].y2());
    EXPECT_NEAR(bent[8].x2() + graph.x(), widget(form.mat_data[8])->geometry().center().x(), 2);
    EXPECT_EQ(mark.text(), "1 pending");
    EXPECT_GT(tabs.tabBar()->tabRect(0).width(), narrow.width());
    EXPECT_TRUE(tabs.tabBar()->tabRect(0).contains(mark.geometry()));
    EXPECT_EQ(widget(form.mat_data[8])->accessibleName().toStdString(), "Air Temp Enrichment at 115 °C");
}

} // namespace
} // namespace ecu::desktop
