#include "autotune/frm_autotune.h"
#include "desktop/grid_view.h"
#include "desktop/windows/desktop_console.h"
#include "desktop/windows/windows.h"
#include "editing/editing_rules.h"
#include "maps/frm_cellblock_modifier.h"
#include "maps/graphing.h"
#include "maps/shading.h"
#include "platform/display_mask.h"
#include "windows/window_bench.h"

#include <QLineEdit>
#include <QScrollArea>

#include <cmath>

namespace ecu::desktop {
namespace {

// A plausible map: a hill towards high load.
double hill(int i) {
    const int speed = i / 16;
    const int load = i % 16;
    return 0.6 + load * 0.045 + 0.3 * std::exp(-((speed - 9) * (speed - 9) + (load - 11) * (load - 11)) / 30.0);
}

void fill(platform::Grid& grid, double factor, double base, std::string_view mask) {
    for (int i = 0; i < 256; ++i) {
        grid.confirm_cell(maps::row_of(grid, i), maps::column_of(grid, i),
                          platform::masked(hill(i) * factor + base, mask));
    }
}

struct MapWindow : testing::Test {
    QtHost host;
    maps::Frm3d form;
    maps::MapCellColours colours;
    std::unique_ptr<FormWindow> window = make_frm_3d_window(form, host);

