#include "maps/map_bench.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

using maps::CellOperation;
using platform::MouseButton;

struct BlockModifier : MapBench, testing::Test {
    maps::FrmCellblockModifier& dialog = console.forms.frm_cellblock_modifier;

    static void select(platform::Grid& grid, int row, int column, int end_row, int end_column) {
        platform::KeyPress s{.code = 'S', .ctrl = true};
        platform::KeyPress f{.code = 'F', .ctrl = true};
        grid.set_active_cell(row, column);
        grid.key_down(s);
        grid.set_active_cell(end_row, end_column);
        grid.key_down(f);
    }
    void run(CellOperation operation, platform::Answer answer = platform::Answer::yes) {
        desktop.answer_box("This operation will modify a group of cells and cannot be undone. Continue?", answer);
        dialog.cell_operation[static_cast<std::size_t>(operation)].press();
    }
    std::string after(CellOperation operation) {
        frm_3d.inj_map.confirm_cell(5, 5, "1.500");
        select(frm_3d.inj_map, 5, 5, 5, 5);
        run(operation);
        return fuel(5, 5);
    }
};

TEST_F(BlockModifier, WholeMapTimesAFactorIsOneOperationAnd256Writes) {
    memory.fill(128);
    open();
    select(frm_3d.inj_map, 16, 16, 1, 1);
    EXPECT_TRUE(dialog.form.visible());
    EXPECT_EQ(dialog.block_extent.text(),
              "Fuel map, rows 1 to 16, columns 1 to 16: 256 cells\n10 kPa, 0 rpm to 117 kPa, 9375 rpm");
    EXPECT_EQ(frm_3d.inj_map.shown_block(), (platform::Grid::Area{1, 1, 16, 16}));
    dialog.multiply.set_text("1.05");
    run(CellOperation::multiply);
    EXPECT_FALSE(dialog.form.visible());
    EXPECT_EQ(controller.sent().size(), 0U);
    desktop.run_for(0.01);
    EXPECT_EQ(frm_3d.map_status.text(), "256 values pending: Fuel 256");
    const auto messages = update();
    ASSERT_EQ(messages.size(), 256U);
    EXPECT_EQ(messages.front(), (Bytes{'e', 0, 1, 134})); // 1.050 * 128 = 134.4
    EXPECT_EQ(messages.back(), (Bytes{'e', 255, 1, 134}));
    EXPECT_EQ(fuel(1, 1), "1.047");
}

TEST_F(BlockModifier, OperationsReachTheCellsOfTheBlockOnlyAndPaintThemYellow) {
    open_offline();
    dialog.multiply.set_text("2");
    dialog.Add.set_text(".25");
    dialog.set_value.set_text("9");
    EXPECT_EQ(after(CellOperation::multiply), "3.000");
    EXPECT_EQ(after(CellOperation::add), "1.750");
    EXPECT_EQ(after(CellOperation::subtract), "1.250");
    EXPECT_EQ(after(CellOperation::divide), ".750");
    EXPECT_EQ(after(CellOperation::set_all), "9.000");
    EXPECT_TRUE(frm_3d.inj_map.cell_pending(5, 5));
    EXPECT_EQ(maps::pending_cells(frm_3d.inj_map), 1);
    dialog.multiply.set_text("0");
    EXPECT_EQ(after(CellOperation::divide), "1.500");
    EXPECT_FALSE(frm_3d.inj_map.cell_pending(5, 5));

    select(frm_3d.inj_map, 5, 5, 5, 5);
    console.state.reset_comm_watch = false;
    run(CellOperation::set_all, platform::Answer::no);
    EXPECT_TRUE(console.state.reset_comm_watch); // the question's time is not the controller's silence
    EXPECT_EQ(fuel(5, 5), "1.500");
    EXPECT_FALSE(dialog.form.visible());
}

TEST_F(BlockModifier, WhatWasNeverReadIsNoOperandButCanBeSet) {
    open_offline();
    frm_3d.inj_map.blank_cell(5, 5);
    frm_3d.inj_map.confirm_cell(5, 6, "1");
    dialog.Add.set_text(".25");
    select(frm_3d.inj_map, 5, 5, 5, 6);
    EXPECT_THAT(dialog.block_extent.text(), testing::EndsWith("\n1 not read: only Set All changes them"));
    run(CellOperation::add);
    EXPECT_EQ(fuel(5, 5) + fuel(5, 6), "1.250");
    EXPECT_TRUE(frm_3d.inj_map.cell_unread(5, 5));
    select(frm_3d.inj_map, 5, 5, 5, 6);
    run(CellOperation::set_all);
    EXPECT_EQ(fuel(5, 5), "1.000");
    EXPECT_FALSE(frm_3d.inj_map.cell_unread(5, 5));
    frm_3d.inj_map.set_locked(true); // while it is being read
    dialog.set_value.set_text("3");
    run(CellOperation::set_all);
    EXPECT_EQ(fuel(5, 5), "1.000");
}

