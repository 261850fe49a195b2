// Undo, redo and revert in the map window: one list for the boxes and the grids of an editor.
#include "maps/map_bench.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

using platform::pending;

struct UndoTest : MapBench, testing::Test {
    UndoTest() {
        memory[0x0100] = 128; // bottom left: 1.000
        open();
        before = frm_3d.inj_map.cell_back(16, 1); // its shading
    }
    void edit(std::string_view item) {
        desktop.run_for(3); // a new value, not further keys of the last
        frm_3d.form.get<platform::MenuItem>(item).click();
        desktop.run_for(0.01);
    }
    void undo() { edit("menu_edit_undo"); }
    void redo() { edit("menu_edit_redo"); }
    void type(std::string_view text) {
        frm_3d.inj_map.set_cell_text(16, 1, text);
        desktop.run_for(0.01);
    }
    bool offered(std::string_view item) const { return frm_3d.form.at(item).enabled(); }
    bool yellow() const { return frm_3d.inj_map.cell_pending(16, 1); }
    std::optional<platform::Colour> before;
};

TEST_F(UndoTest, TakesKeysOfOneValueBackAtOnceToWhatTheControllerConfirmed) {
    EXPECT_FALSE(offered("menu_edit_undo"));
    EXPECT_FALSE(offered("menu_edit_revert"));
    type("1");
    type("1.");
    type("1.1");
    EXPECT_EQ(frm_3d.inj_map.remark(16, 1), "was 1.000, +10.0 %");
    undo();
    EXPECT_EQ(fuel(16, 1), "1.000");
    EXPECT_EQ(frm_3d.inj_map.cell_back(16, 1), before);
    EXPECT_EQ(frm_3d.inj_map.remark(16, 1), "");
    redo();
    EXPECT_EQ(fuel(16, 1), "1.1");
    EXPECT_TRUE(yellow());
    EXPECT_FALSE(offered("menu_edit_redo"));
    frm_3d.tps_rpm.set_text("700");
    edit("menu_edit_revert");
    EXPECT_EQ(fuel(16, 1), "1.000");
    EXPECT_FALSE(frm_3d.tps_rpm.is_pending());
    undo(); // the revert
    EXPECT_EQ(fuel(16, 1), "1.1");
    EXPECT_EQ(frm_3d.tps_rpm.text(), "700");
    EXPECT_TRUE(yellow() && frm_3d.tps_rpm.is_pending());
}

TEST_F(UndoTest, MakesAConfirmedCellPendingWithTheOlderValueAndSendsNothing) {
    type("1.1");
    update();
    ASSERT_FALSE(yellow());
    const std::string echoed = fuel(16, 1);
    EXPECT_NE(echoed, "1.000");
    controller.clear_sent();
    undo();
    EXPECT_EQ(controller.count('e'), 0U);
    EXPECT_EQ(fuel(16, 1), "1.000");
    EXPECT_TRUE(yellow());
    update();
    EXPECT_EQ(memory[0x0100], 128);
}

TEST_F(UndoTest, TakesABlockBackAsOneStepAndKeepsAnUnansweredValueYellow) {
    frm_3d.inj_map.paste({15, 1, 16, 2}, "1.5\t1.6\n1.7\t1.8\n");
    desktop.run_for(0.01);
    EXPECT_EQ(fuel(16, 2), "1.8");
    undo();
    EXPECT_FALSE(yellow());
    EXPECT_EQ(fuel(15, 1), frm_3d.inj_map.cell_text(14, 1));
    EXPECT_FALSE(offered("menu_edit_undo"));
    type("1.2");
    controller.silence();
    desktop.on_modal("frm_Dialog", [this](platform::Form&) { console.forms.frm_dialog.dialog_button[0].press(); });
    update();
    controller.speak();
    ASSERT_TRUE(frm_3d.inj_map.cell_unconfirmed(16, 1));
    undo(); // the controller may hold either
    EXPECT_EQ(fuel(16, 1), "1.000");
    EXPECT_TRUE(yellow());
}

} // namespace
} // namespace ecu::test
