#include "maps/map_bench.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

struct Autotune : MapBench, testing::Test {
    autotune::FrmAutotune& screen = console.forms.frm_autotune;

    // A data row of the log, 37 fields, with this time and rpm.
    static std::string row(const char* cpu_t, const char* rpm) {
        std::string text = std::string("10:00:00,") + cpu_t + "," + rpm;
        for (int field = 4; field <= 37; ++field) {
            text += ",1.5";
        }
        return text + "\r\n";
    }
    void load(const std::string& text) {
        desktop.write_file("drive.csv", text);
        desktop.choose_file(desktop.path("drive.csv"));
        screen.menu_load_logfile.click();
    }
};

const std::string header = "Time,CPU_T,RPM\r\nLog Begins on 03-05-2021 10:00:00\r\nLOG_FILE V1.00.02\r\n\r\n";

TEST_F(Autotune, FactorsMultiplyTheMapCellsAndAppearAsTyped) {
    open_offline();
    screen.form.load();
    frm_3d.inj_map.confirm_cell(16, 1, "2"); // index 0, bottom left
    frm_3d.inj_map.confirm_cell(15, 1, "2");
    frm_3d.inj_map.confirm_cell(14, 1, "2");
    frm_3d.inj_map.confirm_cell(13, 1, "no number");
    frm_3d.TPS_map.confirm_cell(1, 16, "1.5"); // index 255, top right
    screen.autotune_inj_factors.set_cell_text(16, 1, "1.1");
    screen.autotune_inj_factors.set_cell_text(15, 1, "x");
    screen.autotune_inj_factors.set_cell_text(14, 1, "none");
    screen.autotune_inj_factors.set_cell_text(13, 1, "2");
    screen.autotune_tps_factors.set_cell_text(1, 16, "0.5");
    screen.apply_to_maps.press();
    EXPECT_EQ(fuel(16, 1) + " " + fuel(15, 1) + " " + fuel(14, 1) + " " + fuel(13, 1) + " " + fuel(12, 1),
              "2.200 2 0.000 0.000 1.000");
    EXPECT_EQ(frm_3d.TPS_map.cell_text(1, 16), "0.750");
    EXPECT_TRUE(frm_3d.inj_map.cell_pending(16, 1));
    EXPECT_FALSE(frm_3d.inj_map.cell_pending(15, 1) || frm_3d.inj_map.cell_pending(12, 1));
    screen.apply_to_maps.press(); // twice multiplies twice
    EXPECT_EQ(fuel(16, 1), "2.420");
    screen.reset_autotune_params.press();
    EXPECT_EQ(screen.autotune_inj_factors.cell_text(16, 1) + screen.autotune_tps_factors.cell_text(1, 16), "");
}

TEST_F(Autotune, TellsHowManyCellsWereAppliedToAndHowOften) {
    screen.form.load();
    screen.apply_to_maps.press();
    EXPECT_EQ(screen.applied.text(), "No cell has a factor to apply");
    editing::write_all(frm_3d.inj_map, "1.000");
    editing::write_at(screen.autotune_inj_factors, 3, "1.1");
    editing::write_at(screen.autotune_inj_factors, 7, "X");
    screen.apply_to_maps.press();
    EXPECT_EQ(screen.applied.text(), "Applied to 1 cell");
    screen.apply_to_maps.press();
    EXPECT_EQ(screen.applied.text(), "Applied to 1 cell (2nd time)");
    for (int i = 0; i < 9; ++i) {
        screen.apply_to_maps.press();
    }
    EXPECT_EQ(screen.applied.text(), "Applied to 1 cell (11th time)");
    screen.reset_autotune_params.press();
    EXPECT_EQ(screen.applied.text(), "");
}