TEST_F(BlockModifier, TheAnchorIsDrawnUntilTheBlockIsTakenAndAKeyedBlockIsTakenAsItIs) {
    open_offline();
    auto& grid = frm_3d.inj_map;
    const auto press = [](platform::Grid& in, int code) {
        platform::KeyPress key{.code = code, .ctrl = true};
        in.key_down(key);
    };
    frm_3d.ign_map.set_active_cell(2, 2);
    press(frm_3d.ign_map, 'S');
    grid.set_active_cell(3, 4);
    press(grid, 'S');
    EXPECT_EQ(frm_3d.ign_map.anchor_row(), 0);
    EXPECT_EQ(grid.anchor_row() * 100 + grid.anchor_column(), 304);
    grid.set_active_cell(5, 6);
    press(grid, 'F');
    EXPECT_EQ(grid.anchor_row(), 0);
    EXPECT_EQ(grid.shown_block(), (platform::Grid::Area{3, 4, 5, 6}));
    grid.block_chosen({1, 1, 16, 16}); // Ctrl+A leaves the active cell where it is
    press(grid, 'F');
    EXPECT_EQ(grid.shown_block(), (platform::Grid::Area{1, 1, 16, 16}));
    grid.set_active_cell(5, 7); // and moving on gives the selection up
    press(grid, 'F');
    EXPECT_EQ(grid.shown_block(), (platform::Grid::Area{1, 1, 5, 7}));
    grid.block_chosen({1, 1, 16, 16});
    grid.set_mouse_cell(2, 2);
    grid.mouse_down(MouseButton::left);
    press(grid, 'F');
    EXPECT_EQ(grid.shown_block(), (platform::Grid::Area{2, 2, 5, 7}));

    dialog.multiply.set_text("2");
    grid.confirm_cell(2, 2, "1.5");
    desktop.answer_box("cannot be undone", platform::Answer::yes);
    platform::KeyPress enter{.code = platform::key::enter};
    dialog.multiply.key_down(enter);
    EXPECT_EQ(fuel(2, 2), "3.000");
}

TEST_F(BlockModifier, EachTableWritesBackThroughItsOwnMask) {
    const std::array<std::tuple<int, platform::Grid*, const char*>, 5> cases{
        {{6, &frm_3d.ign_map, "1.50"},
         {8, &frm_3d.TPS_mix, "1.500"},
         {9, &console.forms.frm_2d.lambda_sp_table, "1.50"},
         {2, &console.forms.frm_sup.GPO_tbl[1], "1.50"},
         {13, &console.forms.frm_sup.boost_gpo[3], "1.50"}}};
    dialog.set_value.set_text("1.5");
    for (const auto& [id, grid, text] : cases) {
        grid->set_locked(false); // as after its opening read
        console.block_selection.anchor_at(9, 1);
        console.block_selection.end_at(8, 2);
        console.block_selection.take(id, *grid);
        run(CellOperation::set_all);
        EXPECT_EQ(grid->cell_text(8, 2), text) << id;
        EXPECT_NE(grid->cell_text(7, 1), text) << id;
    }
    console.block_selection.block_table_id = 5; // no table
    run(CellOperation::set_all);
}

TEST_F(BlockModifier, MouseReleasedOutsideTheGridKeepsTheRightButtonFromOpening) {
    open_offline();
    auto& grid = frm_3d.ign_map;
    grid.set_mouse_cell(3, 4);
    grid.mouse_down(MouseButton::left);
    grid.set_mouse_cell(-1, 6);
    grid.mouse_up(MouseButton::left);
    grid.mouse_down(MouseButton::right);
    EXPECT_FALSE(dialog.form.visible());
    grid.set_mouse_cell(2, 6);
    grid.mouse_up(MouseButton::left);
    grid.mouse_down(MouseButton::right);
    EXPECT_TRUE(dialog.form.visible());
    const auto& block = console.block_selection;
    EXPECT_THAT((std::array{block.block_row_low, block.block_row_high, block.block_col_low, block.block_col_high}),
                testing::ElementsAre(2, 3, 4, 6));
    EXPECT_EQ(block.block_table_id, 6);
    // The corners serve whatever grid the right button is pressed on next.
    dialog.form.hide();
    frm_3d.inj_map.mouse_down(MouseButton::right);
    EXPECT_EQ(block.block_table_id, 0);
    EXPECT_EQ(block.block_col_high, 6);
    frm_3d.show_this_graph.press();
    frm_3d.exit_button.press();
    EXPECT_FALSE(dialog.form.visible() || console.forms.frm_3d_graph.form.visible()) << "left behind by their window";
}

} // namespace
} // namespace ecu::test
