#include "maps/map_bench.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

using platform::pending;
using testing::ElementsAre;
using testing::HasSubstr;

struct BasicMapping : MapBench, testing::Test {};

platform::KeyPress shift(int code) { return {.code = code, .shift = true}; }

TEST_F(BasicMapping, OpeningReadAsksForBoxesThenFourMapsInBlocksOf32AndShowsWhatCame) {
    memory[0x0100] = 128; // bottom left
    memory[0x01FF] = 64;  // top right
    memory[0x0611] = 104; // row 15, column 2
    memory[0x0800] = 64;
    words['o'] = {0xB8, 0x3E}; // 16056 - 16384 = -328
    words['m'] = {0xE7, 0x18}; // 6375
    words['z'] = {0xFF, 0x03}; // full scale
    std::string progress;
    controller.set_reply_delay(0.07); // longer than the label stands still
    on_request = [&](const Request& request) {
        if (request[2] == 'l' && request[4] == 6 && request[3] == 0x60) {
            progress = frm_3d.map_status.text() + (frm_3d.ign_map.visible() ? " shown" : "");
        }
    };
    const auto messages = sent_by([this] {
        console.navigation.open(link::View::basic_mapping);
        desktop.run_for(3);
    });
    ASSERT_EQ(messages.size(), 3U + 32U);
    EXPECT_EQ(messages[1], (Bytes{'B', '0', '0', '0'}));
    EXPECT_EQ(messages[2], (Bytes{'Z', '0', '0', '0'}));
    EXPECT_EQ(messages[3], (Bytes{'l', 0x00, 0x01, 0}));
    EXPECT_EQ(messages[4], (Bytes{'l', 0x20, 0x01, 0}));
    EXPECT_EQ(messages[11], (Bytes{'l', 0x00, 0x06, 0}));
    EXPECT_EQ(messages[19], (Bytes{'l', 0x00, 0x07, 0}));
    EXPECT_EQ(messages[34], (Bytes{'l', 0xE0, 0x08, 0}));
    EXPECT_EQ(progress, "Reading ignition map, block 3 of 8 shown");

    EXPECT_EQ(fuel(16, 1), "1.000");
    EXPECT_EQ(fuel(1, 16), ".500");
    EXPECT_EQ(frm_3d.ign_map.cell_text(15, 2), "10.00");
    EXPECT_EQ(frm_3d.TPS_mix.cell_text(16, 1), "100.0");
    EXPECT_EQ(frm_3d.ecu_pgm[0].text(), "10.200");
    EXPECT_EQ(frm_3d.ecu_pgm[1].text(), "-0.525");
    EXPECT_EQ(frm_3d.tps_rpm.text(), "10000");
    EXPECT_FALSE(frm_3d.tps_rpm.is_pending());
    EXPECT_TRUE(frm_3d.inj_map.visible() && frm_3d.update_button.enabled());
    EXPECT_EQ(frm_3d.Label6[3].text(), "3750");
    EXPECT_EQ(frm_3d.Label5[1].text(), "17"); // 115 / 16 + 10 cut off
    EXPECT_EQ(frm_3d.map_status.text(), "No values pending");
    EXPECT_FALSE(console.state.polling_paused);
    EXPECT_EQ(frm_3d.form.caption(), "Basic Mapping ->COM3");
    EXPECT_TRUE(sent_by([this] { frm_3d.form.activate(); }).empty()); // a second activation reads nothing
}