    MapWindow() {
        fill(form.inj_map, 1, 0, "#.000");
        fill(form.ign_map, 30, -20, "#0.00");
        fill(form.TPS_map, 0.9, 0, "#.000");
        fill(form.TPS_mix, 60, 0, "##0.0");
        for (std::size_t n = 0; n < 4; ++n) {
            maps::shade_map(*form.grids[n], maps::Legend(form.bk_color.begin(), form.bk_color.end()), colours.maps[n],
                            0, 0);
        }
        for (std::size_t i = 0; i < 17; ++i) {
            form.Label5[i].set_text(std::to_string(10 + i * 115 / 16));
        }
        for (std::size_t i = 0; i < 9; ++i) {
            form.Label6[i].set_text(std::to_string(i * 1250));
        }
        form.Map_dims[0].set_text("kPa");
        form.ecu_pgm[0].confirm("10.200");
        form.ecu_pgm[1].confirm("-0.525");
        form.tps_rpm.confirm("3500");
        for (auto* label : {&form.control_lambda, &form.control_map_gain, &form.control_ego_gain}) {
            label->set_text("0.987");
        }
        form.mapping_rpm[0].set_text("3210");
        form.base_timing.set_text("16.25B");
        form.Inj_pulse_width.set_text("8.100");
        form.AF_condition.set_text("Rich");
        form.AF_condition.set_fore_colour(platform::palette[1]);
        form.show_map_type[0].set_checked(true);
        form.map_p_ptr.set_top(1800);
        form.map_r_ptr.set_left(1300);
        form.form.show();
        window->resize(1180, 720);
        QTest::qWait(1);
    }
    QRect field() { return named<GridView>(*window, "inj_map").geometry(); }
};

TEST_F(MapWindow, IsCompleteAndTheFourMapsCanBeLookedAt) {
    expect_complete(*window);
    form.inj_map.set_cell_back(9, 5, platform::pending);
    form.inj_map.confirm_cell(9, 6, "0.987");
    form.map_status.set_text("1 value pending");
    const std::array<const char*, 4> names{"fuel", "ignition", "tps", "mix"};
    for (std::size_t n = 0; n < 4; ++n) {
        for (std::size_t other = 0; other < 4; ++other) {
            form.grids[other]->set_visible(other == n);
        }
        form.show_map_type[n].set_checked(true);
        window->setObjectName(QString("frm_3d_") + names[n]);
        save_picture(*window);
    }
    window->setObjectName("frm_3d_small");
    save_picture(*window, {902, 472}); // a screen of 1366 by 768 at 150 %
    const auto* body = window->findChild<QScrollArea*>();
    EXPECT_LE(body->widget()->minimumSizeHint().height(), body->viewport()->height());
    EXPECT_LE(body->widget()->minimumSizeHint().width(), body->viewport()->width());
    EXPECT_FALSE(named<QLineEdit>(*window, "bk_color(7)").visibleRegion().isEmpty()); // the legend stays in sight
    window->setObjectName("frm_3d_large");
    save_picture(*window, {1900, 1000});
}

TEST_F(MapWindow, GrowsWithTheWindowAndItsCaptionsAndMarkersKeepToTheirPlaces) {
    for (const QSize size : {QSize(1180, 720), QSize(1600, 1000)}) {
        window->resize(size);
        QTest::qWait(1);
        const QRect cells = field();
        EXPECT_GT(cells.width(), size.width() / 2);
        EXPECT_GT(cells.height(), size.height() / 2);
        const auto middle = [this](const char* name) { return named<QWidget>(*window, name).geometry().center(); };
        EXPECT_NEAR(middle("Label5(0)").y(), cells.bottom(), 3);
        EXPECT_NEAR(middle("Label5(8)").y(), cells.center().y(), 3);
        EXPECT_NEAR(middle("Label6(4)").x(), cells.center().x(), 3);
        EXPECT_NEAR(middle("Label6(8)").x(), cells.right(), 3);
        EXPECT_NEAR(middle("map_p_ptr").y(), cells.top() + cells.height() * 0.45, 3);
        EXPECT_NEAR(middle("map_r_ptr").x(), cells.left() + cells.width() * 0.325, 3);
        auto& view = named<GridView>(*window, "inj_map");
        EXPECT_EQ(view.columnWidth(0), view.columnWidth(15));
        EXPECT_LE(QFontMetrics(view.font()).horizontalAdvance("-00.00"), view.columnWidth(0));
    }
}

TEST_F(MapWindow, IsUsedByKeyboardAlone) {
    EXPECT_EQ(window->focusWidget()->objectName(), "inj_map");
    form.inj_map.set_visible(false);
    form.ign_map.set_visible(true);
    EXPECT_EQ(window->focusWidget()->objectName(), "ign_map"); // follows the map that is shown
    window->activateWindow();
    QTest::keyClick(window.get(), Qt::Key_F6);
    EXPECT_EQ(window->focusWidget()->objectName(), "ecu_pgm(0)");
    QTest::keyClick(window.get(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_TRUE(form.show_map_type[2].checked());
}

TEST(OpenedMapWindow, KeysGoToTheMapThatIsShownAndItsFirstCell) {
    DesktopConsole desktop;
    console::Console& console = desktop.console();
    maps::Frm3d& form = console.forms.frm_3d;
    console.state.demo_mode = true;
    console.navigation.open(link::View::basic_mapping);
    ASSERT_TRUE(QTest::qWaitFor([&] { return form.update_button.enabled() && !console.state.polling_paused; }));
    std::array<int, 4> typed{};
    for (const std::size_t map : {0U, 3U, 1U, 2U}) { // each time with the last one's cell still in its editor
        form.show_map_type[map].set_checked(true);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_1);
        typed[map] = 1;
        for (std::size_t n = 0; n < 4; ++n) {
            EXPECT_EQ(maps::pending_cells(*form.grids[n]), typed[n]) << map << n;
        }
        EXPECT_EQ(form.grids[map]->cell_text(1, 1), "1");
    }
    form.show_map_type[0].set_checked(true);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "inj_map");
    form.exit_button.press();
    QTest::qWait(1); // the console's window is activated with the next events
}

TEST_F(MapWindow, SurfaceFollowsItsWindowAndCanBeLookedAtFromThreeSides) {
    maps::Frm3dGraph graph;
    const auto surface = make_frm_3d_graph_window(graph, host);
    expect_complete(*surface);
    graph.low_scale.set_text("0.6");
    graph.high_scale.set_text("1.6");
    maps::SurfacePoints points;
    const auto draw = [&] {
        float low = 0.6F;
        float high = 1.6F;
        maps::project_surface(16, 16, form.inj_map, graph.Picture1, graph.HScroll1.value(), graph.VScroll1.value(), low,
                              high, colours.maps[0], points);
    };
    graph.Picture1.resized = draw;
    graph.form.show();
    for (const auto& [across, above] : {std::pair{60, 30}, {20, 10}, {0, 60}}) {
        graph.HScroll1.set_value(across);
        graph.VScroll1.set_value(above);
        draw();
        surface->setObjectName(QString("frm_3d_graph_%1_%2").arg(across).arg(above));
        save_picture(*surface, {760, 560});
    }
    save_picture(*surface, {1000, 700});
    EXPECT_EQ(graph.Picture1.width(), named<QWidget>(*surface, "Picture1").width());
    EXPECT_EQ(points.surface_x[15][0] - points.surface_x[0][0], std::lround(graph.Picture1.width() * 0.65));
}

TEST(SmallMapWindows, BlockDialogAndAutotuneAreComplete) {
    QtHost host;
    maps::FrmCellblockModifier block;
    autotune::FrmAutotune autotune;
    const auto block_window = make_frm_cellblock_modifier_window(block, host);
    const auto autotune_window = make_frm_autotune_window(autotune, host);
    block.block_extent.set_text("Lambda set point table, rows 3 to 8, columns 2 to 5: 24 cells");
    autotune.autotune_inj_factors.set_cell_text(3, 4, "1.050");
    autotune.autotune_inj_factors.set_cell_text(4, 4, "X");
    for (FormWindow* window : {block_window.get(), autotune_window.get()}) {
        expect_complete(*window);
        window->form().show();
        save_picture(*window, window == autotune_window.get() ? QSize(1120, 640) : QSize());
    }
    QTest::keyClick(block_window.get(), Qt::Key_Escape);
    EXPECT_FALSE(block.form.visible());
    QTest::keyClick(autotune_window.get(), Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(autotune_window->focusWidget()->objectName(), "autotune_tps_factors");
    QTest::keyClick(autotune_window.get(), Qt::Key_F6);
    EXPECT_EQ(autotune_window->focusWidget()->objectName(), "apply_to_maps");
}

} // namespace
} // namespace ecu::desktop