TEST_F(Autotune, NoFactorMakesZeroFuelOfWhatIsInfiniteOrWasNeverRead) {
    open_offline();
    screen.form.load();
    frm_3d.inj_map.confirm_cell(16, 1, "1e30");
    frm_3d.inj_map.confirm_cell(15, 1, "2");
    frm_3d.TPS_map.blank_cell(16, 1);
    screen.autotune_inj_factors.set_cell_text(16, 1, "1e30");
    screen.autotune_inj_factors.set_cell_text(15, 1, "1e39"); // beyond single precision by itself
    screen.autotune_tps_factors.set_cell_text(16, 1, "1.1");
    screen.apply_to_maps.press();
    EXPECT_EQ(fuel(16, 1) + " " + fuel(15, 1) + frm_3d.TPS_map.cell_text(16, 1), "1e30 2");
    EXPECT_FALSE(frm_3d.inj_map.cell_pending(16, 1));
    EXPECT_TRUE(frm_3d.TPS_map.cell_unread(16, 1));
}

TEST_F(Autotune, OpensInPlaceOfTheMapsWithPollingPausedAndKeepsFactorsWhenLeft) {
    open_offline();
    const auto visit = [this](const std::function<void()>& action) {
        desktop.on_modal("frm_autotune", [this, action](platform::Form&) {
            EXPECT_TRUE(console.state.polling_paused);
            EXPECT_FALSE(frm_3d.form.visible());
            action();
        });
        frm_3d.menu_autotune.click();
        EXPECT_TRUE(frm_3d.form.visible());
        EXPECT_FALSE(screen.form.visible() || console.state.polling_paused);
    };
    visit([this] {
        EXPECT_EQ(screen.autotune_inj_factors.column_width(0), 0);
        screen.autotune_inj_factors.set_cell_text(3, 3, "1.2");
        screen.exit_button.press();
    });
    visit([this] { screen.form.close_requested(); });
    EXPECT_EQ(screen.autotune_inj_factors.cell_text(3, 3), "1.2");
    EXPECT_EQ(fuel(3, 3), "1.000"); // the maps were not read again
}

TEST_F(Autotune, ALogLoadsInSilenceAndChangesNothing) {
    screen.form.load();
    screen.autotune_inj_factors.set_cell_text(16, 1, "1.1");
    load(header);
    load(header + row("36000.10", "3000") + row("36000.10", "3100") + row("36000.20", "3200"));
    load(header + "10:00:00,1"); // cut off inside its first row
    load("one line only");
    desktop.choose_file(desktop.path("missing.csv"));
    screen.menu_load_logfile.click();
    for (const char* cancelled : {"", "*.CSV"}) {
        desktop.choose_file(cancelled);
        screen.menu_load_logfile.click();
    }
    EXPECT_TRUE(desktop.boxes().empty());
    EXPECT_EQ(screen.autotune_inj_factors.cell_text(16, 1), "1.1");
    EXPECT_EQ(desktop.file_dialogs()[0].filter, "Setup Files (*.csv)|");

    desktop.expect_box("Incompatible log file for this version of Autotune");
    load("a\r\nb\r\nLOG_FILE V1.00.01\r\n\r\n");
    EXPECT_EQ(desktop.boxes().size(), 1U);
}

TEST_F(Autotune, TheRowRoutineFaultsWithoutATimeStepAndEmptiesCellZeroWithOne) {
    screen.form.load();
    screen.autotune_tps_factors.set_cell_text(16, 1, "1.1");
    autotune::LogRow still{.dt = 0, .ego_sp = 1};
    EXPECT_FALSE(console.autotune.autotune_routine(still));
    EXPECT_EQ(still.ego_sp, 1);
    EXPECT_EQ(screen.autotune_tps_factors.cell_text(16, 1), "1.1");
    autotune::LogRow moving{.dt = 86399, .d_rpm = 10};
    EXPECT_TRUE(console.autotune.autotune_routine(moving));
    EXPECT_EQ(moving.ego_sp, 0.8F);
    EXPECT_EQ(screen.autotune_tps_factors.cell_text(16, 1), "");
}

} // namespace
} // namespace ecu::test