TEST_F(BasicMapping, UpdateSendsExactlyWhatWasChangedInItsOrderAndTheEchoesWhiten) {
    open();
    frm_3d.TPS_mix.set_cell_text(16, 1, "150");
    frm_3d.TPS_map.set_cell_text(16, 2, "9");
    frm_3d.ign_map.set_cell_text(1, 1, "50");
    frm_3d.ign_map.set_cell_text(2, 1, "-20");
    frm_3d.inj_map.set_cell_text(15, 1, "1.996 rich");
    frm_3d.inj_map.set_cell_text(16, 1, ""); // sent as 0
    frm_3d.tps_rpm.set_text("5000");
    frm_3d.ecu_pgm[1].set_text("-.525");
    frm_3d.ecu_pgm[0].set_text("70");
    desktop.run_for(0.01);
    EXPECT_EQ(
        frm_3d.map_status.text(),
        "9 values pending: Boxes 3, Fuel 2, Ignition 2, TPS fuel 1, TPS mix 1; 1 is no number and would be sent as 0; "
        "1 is no number and would be sent without the rest");
    bool refreshed_white = false;
    on_request = [&](const Request& request) {
        refreshed_white = refreshed_white || (request[2] == 'z' && !frm_3d.ecu_pgm[0].is_pending());
    };
    EXPECT_THAT(update(), ElementsAre(Bytes{'m', 0xE6, 0xAA, 0}, Bytes{'o', 0xB8, 0x3E, 0}, Bytes{'z', 0x00, 0x02, 0},
                                      Bytes{'e', 0, 1, 0}, Bytes{'e', 1, 1, 255}, Bytes{'e', 14, 6, 0},
                                      Bytes{'e', 15, 6, 255}, Bytes{'e', 16, 7, 255}, Bytes{'e', 0, 8, 64}));
    EXPECT_TRUE(refreshed_white);
    EXPECT_EQ(frm_3d.ign_map.cell_text(1, 1), "47.75");
    EXPECT_EQ(frm_3d.ign_map.cell_text(2, 1), "-16.00");
    EXPECT_EQ(frm_3d.TPS_mix.cell_text(16, 1), "100.0");
    EXPECT_EQ(frm_3d.ecu_pgm[0].text(), "70.000");
    EXPECT_EQ(frm_3d.map_status.text(), "No values pending; 9 sent, 4 held to their limits: -20 is -16.00");
    EXPECT_TRUE(update().empty());
}

TEST_F(BasicMapping, RefusedValuesAreNamedOneByOneAndTheOthersStillGo) {
    open();
    frm_3d.ecu_pgm[0].set_text("-1");
    frm_3d.ecu_pgm[1].set_text("52.5"); // 32812.5 + 16384
    frm_3d.tps_rpm.set_text("10010");   // 1024.02
    frm_3d.inj_map.set_cell_text(16, 1, "2.0");
    frm_3d.inj_map.set_cell_text(15, 1, "1.9999"); // rounds to 256 as well
    frm_3d.inj_map.set_cell_text(14, 1, "-1");
    frm_3d.inj_map.set_cell_text(13, 1, "1");
    const std::string too_high = "A MAP Gain cell has been found that is too high, it will not be updated";
    const std::vector<std::string> texts{"The value for the Fuel Scaler is negative, it will not be updated",
                                         "The value for the Fuel Offset is too high, it will not be updated",
                                         "The value for the TPS Map cut-in RPM was too high, it will not be updated",
                                         too_high,
                                         too_high,
                                         "A MAP Gain cell has been found that is negative, it will not be updated"};
    for (const std::string& text : texts) {
        desktop.expect_box(text);
    }
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 3, 1, 128}));
    EXPECT_EQ(desktop.box_texts(), texts);
    EXPECT_TRUE(frm_3d.ecu_pgm[1].is_pending() && frm_3d.tps_rpm.is_pending());
    EXPECT_FALSE(frm_3d.inj_map.cell_pending(16, 1)); // the shading takes the yellow of a refused cell
    EXPECT_EQ(fuel(16, 1), "2.0");
    EXPECT_EQ(frm_3d.map_status.text(), "3 values pending: Boxes 3; 6 not taken");

    frm_3d.ecu_pgm[0].set_text("1");
    frm_3d.ecu_pgm[1].set_text("-27"); // 16384 - 16875
    frm_3d.tps_rpm.set_text("-5");
    desktop.expect_box("The value for the Fuel Offset is too negative, it will not be updated");
    EXPECT_THAT(update(), ElementsAre(Bytes{'m', 0x71, 0x02, 0}, Bytes{'z', 0, 0, 0}));
}

