#include "views/dashboard.h"

#include "support/live_bench.h"

#include <gmock/gmock.h>

namespace ecu::views {
namespace {

using platform::Gauge;
using test::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

struct DashboardBench : test::LiveBench {
    FrmDashboard form;
    Dashboard dashboard{ports, state, comm, navigation, scales, live, form};

    // The frames that Update sends for one trim's text.
    std::vector<Bytes> update(platform::TextBox& box, std::string_view text) {
        sent();
        box.set_text(text);
        dashboard.update();
        return sent();
    }
    std::vector<std::size_t> lit() const {
        std::vector<std::size_t> lamps;
        for (std::size_t i = 0; i < lamp_count; ++i) {
            if (form.afr_led[i].back_colour() != lamp_dark) {
                lamps.push_back(i);
            }
        }
        return lamps;
    }
};

TEST(Dashboard, AsksForTrimsAndLimitsWithThePollingHeldBackBeforeItIsTheOpenView) {
    DashboardBench bench;
    std::vector<bool> held;
    bench.controller.responder = [&](const test::Request& request) {
        held.push_back(bench.state.polling_paused && bench.form.ecu_pgm[1].is_pending());
        return test::reply_frame({request[2]}, bench.sizes[request[2]]);
    };
    bench.state.link_title_suffix = " ->COM3";
    bench.open(bench.form.form);
    EXPECT_EQ(bench.controller.sent_codes(), "\xA3"
                                             "CB");
    EXPECT_THAT(held, ElementsAre(true, true, true));
    EXPECT_FALSE(bench.state.polling_paused);
    EXPECT_TRUE(bench.form.base_offset_deg.is_pending()); // nothing here decodes the answer
    EXPECT_EQ(bench.form.form.caption(), "Dashboard ->COM3");
    EXPECT_EQ(bench.form.GPO_duty[3].back_colour(), platform::bright_white);
    EXPECT_EQ(bench.state.current_view, link::View::dashboard);
    bench.form.exit_button.press();
    EXPECT_EQ(bench.state.current_view, link::View::none);
    EXPECT_TRUE(bench.main_form.visible());
}

TEST(Dashboard, LeavingDuringTheOpeningReadsDoesNotLeaveItPolling) {
    DashboardBench bench;
    bench.desktop.schedule(test::to_microseconds(0.15), [&] { bench.form.form.unload(); });
    bench.open(bench.form.form);
    EXPECT_EQ(bench.state.current_view, link::View::none);
    EXPECT_FALSE(bench.state.polling_paused);
}

TEST(Dashboard, SendsNoTrimWhileItReadsThemNorOneThatNobodyHasWritten) {
    DashboardBench bench;
    bool paused = false;
    bench.desktop.schedule(test::to_microseconds(0.2), [&] { // between the yellow and the first reply
        platform::KeyPress enter{.code = platform::key::enter};
        bench.form.base_offset_deg.key_down(enter);
        platform::KeyPress up{.code = platform::key::up, .shift = true};
        bench.form.ecu_pgm[0].key_down(up);
        bench.form.update_button.press();
        paused = bench.state.polling_paused;
    });
    bench.open(bench.form.form);
    EXPECT_TRUE(paused);
    EXPECT_EQ(bench.controller.sent_codes(), "\xA3"
                                             "CB");
    bench.sent();
    bench.form.ecu_pgm[1].confirm("1"); // the only one that a reply fills
    bench.state.polling_paused = true;  // by a sequence around this one
    EXPECT_THAT(bench.update(bench.form.ecu_pgm[1], ""), ElementsAre(Bytes{'o', 0, 0x40, 0}));
    EXPECT_TRUE(bench.state.polling_paused);
    EXPECT_TRUE(bench.form.ecu_pgm[0].is_pending() && bench.form.base_offset_deg.is_pending());
}

TEST(Dashboard, ShowsItsOwnFiguresInDemoMode) {
    DashboardBench bench;
    bench.state.demo_mode = true;
    bench.open(bench.form.form);
    EXPECT_EQ(bench.form.ecu_pgm[0].text(), "10.200");
    EXPECT_EQ(bench.form.ecu_pgm[1].text(), "-.520");
    EXPECT_EQ(bench.form.base_offset_deg.text(), "-8.25");
    EXPECT_FALSE(bench.form.ecu_pgm[1].is_pending());
    EXPECT_EQ(bench.scales.full_scale_rpm, 8000);
    EXPECT_EQ(bench.form.tachometer.scale().full_scale, 8);
}

TEST(Dashboard, ScalesTheTachometerByTheEnginesRange) {
    const std::vector<std::array<float, 3>> rows{{4000, 4, 0.5F}, {4001, 6, 1},   {6000, 6, 1},     {6001, 8, 1},
                                                 {8001, 10, 1},   {10001, 16, 2}, {16000, 16, 2},   {16001, 24, 3},
                                                 {24001, 40, 5},  {40000, 40, 5}, {40001, 50000, 4}};
    for (const auto& [rpm, full_scale, step] : rows) {
        const Gauge::Scale scale = tachometer_scale(rpm);
        EXPECT_EQ(scale.full_scale, full_scale) << rpm;
        EXPECT_EQ(scale.tick_step, step) << rpm;
    }
    EXPECT_FLOAT_EQ(tachometer_scale(10000).zone_b_start, 9.0F);
    EXPECT_FLOAT_EQ(tachometer_scale(10000).zone_a_start, 8.1F);
}

TEST(Dashboard, ScalesTheManifoldGaugeForKnownSensorsAndTheLampsByTheUnit) {
    DashboardBench bench;
    const Gauge::Scale untold = bench.form.manifold_pressure.scale();
    bench.scales.map_span = 300;
    bench.open(bench.form.form);
    EXPECT_EQ(bench.form.manifold_pressure.scale(), untold);
    EXPECT_EQ(bench.form.lambda_label[8].text(), "0.6");
    EXPECT_EQ(bench.form.lambda_label[0].text(), "1.4");
    EXPECT_EQ(bench.form.lambda_val.text(), "= 1.0");
    bench.scales.map_span = 551;
    bench.scales.lambda_scale = 14.7F;
    bench.scales.shows_lambda = false;
    bench.dashboard.activate();
    EXPECT_EQ(bench.form.manifold_pressure.scale(),
              (Gauge::Scale{.full_scale = 650, .tick_step = 65, .zone_a_start = 110, .zone_b_start = 410}));
    EXPECT_EQ(bench.form.lambda_label[8].text(), "8.8");
    EXPECT_EQ(bench.form.lambda_label[0].text(), "20.6");
    EXPECT_EQ(bench.form.lambda_val.text(), "=14.7");
}

TEST(Dashboard, LightsOneLampOfTheBarAndNoneWithoutAReading) {
    for (const auto& [lambda, lamp] : std::vector<std::pair<float, std::size_t>>{
             {1.0F, 8}, {1.6F, 0}, {2.0F, 0}, {0.625F, 16}, {0.6F, 16}, {0.1F, 16}, {0.9F, 10}, {1.1F, 6}}) {
        EXPECT_EQ(lamp_of(lambda), lamp) << lambda;
    }
    // The marks of the scale stand at the lamps that their values light: two at the rich end's last.
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(lamp_of(static_cast<float>(mark_lambda(i))), (std::array{2, 3, 4, 6, 8, 10, 13, 16, 16}[i])) << i;
    }
    DashboardBench bench;
    const auto lit_at = [&](float lambda) {
        bench.live.lambda = lambda;
        bench.dashboard.refresh();
        return bench.lit();
    };
    EXPECT_THAT(lit_at(1.0F), ElementsAre(8U));
    EXPECT_THAT(lit_at(0.6F), ElementsAre(16U));
    EXPECT_THAT(lit_at(0.0F), IsEmpty());
    EXPECT_THAT(lit_at(2.0F), IsEmpty()); // lamp 0 counts as lit after a missing reading, so it stays dark
    EXPECT_THAT(lit_at(1.0F), ElementsAre(8U));
    EXPECT_THAT(lit_at(2.0F), ElementsAre(0U));
}

TEST(Dashboard, MovesTheNeedlesByTheRecordAndShowsOneOutputAtATime) {
    DashboardBench bench;
    bench.live = {.battery_volts = 13.5F, .ego_correction = 1.046875F, .engine_rpm = 3250, .gpo_duty = {1, 2, 3, 4}};
    bench.dashboard.refresh();
    EXPECT_FLOAT_EQ(bench.form.tachometer.value(), 3.25F);
    EXPECT_FLOAT_EQ(bench.form.bat_volts.value(), 13.5F);
    EXPECT_EQ(bench.form.control_ego_gain.text(), "1.047");
    EXPECT_FLOAT_EQ(bench.form.GPO_duty[2].value(), 3);
    bench.form.menu_view_gpo[2].click();
    EXPECT_TRUE(bench.form.GPO_duty[2].visible() && bench.form.menu_view_gpo[2].checked());
    EXPECT_FALSE(bench.form.GPO_duty[0].visible() || bench.form.menu_view_gpo[0].checked());
    for (std::size_t i = 0; i < 3; ++i) {
        bench.form.menu_opts_tach_filt_num[i].click();
        EXPECT_FLOAT_EQ(bench.live.rpm_filter_gain, (std::array{0.2F, 0.5F, 1.0F}[i]));
    }
    EXPECT_FALSE(bench.form.menu_opts_tach_filt_num[0].checked());
}

TEST(Trims, GoOutInTicksAndQuarterDegreesAtTheirBoundaries) {
    DashboardBench bench;
    platform::TextBox& scaler = bench.form.ecu_pgm[0];
    platform::TextBox& offset = bench.form.ecu_pgm[1];
    platform::TextBox& timing = bench.form.base_offset_deg;
    EXPECT_THAT(bench.update(scaler, "10.2"), ElementsAre(Bytes{'m', 0xE7, 0x18, 0})); // 6375
    EXPECT_FALSE(scaler.is_pending());
    EXPECT_THAT(bench.update(scaler, "0"), ElementsAre(Bytes{'m', 0, 0, 0}));
    EXPECT_THAT(bench.update(scaler, "500"), ElementsAre(Bytes{'m', 0xFF, 0xFF, 0})); // held, never wrapped
    EXPECT_THAT(bench.update(offset, "-26.2144"), ElementsAre(Bytes{'o', 0, 0, 0}));
    EXPECT_THAT(bench.update(offset, "-.52"), ElementsAre(Bytes{'o', 0xBB, 0x3E, 0})); // 16384 - 325
    EXPECT_THAT(bench.update(offset, "52.4272"), ElementsAre(Bytes{'o', 0xFF, 0xBF, 0}));
    EXPECT_THAT(bench.update(timing, "-8.25"), ElementsAre(Bytes{164, 31, 0, 0}));
    EXPECT_THAT(bench.update(timing, "50"), ElementsAre(Bytes{164, 255, 0, 0}));
    EXPECT_EQ(timing.text(), "47.75");
    EXPECT_THAT(bench.update(timing, "-99"), ElementsAre(Bytes{164, 0, 0, 0}));
    EXPECT_EQ(timing.text(), "-16");
}

TEST(Trims, ARefusedOneKeepsItsTextAndTheOthersStillGoOut) {
    DashboardBench bench;
    bench.desktop.expect_box("The value for the Fuel Scaler is negative, it will not be updated");
    bench.desktop.expect_box("The value for the Fuel Offset is too high, it will not be updated");
    bench.form.ecu_pgm[0].set_text("-0.01");
    bench.form.ecu_pgm[1].set_text("52.4288");
    bench.form.base_offset_deg.set_text("0");
    bench.form.update_button.press();
    EXPECT_THAT(bench.sent(), ElementsAre(Bytes{164, 64, 0, 0}));
    EXPECT_TRUE(bench.form.ecu_pgm[0].is_pending() && bench.form.ecu_pgm[1].is_pending());
    EXPECT_EQ(bench.form.ecu_pgm[1].text(), "52.4288");
    bench.form.ecu_pgm[0].confirm("1");
    bench.form.base_offset_deg.confirm("0");
    bench.desktop.expect_box("The value for the Fuel Offset is too negative, it will not be updated");
    EXPECT_THAT(bench.update(bench.form.ecu_pgm[1], "-26.22"), IsEmpty());
}

TEST(Trims, NothingMoreGoesToAnotherControllerUntilTheDashboardIsOpenedAgain) {
    DashboardBench bench;
    bench.sizes.insert({{'R', 5}, {'-', 6}});
    bench.open(bench.form.form);
    bench.form.ecu_pgm[0].confirm("1");
    bench.form.ecu_pgm[1].confirm("1");
    bench.form.base_offset_deg.confirm("1");
    bench.form.ecu_pgm[0].set_text("2");
    bench.form.ecu_pgm[1].set_text("2");
    bench.sent();
    bench.controller.responder = [&](const test::Request& request) -> test::Bytes {
        if (request[2] == 'm') { // its reply is lost with the port
            bench.desktop.line().unplug();
            bench.desktop.line().plug_in();
            return {};
        }
        return test::reply_frame({request[2]}, bench.sizes.at(request[2]));
    };
    bench.desktop.expect_box("The update has stopped: the port was lost");
    bench.form.update_button.press();
    EXPECT_EQ(bench.sent().front(), (Bytes{'m', 0xE2, 0x04, 0}));
    EXPECT_TRUE(bench.form.ecu_pgm[1].is_pending());
    bench.form.update_button.press();
    EXPECT_THAT(bench.sent(), IsEmpty());
    EXPECT_THAT(bench.form.trim_status.text(), testing::HasSubstr("another controller may answer"));
    bench.dashboard.activate();
    bench.desktop.run_for(1);
    EXPECT_THAT(bench.form.trim_status.text(), testing::Not(testing::HasSubstr("another controller")));
}

TEST(Trims, EnterAndTheShiftedArrowKeysUpdate) {
    DashboardBench bench;
    const auto press = [&](platform::TextBox& box, int code, bool shift) {
        platform::KeyPress key{.code = code, .shift = shift};
        box.key_down(key);
        return bench.sent();
    };
    bench.form.ecu_pgm[0].confirm("1");
    EXPECT_THAT(press(bench.form.ecu_pgm[0], platform::key::enter, false), IsEmpty()); // unchanged
    EXPECT_THAT(press(bench.form.ecu_pgm[0], platform::key::up, false), IsEmpty());
    EXPECT_THAT(press(bench.form.ecu_pgm[0], platform::key::up, true), ElementsAre(Bytes{'m', 0xB0, 0x02, 0}));
    EXPECT_EQ(bench.form.ecu_pgm[0].text(), "1.100");
    bench.form.ecu_pgm[1].confirm("0");
    EXPECT_THAT(press(bench.form.ecu_pgm[1], platform::key::down, true), ElementsAre(Bytes{'o', 0xC2, 0x3F, 0}));
    EXPECT_EQ(bench.form.ecu_pgm[1].text(), "-.100");
    bench.form.base_offset_deg.set_text("1");
    EXPECT_THAT(press(bench.form.base_offset_deg, platform::key::up, true), IsEmpty());
    EXPECT_THAT(press(bench.form.base_offset_deg, platform::key::enter, false), ElementsAre(Bytes{164, 68, 0, 0}));
}

// Thirty repeats a second for two seconds: the engine follows, one message after the other, up to the last step.
TEST(Trims, AHeldKeyUpdatesOneAfterTheOtherAndTheEngineFollowsIt) {
    DashboardBench bench;
    bench.open(bench.form.form);
    bench.form.ecu_pgm[0].confirm("1");
    bench.sent();
    std::size_t while_held = 0;
    const auto in = [&](double seconds) { return test::to_microseconds(bench.desktop.seconds() + seconds); };
    for (int i = 0; i < 60; ++i) {
        bench.desktop.schedule(in(i / 30.0), [&] {
            platform::KeyPress up{.code = platform::key::up, .shift = true};
            bench.form.ecu_pgm[0].key_down(up);
        });
    }
    bench.desktop.schedule(in(1.5), [&] { while_held = bench.controller.messages().size(); });
    bench.desktop.run_for(4);
    const auto messages = bench.sent();
    EXPECT_GE(while_held, 5U);
    EXPECT_LE(messages.size(), 30U);
    EXPECT_EQ(messages.back(), (Bytes{'m', 0x17, 0x11, 0})); // 7.0 ms
    EXPECT_FALSE(bench.state.polling_paused);
    EXPECT_EQ(bench.form.ecu_pgm[0].text(), "7.000");
    // The last press of all, made while its forerunner was on the line.
    int requests = 0;
    bench.controller.responder = [&](const test::Request& request) {
        if (++requests == 1) {
            bench.desktop.post([&] {
                platform::KeyPress up{.code = platform::key::up, .shift = true};
                bench.form.ecu_pgm[0].key_down(up);
            });
        }
        return test::reply_frame({request[2]}, bench.sizes[request[2]]);
    };
    bench.form.base_offset_deg.set_text("2");
    bench.form.update_button.press();
    bench.desktop.run_for(2);
    EXPECT_THAT(bench.sent(), testing::Contains(Bytes{'m', 0x56, 0x11, 0})); // 7.1 ms
}

TEST(Trims, WhatWasNeverReadIsToldHatchedAndReadAgain) {
    DashboardBench bench;
    bench.open(bench.form.form);
    EXPECT_EQ(bench.form.trim_status.text(), "3 values not read: read again"); // nothing here decodes the answers
    bench.form.ecu_pgm[0].confirm("1");
    bench.form.ecu_pgm[1].set_text("2");
    bench.sent();
    bench.form.read_again.press();
    EXPECT_THAT(bench.sent(), ElementsAre(Bytes{163, '0', '0', '0'}));
    EXPECT_EQ(bench.form.ecu_pgm[1].text(), "2");
    EXPECT_EQ(bench.form.trim_status.text(), "1 value not read: read again; 1 value pending");
    bench.form.base_offset_deg.confirm("1");
    bench.desktop.run_for(0.1);
    EXPECT_FALSE(bench.form.read_again.enabled());
    // The text of the last opening is no value either.
    bench.dashboard.activate();
    EXPECT_EQ(bench.form.ecu_pgm[0].text(), "1");
    bench.sent();
    bench.form.update_button.press();
    EXPECT_THAT(bench.sent(), IsEmpty());
}

TEST(KillSwitches, SendTheirMessageAtEachClick) {
    DashboardBench bench;
    bench.form.kill_timing.click();
    bench.form.kill_timing.click();
    bench.form.kill_ego.click();
    bench.form.kill_ego.click();
    EXPECT_THAT(bench.sent(), ElementsAre(Bytes{169, 165, 0, 0}, Bytes{169, 0, 0, 0}, Bytes{'D', '0', '0', '0'},
                                          Bytes{'d', '0', '0', '0'}));
}

} // namespace
} // namespace ecu::views
