#include "logging/plotter.h"

#include "support/live_bench.h"

#include <gmock/gmock.h>

namespace ecu::logging {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct PlotterBench : test::LiveBench {
    FrmPlotter form;
    platform::Label inj_duty{monitor, "inj_duty"}, ign_duty{monitor, "ign_duty"}, wheel{monitor, "wheel_idx_num"};
    std::unique_ptr<platform::Timer> timer3 = desktop.make_timer(1000);
    Plotter plotter{ports, state, comm, navigation, *timer3, scales, live, {inj_duty, ign_duty, wheel}, form};
    std::vector<std::vector<float>> samples;
    std::vector<std::string> stamps;

    PlotterBench() {
        form.Strip1.on_sample = [this](const auto& sample) {
            samples.emplace_back(sample.fractions.begin(), sample.fractions.end());
        };
        form.Strip1.on_stamp = [this](const auto& stamp) {
            EXPECT_FLOAT_EQ(stamp.time, ports.now()); // the moment of the click, not that of the last sample
            stamps.emplace_back(stamp.text);
        };
        form.form.show();
        form.form.set_host(&desktop);
        state.current_view = link::View::plotter;
    }
    std::string log() { return desktop.read_file("PLOTTER.CSV"); }
};

TEST(Plotter, ReadsTheLimitsWithThePollingHeldBackAndShowsThemInItsCaptions) {
    PlotterBench bench;
    bench.scales.full_scale_rpm = 8500;
    bench.scales.map_span = 255;
    bench.form.Check3d1[2].set_fore_colour(platform::palette[9]);
    bool held = false;
    bench.controller.responder = [&](const test::Request&) {
        held = bench.state.polling_paused;
        return test::reply_frame({'C'}, 21);
    };
    bench.plotter.activate();
    EXPECT_TRUE(held);
    EXPECT_FALSE(bench.state.polling_paused);
    EXPECT_EQ(bench.controller.sent_codes(), "C");
    EXPECT_EQ(bench.form.form.caption(), "DATA PLOTTER    1 Sample/Second, 10 minute window");
    EXPECT_EQ(bench.form.Check3d1[0].text(), "RPM [0 to 8500]");
    EXPECT_EQ(bench.form.Check3d1[4].text(), "Manifold Prs. [0 to 255 kPa]");
    EXPECT_EQ(bench.form.Strip1.channels()[2].colour, platform::palette[9]);
    bench.scales.full_scale_rpm = 12000; // demo mode, chosen while the plotter is open
    bench.form.Check3d1[0].click();
    bench.live.engine_rpm_raw = 6000;
    bench.plotter.plot_and_log_sample();
    EXPECT_FLOAT_EQ(bench.samples.at(0)[0], 0.5F);
    EXPECT_EQ(bench.form.Check3d1[0].text(), "RPM [0 to 12000]");
    EXPECT_EQ(bench.form.Strip1.channels()[0].span, 12000);
}

TEST(Plotter, TheIntervalMenuSetsTheSampleClockTheCaptionAndTheWindow) {
    PlotterBench bench;
    EXPECT_TRUE(bench.form.menu_log_int[3].checked()); // the timer's own interval
    const std::array<std::string_view, 8> captions{
        "DATA PLOTTER    10 Sample/Second, 1 minute window",    "DATA PLOTTER    4 Sample/Second, 2.5 minute window",
        "DATA PLOTTER    2 Sample/Second, 5 minute window",     "DATA PLOTTER    1 Sample/Second, 10 minute window",
        "DATA PLOTTER    0.5 Sample/Second, 20 minute window",  "DATA PLOTTER    0.2 Sample/Second, 50 minute window",
        "DATA PLOTTER    0.1 Sample/Second, 100 minute window", "DATA PLOTTER  Fast as Comm will allow"};
    const std::array<int, 8> intervals{100, 250, 500, 1000, 2000, 5000, 10000, 1};
    for (std::size_t i = 0; i < captions.size(); ++i) {
        bench.form.menu_log_int[i].click();
        EXPECT_EQ(bench.form.form.caption(), captions[i]);
        EXPECT_EQ(bench.timer3->interval_ms(), intervals[i]);
        EXPECT_TRUE(bench.timer3->running());
        EXPECT_EQ(std::ranges::count_if(bench.form.menu_log_int, &platform::MenuItem::checked), 1);
        EXPECT_TRUE(bench.form.menu_log_int[i].checked());
        if (i < 7) {
            EXPECT_NEAR(bench.form.Strip1.seconds_shown(), intervals[i] * 0.6, 1e-9);
        }
    }
}

TEST(Plotter, LogsFromStartToStopAndRefusesMisuseInItsOwnWords) {
    PlotterBench bench;
    bench.plotter.plot_and_log_sample();
    EXPECT_EQ(bench.form.File_Samples.text(), "N/A");
    bench.desktop.expect_box("But logging has not been started");
    bench.plotter.stop_logging();
    EXPECT_TRUE(bench.form.plot_file.enabled() && bench.form.start_log_button.enabled());

    bench.form.start_log_button.press();
    EXPECT_FALSE(bench.form.plot_file.enabled() || bench.form.start_log_button.enabled());
    EXPECT_THAT(bench.log(), EndsWith("LOG_FILE V1.00.02\r\n\r\n"));
    bench.desktop.expect_box("But you are already logging, You must halt to begin a new log");
    bench.plotter.start_logging();
    bench.live.engine_rpm_raw = 4321;
    bench.plotter.plot_and_log_sample();
    bench.plotter.plot_and_log_sample();
    EXPECT_EQ(bench.form.File_Samples.text(), "2");
    EXPECT_THAT(bench.log(), HasSubstr("\r\n\r\n10:00:00,36000.00,4321,"));
    bench.form.stop_log_button.press();
    EXPECT_TRUE(bench.form.plot_file.enabled() && bench.form.start_log_button.enabled());
    EXPECT_FALSE(bench.form.stop_log_button.enabled());
    EXPECT_EQ(std::ranges::count(bench.log(), '\n'), 6);

    bench.form.start_log_button.press(); // replaced without a question, counted anew
    EXPECT_EQ(std::ranges::count(bench.log(), '\n'), 4);
    bench.desktop.expect_box("Logging will be halted prior to exit");
    bench.form.exit_button.press();
    EXPECT_FALSE(bench.plotter.logging_active() || bench.form.form.visible());
    EXPECT_EQ(bench.state.current_view, link::View::none);
    EXPECT_TRUE(bench.main_form.visible());
    EXPECT_EQ(bench.form.form.caption(), "");
}

TEST(Plotter, AFileThatCannotBeWrittenIsNamedAndThePollingGoesOn) {
    PlotterBench bench;
    bench.form.plot_file.set_text("/dev/full");
    bench.desktop.expect_box("The log file /dev/full could not be opened: No space left on device");
    bench.form.start_log_button.press();
    EXPECT_FALSE(bench.plotter.logging_active());
    EXPECT_TRUE(bench.form.plot_file.enabled() && bench.form.start_log_button.enabled());

    std::filesystem::create_directory(bench.desktop.path("stick"));
    bench.form.plot_file.set_text("stick/a.csv");
    bench.form.start_log_button.press();
    bench.plotter.plot_and_log_sample();
    std::filesystem::remove_all(bench.desktop.path("stick"));
    bench.plotter.plot_and_log_sample(); // no box inside the tick
    EXPECT_FALSE(bench.plotter.logging_active());
    bench.desktop.expect_box("stick/a.csv could not be written: the file or its folder is no longer there. Logging has "
                             "stopped; 1 rows");
    bench.desktop.run_for(0.1);
    bench.plotter.plot_and_log_sample();
    EXPECT_EQ(bench.form.File_Samples.text(), "N/A");
}

TEST(Plotter, PlotsAllChannelsAsFractionsOnceOneOfTheFirstSixteenIsTicked) {
    PlotterBench bench;
    bench.form.Check3d1[20].click(); // one of the wideband's: alone it moves nothing
    bench.plotter.plot_and_log_sample();
    EXPECT_TRUE(bench.samples.empty());
    bench.form.Check3d1[15].click();
    EXPECT_TRUE(bench.form.Strip1.channels()[15].enabled && bench.form.Strip1.channels()[20].enabled);
    bench.scales.full_scale_rpm = 8000;
    bench.scales.map_span = 250;
    bench.live = {.lambda = 0.5F, // richer than the scale
                  .injector_pw = 0.005F,
                  .coolant_temp = -25,
                  .air_temp = 250,
                  .ego_correction = 1,
                  .ignition_timing = -10,
                  .manifold_kpa = 100,
                  .engine_rpm = 1,
                  .engine_rpm_raw = 4000,
                  .throttle_raw_percent = 130,
                  .throttle_percent = 100,
                  .wb_feedback = 500,
                  .wb_pump_current = 500,
                  .wb_pump_dac = 2048,
                  .wb_heater_pw = 64,
                  .wb_heater_temp = 450,
                  .gpo_duty = {0, 50.5F, 101, 25.25F},
                  .inj_duty = {99}};
    bench.inj_duty.set_text("40"); // the chart reads the shown numbers back
    bench.ign_duty.set_text("");
    bench.wheel.set_text("51");
    bench.plotter.plot_and_log_sample();
    ASSERT_EQ(bench.samples.size(), 1U);
    EXPECT_THAT(
        bench.samples[0],
        testing::Pointwise(testing::FloatEq(), {0.5F, 0.0F, -0.2F, 1.0F, 0.4F,  2.0F, 0.2F, 0.5F, 0.4F, 0.4F, 0.0F,
                                                0.2F, 0.0F, 0.5F,  1.0F, 0.25F, 0.5F, 0.1F, 0.5F, 0.5F, 0.25F}));
    bench.form.skip_graphics.click();
    bench.plotter.plot_and_log_sample();
    EXPECT_EQ(bench.samples.size(), 1U);
}

TEST(Plotter, StampsTheTimeAndTakesAFileNameOnlyWhenOneWasChosen) {
    PlotterBench bench;
    for (const double of_day : {36000.25, 36001.0, 36002.9961}) {
        bench.desktop.set_time_of_day(of_day);
        bench.form.Strip1.clicked();
    }
    EXPECT_THAT(bench.stamps, ElementsAre("10:00:00.25", "10:00:01.", "10:00:02.99"));
    for (const auto* const name : {"", "*.CSV", "/tmp/run.csv"}) {
        bench.desktop.choose_file(name);
        bench.form.plot_file.double_clicked();
    }
    EXPECT_EQ(bench.form.plot_file.text(), "/tmp/run.csv");
    EXPECT_EQ(bench.desktop.file_dialogs()[0].filter, "comma spaced value (*.csv)|");
}

TEST(Plotter, TellsWhatStartingALogDoesToTheFileAndOffersANameThatIsFree) {
    PlotterBench bench;
    bench.plotter.activate();
    EXPECT_EQ(bench.form.file_note.text(), "a new file");
    bench.plotter.start_logging();
    EXPECT_EQ(bench.form.file_note.text(), "is being written");
    EXPECT_FALSE(bench.form.new_name.enabled() || bench.form.browse.enabled()) << "the running log keeps its name";
    bench.plotter.stop_logging();
    EXPECT_THAT(bench.form.file_note.text(), StartsWith("replaces the existing file, "));
    bench.form.new_name.press();
    EXPECT_EQ(bench.form.plot_file.text(), "PLOTTER-2.CSV");
    EXPECT_EQ(bench.form.file_note.text(), "a new file");
    bench.plotter.start_logging();
    bench.plotter.stop_logging();
    bench.form.new_name.press();
    EXPECT_EQ(bench.form.plot_file.text(), "PLOTTER-3.CSV");
    bench.form.plot_file.set_text("no such folder/a-b.x/run-7");
    EXPECT_EQ(bench.form.file_note.text(), "the folder does not exist");
    bench.form.new_name.press();
    EXPECT_EQ(bench.form.plot_file.text(), "no such folder/a-b.x/run-2");
    bench.form.plot_file.set_text(".");
    EXPECT_EQ(bench.form.file_note.text(), "is a folder: add a file name");
}

TEST(Plotter, SaysWhenTheChartStandsStillAndWhenAPictureCouldNotBeWritten) {
    PlotterBench bench;
    EXPECT_NE(bench.form.Strip1.hint(), "");
    bench.form.Check3d1[16].click();
    EXPECT_NE(bench.form.Strip1.hint(), "") << "a wideband channel does not start the chart";
    bench.form.Check3d1[15].click();
    EXPECT_EQ(bench.form.Strip1.hint(), "");
    bool written = false;
    bench.form.Strip1.save_picture = [&](const std::string& path) { return path == "a.png" && written; };
    bench.desktop.choose_file("a.png");
    bench.desktop.expect_box("The picture a.png could not be written");
    bench.form.save_picture.press();
    written = true;
    bench.desktop.choose_file("a.png");
    bench.form.save_picture.press();
    bench.desktop.choose_file("");
    bench.form.save_picture.press();
}

} // namespace
} // namespace ecu::logging