TEST_F(BasicMapping, EnterInsideAnUpdateWalksOnceMoreAndBeforeTheMapsAreReadDoesNothing) {
    const auto enter = [this] {
        platform::KeyPress key{.code = 13};
        frm_3d.inj_map.key_press(key);
    };
    on_request = [&](const Request&) { enter(); };
    open();
    EXPECT_EQ(memory, decltype(memory){}); // no empty cell went out as 0 over a real one
    on_request = [&](const Request& request) {
        if (request[2] == 'e' && request[3] == 1) {
            frm_3d.inj_map.set_cell_text(16, 1, ".5"); // behind the walk
            enter();
        }
    };
    frm_3d.inj_map.set_cell_text(16, 1, "1");
    frm_3d.inj_map.set_cell_text(15, 1, "1");
    EXPECT_THAT(sent_by(enter), ElementsAre(Bytes{'e', 0, 1, 128}, Bytes{'e', 1, 1, 128}, Bytes{'e', 0, 1, 64}));
}

TEST_F(BasicMapping, CellTypedBehindTheWalkStaysYellowAndOneAheadOfItIsSent) {
    open();
    on_request = [&](const Request& request) {
        if (request[2] == 'e' && request[3] == 1) {
            frm_3d.inj_map.set_cell_text(16, 1, ".5");
            frm_3d.TPS_mix.set_cell_text(1, 16, "50");
        }
    };
    frm_3d.inj_map.set_cell_text(15, 1, "1");
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 1, 1, 128}, Bytes{'e', 255, 8, 32}));
    EXPECT_TRUE(frm_3d.inj_map.cell_pending(16, 1));
    EXPECT_EQ(fuel(16, 1) + " " + frm_3d.map_status.text(), ".5 1 value pending: Fuel 1");
    EXPECT_THAT(update(), ElementsAre(Bytes{'e', 0, 1, 64}));
}

TEST_F(BasicMapping, UpdateSendsNothingToAnotherControllerThatWasPluggedInMeanwhile) {
    open();
    for (const int column : {1, 2, 3}) {
        frm_3d.inj_map.set_cell_text(1, column, "0.5");
    }
    on_request = [&, writes = 0](const test::Request& request) mutable {
        if (request[2] == 'e' && ++writes == 2) { // its reply is lost with the port
            desktop.line().unplug();
            desktop.line().plug_in();
            memory.fill(0);
        }
    };
    controller.reply_to('R', test::reply_frame({'R', 100, 0}));
    controller.reply_to('-', test::reply_frame({'-', 5, 0, 0}));
    desktop.expect_box("The update has stopped: the port was lost");
    const std::vector<test::Bytes> sent = update();
    ASSERT_EQ(sent.size(), 4U);
    EXPECT_EQ(sent[2][0], 'R');
    EXPECT_EQ(sent[3][0], '-');
    EXPECT_EQ(std::ranges::count(memory, 64), 1) << "the write whose reply was lost; the cell behind it never";
    EXPECT_FALSE(console.state.polling_paused);
    on_request = nullptr;
    EXPECT_THAT(frm_3d.map_status.text(), testing::HasSubstr("2 values pending: Fuel 2"));
    EXPECT_THAT(update(), testing::IsEmpty()) << "what is shown is not what that one holds";
    EXPECT_THAT(frm_3d.map_status.text(), testing::HasSubstr("another controller may answer"));
    frm_3d.exit_button.press();
    open();
    frm_3d.inj_map.set_cell_text(1, 1, "0.5");
    EXPECT_EQ(update().front()[0], 'e');
}

