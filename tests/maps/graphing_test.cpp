#include "maps/map_bench.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

using platform::Picture;
using platform::Property;

struct Graphing : MapBench, testing::Test {
    maps::Frm3dGraph& graph = console.forms.frm_3d_graph;
    std::pair<int, int> point(std::size_t c, std::size_t r) {
        const maps::SurfacePoints& points = console.graphing.points();
        return {points.surface_x[c][r], points.surface_y[c][r]};
    }
    int drawings() { return desktop.changes("frm_3d_graph", "Picture1", Property::content); }
};

using Point = std::pair<int, int>;

// 600 by 400: left 15, base 380, width 390, height 160; views 60 and 30 lean it by 180 and 140.
TEST_F(Graphing, SurfacePointsStandOnTheLeaningFloor) {
    open_offline();
    frm_3d.inj_map.set_cell_text(16, 1, "1.1");
    frm_3d.inj_map.set_cell_text(13, 8, ".6");
    frm_3d.inj_map.set_cell_text(1, 16, "1.6");
    frm_3d.inj_map.set_cell_text(1, 1, "2.1"); // above the scale
    frm_3d.show_this_graph.press();
    EXPECT_TRUE(graph.form.visible());
    EXPECT_EQ(graph.low_scale.text() + " " + graph.high_scale.text(), "0.6 1.6");
    EXPECT_EQ(point(0, 0), Point(15, 300));
    EXPECT_EQ(point(7, 3), Point(233, 352));
    EXPECT_EQ(point(15, 15), Point(585, 80));
    EXPECT_EQ(point(0, 15), Point(195, 0));
    EXPECT_EQ(point(15, 0), Point(405, 316)); // 1.000: 40 % up
    const auto& strokes = graph.Picture1.strokes();
    ASSERT_GE(strokes.size(), 480U);
    const platform::Colour shade = console.map_cell_colours.maps[0][0];
    EXPECT_EQ(std::get<Picture::Line>(strokes[strokes.size() - 480]), (Picture::Line{15, 300, 41, 316, shade, 1}));

    graph.VScroll1.set_value(100);
    EXPECT_EQ(point(7, 3), Point(233, 380));
    graph.HScroll1.set_value(0);
    EXPECT_EQ(point(7, 3), Point(197, 380));
    graph.low_scale.set_text(".1");
    EXPECT_EQ(point(7, 3), Point(197, 327)); // a third of the way up: 33 %, 52.8 dots
    graph.Picture1.resize(1200, 800);
    EXPECT_EQ(point(7, 3), Point(394, 654));
}

// The frame of the first test: its floor leans to the right and back, the wall stands behind it.
TEST_F(Graphing, FrameLeansWithTheSurfaceAndTellsTheScale) {
    open_offline();
    frm_3d.show_this_graph.press();
    std::vector<std::array<int, 4>> frame;
    std::vector<std::array<int, 4>> scale;
    std::vector<std::string> captions;
    for (const auto& stroke : graph.Picture1.strokes()) {
        if (const auto* line = std::get_if<Picture::Line>(&stroke)) {
            if (line->colour == platform::palette[9]) {
                frame.push_back({line->x1, line->y1, line->x2, line->y2});
            } else if (line->colour == platform::palette[8]) {
                scale.push_back({line->x1, line->y1, line->x2, line->y2});
            }
        } else if (const auto* text = std::get_if<Picture::Text>(&stroke)) {
            captions.push_back(text->text + "@" + std::to_string(text->y));
        }
    }
    EXPECT_EQ(frame, (std::vector<std::array<int, 4>>{{15, 380, 405, 380},
                                                      {405, 380, 585, 240},
                                                      {585, 240, 195, 240},
                                                      {195, 240, 15, 380},
                                                      {195, 240, 195, 80},
                                                      {195, 80, 585, 80},
                                                      {585, 80, 585, 240}}));
    ASSERT_EQ(scale.size(), 22U);
    EXPECT_EQ(scale[20], (std::array<int, 4>{15, 220, 195, 80})); // the highest, from the front to the wall
    EXPECT_EQ(scale[21], (std::array<int, 4>{195, 80, 585, 80}));
    EXPECT_EQ(std::to_string(captions.size()) + captions.front() + " " + captions.back(), "60.60@366 1.60@206");
    graph.Picture1.resize(600, 100); // too low for so many
    EXPECT_EQ(std::ranges::count_if(graph.Picture1.strokes(),
                                    [](const auto& stroke) { return std::holds_alternative<Picture::Text>(stroke); }),
              3);
}

TEST_F(Graphing, NothingIsDrawnToACellThatWasNeverRead) {
    open_offline();
    frm_3d.inj_map.blank_cell(8, 8);
    frm_3d.inj_map.set_cell_text(1, 1, "2");
    frm_3d.show_this_graph.press();
    const auto lines = graph.Picture1.strokes().size();
    frm_3d.inj_map.confirm_cell(8, 8, "1");
    desktop.run_for(0.1);
    EXPECT_EQ(graph.Picture1.strokes().size(), lines + 4); // to its four neighbours
    frm_3d.inj_map.blank_cell(8, 8);
    console.basic_mapping.shade_fuel_map(0, 0);
    EXPECT_TRUE(frm_3d.inj_map.cell_pending(8, 8)); // no value to be shaded by, nor in the range of the others
    EXPECT_EQ(frm_3d.inj_map.cell_back(9, 9), frm_3d.bk_color[7].back_colour());
    maps::Frm2d form;
    form.clt_enr_graph.resize(600, 400);
    for (platform::TextBox& box : form.clt_map) {
        box.set_text("3");
    }
    form.clt_map[4].blank();
    float low = 0;
    float high = 0;
    maps::draw_table_bars({form.clt_map.begin(), form.clt_map.end()}, form.clt_enr_graph, low, high);
    EXPECT_EQ(std::pair(low, high), std::pair(2.0F, 4.0F));
    EXPECT_EQ(form.clt_enr_graph.strokes().size(), 9U + 1U + 6U);
}

