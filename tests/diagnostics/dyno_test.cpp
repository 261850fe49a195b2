// Dyno runs driven by the engine model of the virtual controller, and all that can go wrong with one.
#include "diagnostics_bench.h"

#include "diagnostics/dyno_curves.h"

#include <sstream>

namespace ecu::diagnostics {
namespace {

using platform::palette;
using platform::Picture;
using test::Bytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* header =
    "Time,MAP,RPM,Lambda,TPS,CLT,MAT,PW,MAP_Cell,MAP_Rem,RPM_Cell,RPM_Rem,TPS_Cell,TPS_Rem,LambdaSP,MPH,Gear\r\n"
    "Log Begins on 03-05-2021 ";

// A run file whose rows are (seconds, rpm).
std::string run_file(const std::vector<std::pair<std::string, std::string>>& rows) {
    std::string text = std::string(header) + "10:00:00\r\nDYNOFILE V1.00.00\r\n\r\n";
    for (const auto& [seconds, rpm] : rows) {
        text += seconds + ",98.0," + rpm + ",1.00,50.0,80,20,5.000,8,0.5,6,0.,3,0.25,1.00,0.0,0\r\n";
    }
    return text;
}

class DynoTest : public test::DiagnosticsBench {
protected:
    DynoTest()
        : DiagnosticsBench({.firmware = {.driving = controller::Driving::pull}, .faults = {}, .pace_baud = 38400}) {
        form.diags_tab.set_current(3);
        form.dyno_plot_screen.resize(1000, 500);
    }
    bool run_until_state(const std::string& state) {
        return desktop.run_until([&] { return form.dyno_stat.text() == state; });
    }
    std::size_t rows_of(const std::string& name) const {
        const std::string text = desktop.read_file(name);
        return static_cast<std::size_t>(std::ranges::count(text, '\n')) - 4;
    }
    void arm_and_finish() {
        form.dyno_arm.press();
        ASSERT_TRUE(run_until_state("Running"));
        ASSERT_TRUE(run_until_state("Finished"));
        desktop.run_for(0.1);
    }
    std::vector<Bytes> dyno_messages() const {
        std::vector<Bytes> messages;
        std::ranges::copy_if(sent, std::back_inserter(messages), [](const Bytes& m) { return m[0] == 3 || m[0] == 4; });
        return messages;
    }
    std::vector<Picture::Line> lines(platform::Colour colour) const {
        std::vector<Picture::Line> result;
        for (const Picture::Stroke& stroke : form.dyno_plot_screen.strokes()) {
            if (const auto* line = std::get_if<Picture::Line>(&stroke); line != nullptr && line->colour == colour) {
                result.push_back(*line);
            }
        }
        return result;
    }
};

TEST_F(DynoTest, RunIsArmedRecordedRowByRowAndBecomesTheFirstReference) {
    EXPECT_FALSE(form.dyno_save.enabled() || form.dyno_ref_file.enabled() || form.dyno_cancel.enabled());
    form.dyno_sample_rate.set_text("50");
    const double start = desktop.seconds();
    form.dyno_arm.press();
    EXPECT_NEAR(desktop.seconds() - start, 0.33, 0.03); // 0.2 s, three messages, 0.1 s
    EXPECT_THAT(sent, ElementsAre(Bytes{3, 0, 0xC4, 0x09}, Bytes{3, 1, 0x40, 0x1F}, Bytes{4, 1, 0, 0}));
    EXPECT_FALSE(form.dyno_arm.enabled() || form.dyno_save.enabled());
    EXPECT_TRUE(form.dyno_cancel.enabled());
    EXPECT_FALSE(console.state.polling_paused);
    ASSERT_TRUE(run_until_state("Armed"));
    EXPECT_EQ(form.dyno_samples.text(), "---");
    ASSERT_TRUE(run_until_state("Running"));
    desktop.run_for(0.2);
    EXPECT_GT(rows_of("dyno_temp.csv"), 2U) << "rows are in the file as they come";
    ASSERT_TRUE(run_until_state("Finished"));
    const std::string text = desktop.read_file("dyno_temp.csv");
    EXPECT_THAT(text, testing::StartsWith(header));
    EXPECT_EQ(text, desktop.read_file("ref_dyno_temp.csv"));
    std::istringstream in(text);
    std::string line;
    int rows = -4;
    double before = -1;
    while (std::getline(in, line)) {
        if (++rows > 0) {
            EXPECT_EQ(std::ranges::count(line, ','), 16);
            EXPECT_GT(std::stod(line), before);
            before = std::stod(line);
        }
    }
    EXPECT_NEAR(before / rows, 0.05, 0.005); // the rate of the box
    EXPECT_TRUE(form.dyno_arm.enabled() && form.dyno_save.enabled() && form.dyno_ref_file.enabled());
    EXPECT_FALSE(form.dyno_cancel.enabled());
    // Newest and reference are the same run: the reference, drawn last, lies on it point for point.
    const auto newest = lines(palette[9]);
    const auto reference = lines(palette[8]);
    ASSERT_THAT(newest, SizeIs(rows));
    ASSERT_THAT(reference, SizeIs(rows));
    for (std::size_t i = 0; i < newest.size(); ++i) {
        EXPECT_EQ(std::tuple(newest[i].x2, newest[i].y2), std::tuple(reference[i].x2, reference[i].y2));
    }
    EXPECT_EQ(
        std::get<Picture::Line>(form.dyno_plot_screen.strokes().at(form.dyno_plot_screen.strokes().size() - 2)).colour,
        palette[7]);
    const auto written = desktop.read_file("dyno_temp.csv");
    desktop.run_for(1); // "Finished" goes on, and nothing more happens
    EXPECT_EQ(desktop.read_file("dyno_temp.csv"), written);
}

TEST(DynoFile, RowHasItsSeventeenFieldsByTheirMasks) {
    messages::EcuLiveData live;
    live.manifold_kpa = 98.25F;
    live.engine_rpm = 1; // the smoothed one has no place here
    live.engine_rpm_raw = 4512;
    live.lambda = 0.875F;
    live.throttle_raw_percent = 101.25F;
    live.throttle_percent = 100;
    live.coolant_temp = -7;
    live.air_temp = 21;
    live.injector_pw = 0.0123456F;
    live.map_cell = 12;
    live.map_rem = 64;
    live.rpm_cell = 7;
    live.rpm_rem = 0;
    live.tps_rem = 127;
    live.ego_lambda_setpoint = 0.9F;
    live.speed_MPH = 55.55F;
    live.gear_number = 4;
    EXPECT_EQ(dyno_row(live, 1005), "1.005,98.3,4512.00,0.88,101.3,-7,21,12.346,12,0.5,7,0.,0,0.99,0.90,55.6,4\r\n");
}

TEST_F(DynoTest, CurvesStandWhereTheRatesOfRisePutThem) {
    desktop.write_file("ref_dyno_temp.csv", run_file({{"0.000", "2500"}, {"1.000", "3600"}, {"2.000", "5500"}}));
    desktop.write_file("dyno_temp.csv", run_file({{"0.000", "2500"},
                                                  {"1.000", "3300"},
                                                  {"1.000", "5252"}, // the same time: the rise before stands
                                                  {"2.000", "5252"},
                                                  {"3.500", "8000"}}));
    form.dyno_trig_rpm[1].set_text("7500");
    form.dyno_plot.press();
    // Reference: rises of 0, 1100 and 1900 rpm/s, so power figures up to 1900 * 5500 / 5252 = 1989.7; the scale is 1.25
    // times that, 2487.1.
    const auto torque = lines(palette[9]);
    ASSERT_THAT(torque, SizeIs(5));
    EXPECT_EQ(torque[0], (Picture::Line{0, 500, 0, 500, palette[9], 1}));
    EXPECT_EQ(torque[1], (Picture::Line{0, 500, 160, 339, palette[9], 1}));    // 800: 500 - 160.8
    EXPECT_EQ(torque[2], (Picture::Line{160, 339, 550, 339, palette[9], 1}));  // 550.4
    EXPECT_EQ(torque[3], (Picture::Line{550, 339, 550, 500, palette[9], 1}));  // no rise
    EXPECT_EQ(torque[4], (Picture::Line{550, 500, 1100, 132, palette[9], 1})); // 1832 in 1.5 s
    const auto power = lines(palette[12]);
    EXPECT_EQ(power[1], (Picture::Line{0, 500, 160, 399, palette[12], 1})); // 800 * 3300 / 5252 = 502.7
    EXPECT_EQ(power[2], (Picture::Line{160, 399, 550, 339, palette[12], 1}));
    EXPECT_EQ(std::get<Picture::Circle>(form.dyno_plot_screen.strokes()[1]),
              (Picture::Circle{0, 500, 20 / 15.0, palette[9]}));
    EXPECT_EQ(form.dyno_plot_screen.strokes().size(), 4U * (5 + 3));
    EXPECT_THAT(form.dyno_peaks.text(), HasSubstr("Newest run: greatest torque figure 1832 at 8000 rpm"));
    EXPECT_THAT(form.dyno_peaks.text(), HasSubstr("Reference: greatest torque figure 1900 at 5500 rpm, greatest power "
                                                  "figure 1990 at 5500 rpm"));
    EXPECT_EQ(form.dyno_plot_screen.left_axis().ticks.back().text, "2487");
    form.dyno_plot_screen.pointed_at(170, 0);
    EXPECT_EQ(form.dyno_reading.text(),
              "3300 rpm: torque figure 800, power figure 503 (reference at 3600 rpm: 1100, 754)");
    form.dyno_plot_screen.resize(500, 250); // the same drawing at another size
    EXPECT_EQ(lines(palette[9])[1], (Picture::Line{0, 250, 80, 170, palette[9], 1}));
    EXPECT_EQ(form.dyno_plot_screen.strokes().size(), 4U * (5 + 3));
}

TEST_F(DynoTest, MissingReferenceLeavesTheAreaUnclearedAtItsOwnScaleAndNothingLeavesItAsItWas) {
    form.dyno_plot_screen.line(1, 2, 3, 4, palette[1]);
    form.dyno_plot.press();
    EXPECT_EQ(form.dyno_plot_screen.strokes().size(), 1U);
    desktop.write_file("dyno_temp.csv", run_file({{"0.000", "2500"}, {"1.000", "3500"}}));
    form.dyno_plot.press();
    EXPECT_EQ(form.dyno_plot_screen.strokes().size(), 1U + 8);
    EXPECT_EQ(lines(palette[9])[1].y2, 100); // 1000 of 1250
}

// A point exactly on the upper edge counts as none before the next, whose rise is lost. With a scale of 1000 that takes
// a rise of 1000 rpm/s.
TEST_F(DynoTest, PointOnTheUpperEdgeTakesTheRiseFromTheNext) {
    const std::vector<DynoSample> samples{{0, 2500}, {1, 3500}, {2, 4400}, {3, 5400}};
    const DynoCurves curves = dyno_curves(samples, {2500, 8000}, 1000, 1000, 500);
    EXPECT_EQ(curves.points[1].torque_y, 0);
    EXPECT_EQ(curves.points[2].torque, 0);
    EXPECT_EQ(curves.points[3].torque, 1000);
}

TEST_F(DynoTest, BadLimitArmsNothingAndKeepsTheLastRun) {
    desktop.write_file("dyno_temp.csv", "kept");
    for (const char* text : {"70000", "-1", "abc", "", "65535.6", "1e99"}) {
        form.dyno_trig_rpm[1].set_text(text);
        desktop.expect_box("End RPM is \"" + std::string(text) + "\"");
        form.dyno_arm.press();
    }
    EXPECT_THAT(dyno_messages(), SizeIs(0));
    EXPECT_EQ(desktop.read_file("dyno_temp.csv"), "kept");
    EXPECT_TRUE(form.dyno_arm.enabled());
    form.dyno_trig_rpm[1].set_text("2500.5"); // to even
    form.dyno_arm.press();
    EXPECT_EQ(dyno_messages().at(1), (Bytes{3, 1, 0xC4, 0x09}));
}

TEST_F(DynoTest, CancelDisarmsBetweenTwoWaitsAndLeavesTheFileOpen) {
    form.dyno_arm.press();
    sent.clear();
    const double start = desktop.seconds();
    form.dyno_cancel.press();
    EXPECT_NEAR(desktop.seconds() - start, 0.41, 0.02);
    EXPECT_THAT(dyno_messages(), ElementsAre(Bytes{4, 0, 0, 0}));
    EXPECT_THAT(sent, SizeIs(1)) << "the poll is paused";
    EXPECT_TRUE(form.dyno_arm.enabled());
    EXPECT_FALSE(form.dyno_cancel.enabled() || form.dyno_save.enabled() || form.dyno_ref_file.enabled());
    form.dyno_arm.press(); // closes that file
    EXPECT_EQ(rows_of("dyno_temp.csv"), 0U);
}

TEST_F(DynoTest, CancelOrLeavingInsideTheWaitsOfArmHasTheLastWord) {
    desktop.schedule(desktop.now() + 100'000, [this] { form.dyno_cancel.press(); });
    form.dyno_arm.press();
    EXPECT_THAT(dyno_messages(), ElementsAre(Bytes{4, 0, 0, 0}));
    EXPECT_TRUE(form.dyno_arm.enabled());
    EXPECT_EQ(wired.controller.firmware().dyno().state(), controller::DynoState::disarmed);
    sent.clear();
    desktop.schedule(desktop.now() + 100'000, [this] { form.exit_button.press(); });
    form.dyno_arm.press();
    EXPECT_THAT(dyno_messages(), SizeIs(0));
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(DynoTest, ControllerThatDoesNotAnswerIsNotTakenForArmed) {
    wired.silence();
    press_in_dialog(2);
    form.dyno_arm.press();
    wired.speak();
    EXPECT_THAT(dyno_messages(), SizeIs(0));
    EXPECT_TRUE(form.dyno_arm.enabled());
    EXPECT_THAT(form.dyno_note.text(), HasSubstr("Not armed"));
    desktop.run_for(1);
    EXPECT_FALSE(form.dyno_save.enabled());
}

TEST_F(DynoTest, RunThatEndsBehindAnotherViewIsFinishedOnReturn) {
    form.dyno_arm.press();
    ASSERT_TRUE(run_until_state("Running"));
    form.exit_button.press();
    const std::string written = desktop.read_file("dyno_temp.csv");
    console.forms.frm_ecu.monitor_button.press();
    ASSERT_TRUE(desktop.run_until([&] { return console.live.dyno_state == 3; }));
    EXPECT_EQ(desktop.read_file("dyno_temp.csv"), written);
    EXPECT_FALSE(form.dyno_save.enabled());
    console.forms.frm_mon.exit_button.press();
    desktop.run_for(0.3);
    open();
    EXPECT_TRUE(form.dyno_save.enabled());
    EXPECT_EQ(desktop.read_file("ref_dyno_temp.csv"), written);
}

TEST_F(DynoTest, SpoiledLimitsAndBrokenFilesDoNotStopTheFinish) {
    const std::string broken =
        run_file({{"0.000", "2500"}}) + "1,2\r\nx,0,y,,,,,,,,,,,,,,\r\n,,,,,,,,,,,,,,,,\r\n\xFF\r\n";
    desktop.write_file("ref_dyno_temp.csv", broken);
    form.dyno_trig_rpm[1].set_text("3000");
    form.dyno_arm.press();
    ASSERT_TRUE(run_until_state("Running"));
    form.dyno_trig_rpm[0].set_text("spoiled");
    ASSERT_TRUE(run_until_state("Finished"));
    EXPECT_TRUE(form.dyno_save.enabled() && form.dyno_arm.enabled());
    EXPECT_EQ(desktop.read_file("ref_dyno_temp.csv"), broken) << "only a missing reference is made";
    EXPECT_NEAR(lines(palette[9]).front().x2, 0, 40) << "by the limits of the run";
    EXPECT_EQ(form.dyno_plot_screen.bottom_axis().ticks.back().text, "3000");
    form.dyno_trig_rpm[0].set_text("4000");
    form.dyno_trig_rpm[1].set_text("4000");
    form.dyno_plot.press();
    EXPECT_EQ(form.dyno_plot_screen.strokes().size(), 0U);
    EXPECT_THAT(form.dyno_peaks.text(), HasSubstr("nothing to draw"));
}

TEST_F(DynoTest, SaveTrimsItsBoxesOverwritesAndCountsUp) {
    arm_and_finish();
    const std::string run = desktop.read_file("dyno_temp.csv");
    desktop.write_file("my car_009.csv", "older");
    form.dyno_file_name.set_text("  my car ");
    form.dyno_series.set_text(" 009 ");
    EXPECT_THAT(form.dyno_save_note.text(), HasSubstr("my car_009.csv: replaces the existing file"));
    form.dyno_save.press();
    EXPECT_EQ(desktop.read_file("my car_009.csv"), run);
    EXPECT_EQ(form.dyno_series.text(), "010");
    EXPECT_FALSE(form.dyno_save.enabled());
    for (const auto& [before, after] : {std::pair{"999", "1000"}, std::pair{"x7", "001"}}) {
        form.dyno_save.set_enabled(true);
        form.dyno_series.set_text(before);
        form.dyno_save.press();
        EXPECT_EQ(form.dyno_series.text(), after);
    }
    form.dyno_save.set_enabled(true);
    form.dyno_file_name.set_text("no such folder/run");
    desktop.expect_box("The run could not be written to no such folder/run_001.csv");
    form.dyno_save.press();
    desktop.run_for(0.1);
    EXPECT_TRUE(form.dyno_save.enabled()) << "for another try";
    EXPECT_EQ(form.dyno_series.text(), "001");
    desktop.write_file("ref_dyno_temp.csv", "older");
    form.dyno_ref_file.press();
    EXPECT_EQ(desktop.read_file("ref_dyno_temp.csv"), run);
}

TEST_F(DynoTest, FileThatCannotBeOpenedArmsNothingAndOneThatGoesStopsTheRecord) {
    std::filesystem::create_directory(desktop.folder() / "dyno_temp.csv");
    desktop.expect_box("dyno_temp.csv in the folder " + desktop.folder().string());
    form.dyno_arm.press();
    EXPECT_THAT(dyno_messages(), SizeIs(0));
    EXPECT_TRUE(form.dyno_arm.enabled());
    std::filesystem::remove(desktop.folder() / "dyno_temp.csv");
    form.dyno_arm.press();
    ASSERT_TRUE(run_until_state("Running"));
    std::filesystem::remove(desktop.folder() / "dyno_temp.csv");
    desktop.expect_box("The run is no longer recorded");
    ASSERT_TRUE(run_until_state("Finished"));
    EXPECT_FALSE(form.dyno_save.enabled());
    EXPECT_TRUE(form.dyno_arm.enabled());
}

} // namespace
} // namespace ecu::diagnostics