TEST_F(BasicMapping, LeavingDuringAnUpdateSendsItsRestAndOpeningAgainReadsInstead) {
    open();
    on_request = [&](const Request& request) {
        if (request[2] == 'e' && request[3] == 0 && request[4] == 1) {
            desktop.post([this] { frm_3d.exit_button.press(); });
        } else if (request[2] == 'e' && request[5] == 255) {
            desktop.post([this] { frm_3d.form.show(); });
        }
    };
    maps::write_all(frm_3d.inj_map, "1");
    EXPECT_EQ(update().size(), 256U);
    EXPECT_FALSE(frm_3d.form.visible() || console.state.polling_paused);
    open();
    frm_3d.ign_map.set_cell_text(16, 1, "10");
    frm_3d.inj_map.set_cell_text(16, 1, "1");
    frm_3d.inj_map.set_cell_text(15, 1, "1.992");
    EXPECT_THAT(update(), testing::Not(testing::Contains(Bytes{'e', 0, 6, 104})));
    EXPECT_EQ(frm_3d.ign_map.cell_text(16, 1), "-16.00");
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(BasicMapping, DemoModeShowsItsDefaultsWithoutAMessage) {
    open_offline();
    EXPECT_EQ(controller.sent().size(), 0U);
    EXPECT_EQ(fuel(1, 1), "1.000");
    EXPECT_EQ(frm_3d.TPS_map.cell_text(8, 8), "0.00");
    EXPECT_EQ(frm_3d.ecu_pgm[0].text() + " " + frm_3d.ecu_pgm[1].text() + " " + frm_3d.tps_rpm.text(),
              "10.200 -.525 300");
    EXPECT_EQ(frm_3d.tps_rpm.back_colour(), platform::confirmed);
    EXPECT_EQ(frm_3d.inj_map.cell_back(1, 1), (platform::Colour{0x80, 0xFF, 0x80})); // one value only
}

TEST_F(BasicMapping, ShadingSplitsTheRangeInEighthsEachUpperEdgeIncluded) {
    open_offline();
    maps::write_all(frm_3d.inj_map, "0");
    const std::array<std::pair<const char*, int>, 7> cases{
        {{"1", 7}, {"1.001", 6}, {"2", 6}, {"4", 4}, {"6.999", 1}, {"7.001", 0}, {"8", 0}}};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        maps::write_at(frm_3d.inj_map, static_cast<int>(i), cases[i].first);
    }
    console.basic_mapping.shade_fuel_map(0, 0);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto wanted = frm_3d.bk_color[static_cast<std::size_t>(cases[i].second)].back_colour();
        EXPECT_EQ(frm_3d.inj_map.cell_back(16 - static_cast<int>(i), 1), wanted) << cases[i].first;
        EXPECT_EQ(console.map_cell_colours.maps[0][i], wanted);
    }
    console.basic_mapping.shade_fuel_map(0, 16); // a given range
    EXPECT_EQ(frm_3d.inj_map.cell_back(10, 1), frm_3d.bk_color[4].back_colour());
    // 0.375 times the single-precision 0.8 lies below the single-precision 0.3, and is it once rounded.
    maps::write_all(frm_3d.TPS_map, "0.3");
    console.basic_mapping.shade_tps_map(0, 0.8F);
    EXPECT_EQ(frm_3d.TPS_map.cell_back(1, 1), frm_3d.bk_color[5].back_colour());
}