TEST_F(Graphing, ScaleWithoutASpanOrTooNarrowDrawsInsteadOfFailing) {
    open_offline();
    frm_3d.show_this_graph.press();
    graph.high_scale.set_text(".6");
    EXPECT_EQ(point(0, 0), Point(15, 380));
    graph.high_scale.set_text(".60001");
    EXPECT_LT(point(0, 0).second, -1000);
    graph.high_scale.set_text("0");
    graph.low_scale.set_text("none"); // both 0: the range of the cells, all of them equal
    EXPECT_EQ(point(0, 0), Point(15, 300));
}

TEST_F(Graphing, EqualLambdaCellsLieFlatInTheirOwnPicture) {
    maps::confirm_all(console.forms.frm_2d.lambda_sp_table, "1.000");
    console.forms.frm_2d.ego_sp_graph.resize(600, 400);
    console.graphing.draw_surface(maps::surface::lambda);
    EXPECT_EQ(point(0, 0), Point(15, 300));
    EXPECT_EQ(point(8, 8), Point(585, 160));
    EXPECT_EQ(console.graphing.ego_surface_low(), 0);
    EXPECT_EQ(console.graphing.ego_surface_high(), 2);
    EXPECT_EQ(console.graphing.last_surface_kind(), 9);
    EXPECT_TRUE(console.state.reset_comm_watch);
    EXPECT_THROW(console.graphing.draw_surface(5), ProgramEnded);
    graph.form.show();
    desktop.clear_changes();
    graph.Picture1.resize(1200, 800); // its own window shows a map
    EXPECT_EQ(drawings(), 1);
}

TEST_F(Graphing, AnyNumberOfCellChangesCostsOneDrawingAndNoneWhileHiddenOrReading) {
    open_offline();
    frm_3d.show_this_graph.press();
    graph.high_scale.set_text("1.2");
    desktop.clear_changes();
    maps::write_all(frm_3d.inj_map, "1.1");
    desktop.run_for(0.1);
    EXPECT_EQ(drawings(), 1);
    EXPECT_EQ(graph.high_scale.text(), "1.6"); // the map's own scale again
    maps::write_all(frm_3d.inj_map, "1.3");
    frm_3d.inj_map.set_cell_text(1, 1, ".7");
    desktop.run_for(0.1);
    update();
    EXPECT_EQ(std::get<Picture::Line>(graph.Picture1.strokes().back()).colour, frm_3d.inj_map.cell_back(1, 16));
    frm_3d.show_map_type[3].click();
    console.basic_mapping.show_selected_map_graph();
    EXPECT_EQ(console.graphing.last_surface_kind(), 8);
    EXPECT_EQ(graph.high_scale.text(), "100.0");
    frm_3d.exit_button.press();
    desktop.clear_changes();
    open();
    EXPECT_EQ(drawings(), 0);
    graph.form.hide();
    maps::write_all(frm_3d.inj_map, "1.2");
    graph.HScroll1.set_value(10);
    desktop.run_for(0.1);
    EXPECT_EQ(drawings(), 0);
}

// 600 by 400: plot 570 by 340, margins 12 and 48.
TEST(TableBars, JoinsNinePointsOverTheirRangeAFixedOneOrAroundEqualValues) {
    maps::Frm2d form;
    auto& boxes = form.clt_map;
    Picture& picture = form.clt_enr_graph;
    picture.resize(600, 400);
    const auto draw = [&](float& low, float& high) {
        maps::draw_table_bars({boxes.begin(), boxes.end()}, picture, low, high);
        return std::get<Picture::Line>(picture.strokes().back());
    };
    for (std::size_t i = 0; i < 9; ++i) {
        boxes[i].set_text(std::to_string(i + 1));
    }
    float low = 0;
    float high = 0;
    EXPECT_EQ(draw(low, high), (Picture::Line{511, 54, 582, 12, platform::yellow, 1}));
    EXPECT_EQ(std::get<Picture::Line>(picture.strokes()[9]), (Picture::Line{12, 352, 12, 352, platform::yellow, 1}));
    EXPECT_EQ(std::get<Picture::Line>(picture.strokes()[4]),
              (Picture::Line{297, 0, 297, 400, platform::palette[7], 1}));
    EXPECT_EQ(std::pair(low, high), std::pair(1.0F, 9.0F));
    low = -16;
    high = 48;
    boxes[8].set_text("60");
    EXPECT_EQ(draw(low, high).y2, -52); // drawn where it falls
    for (platform::TextBox& box : boxes) {
        box.set_text("3");
    }
    low = high = 0;
    EXPECT_EQ(draw(low, high), (Picture::Line{511, 182, 582, 182, platform::yellow, 1}));
    EXPECT_EQ(std::pair(low, high), std::pair(2.0F, 4.0F));
}

} // namespace
} // namespace ecu::test