TEST_F(BasicMapping, KeysStepWithinTheirOddLimits) {
    open_offline();
    const auto press = [](platform::Grid& grid, const char* text, int code) {
        grid.set_active_cell(3, 3);
        grid.set_cell_text(3, 3, text);
        grid.set_cell_back(3, 3, platform::confirmed);
        platform::KeyPress key = shift(code);
        grid.key_down(key);
        EXPECT_EQ(key.code, 16);
        EXPECT_TRUE(grid.cell_pending(3, 3));
        return grid.cell_text(3, 3);
    };
    EXPECT_EQ(press(frm_3d.inj_map, "1.99", 38), "1.992");
    EXPECT_EQ(press(frm_3d.inj_map, ".5", 40), ".492");
    EXPECT_EQ(press(frm_3d.ign_map, "0.10", 40), "0.00"); // not down to -16
    EXPECT_EQ(press(frm_3d.ign_map, "47.6", 38), "47.75");
    EXPECT_EQ(press(frm_3d.TPS_mix, "100", 38), "1.992"); // the fuel map's limits, not percent
    frm_3d.ecu_pgm[1].set_text("-15.95");
    platform::KeyPress down = shift(40);
    frm_3d.ecu_pgm[1].key_down(down);
    EXPECT_EQ(frm_3d.ecu_pgm[1].text(), "-16.000");
    platform::KeyPress up{.code = 38};
    desktop.clear_changes();
    frm_3d.ecu_pgm[0].key_down(up);
    EXPECT_EQ(desktop.changes("frm_3d", "tps_rpm", platform::Property::focus), 1);
    EXPECT_FALSE(frm_3d.tps_rpm.key_down);
}

TEST_F(BasicMapping, ResetWritesAWholeMapAfterAYesAndSendsNothing) {
    open_offline();
    desktop.answer_box("overwrite the Ignition table", platform::Answer::no);
    desktop.answer_box("this function will overwrite the Fuel table, continue?", platform::Answer::yes);
    frm_3d.ign_map.set_cell_text(1, 1, "7");
    frm_3d.inj_map.set_cell_text(1, 1, "7");
    frm_3d.menuresetmap_Ign.click();
    frm_3d.menuresetmap_fuel.click();
    EXPECT_EQ(frm_3d.ign_map.cell_text(1, 1) + " " + fuel(1, 1), "7 1.000");
    EXPECT_EQ(maps::pending_cells(frm_3d.inj_map), 256);
    EXPECT_EQ(desktop.boxes()[0].title, "CAUTION!");
    EXPECT_EQ(desktop.boxes()[0].preset, platform::Answer::no);
}

TEST_F(BasicMapping, LiveFiguresAndMarkersFollowTheEngine) {
    open_offline();
    console.live = {.lambda = 0.9F,
                    .injector_pw = 0.0081F,
                    .ego_correction = 1.04F,
                    .map_enrichment = 0.95F,
                    .ignition_timing = -6.25F,
                    .engine_rpm = 5000,
                    .map_position = 0.25F,
                    .tps_position = 0.5F};
    console.basic_mapping.refresh_live();
    EXPECT_EQ(frm_3d.AF_condition.text() + " " + frm_3d.base_timing.text() + " " + frm_3d.Inj_pulse_width.text() + " " +
                  frm_3d.control_lambda.text() + " " + frm_3d.mapping_rpm[0].text(),
              "Rich 6.25A 8.100 0.900 5000");
    EXPECT_EQ(frm_3d.map_p_ptr.top(), 3000); // a quarter of 4000 above the bottom
    EXPECT_EQ(frm_3d.map_r_ptr.left(), 2000);
    console.forms.frm_tool.TPS_mapped.set_checked(true);
    console.live.lambda = 1; // keeps what it said
    console.live.engine_rpm = 12000;
    console.basic_mapping.refresh_live();
    EXPECT_EQ(frm_3d.AF_condition.text(), "Rich");
    EXPECT_EQ(frm_3d.map_p_ptr.top(), 2000);
    EXPECT_EQ(frm_3d.map_r_ptr.left(), 4000);
    console.forms.frm_tool.TPS_mapped.set_checked(false);
    frm_3d.show_map_type[2].click();
    console.live.lambda = 1.1F;
    console.basic_mapping.refresh_live();
    EXPECT_EQ(frm_3d.map_p_ptr.top(), 2000); // a TPS map always by the throttle
    EXPECT_EQ(frm_3d.AF_condition.fore_colour(), platform::light_red);
    EXPECT_EQ(frm_3d.Label5[1].text() + frm_3d.Map_dims[0].text(), "6% TPS");
}

} // namespace
} // namespace ecu::test
