// The driver tests and the crank wheel: what goes over the wire, what is drawn, and every way out of the endless loop.
#include "diagnostics_bench.h"

namespace ecu::diagnostics {
namespace {

using platform::light_red;
using platform::Picture;
using platform::yellow;
using test::Bytes;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class Diagnostics : public test::DiagnosticsBench {
protected:
    void unlock() {
        desktop.expect_box("Testing drivers requires that the engine NOT be running, in addition, make certain that "
                           "the driver parameters EI dwell or fuel pulse width are appropriate or ECU/wiring or engine "
                           "damage may occur!");
        form.unlock_button[1].press();
    }
    Picture::Line line(std::size_t i) const { return std::get<Picture::Line>(form.wheel_speed_plot.strokes().at(i)); }
    const Bytes one_capture{'A', 248, 248, 248, 248, 248, 248, 248, 248};
};

TEST_F(Diagnostics, WindowPollsNothingButTheLiveBlockOnTheDynoTabAndLeavesAtTenMilliseconds) {
    EXPECT_EQ(form.form.caption(), "Diagnostics ->COM3");
    EXPECT_EQ(form.dyno_sample_rate.text(), "250");
    desktop.run_for(1);
    EXPECT_THAT(sent, SizeIs(0));
    form.diags_tab.set_current(3);
    desktop.run_for(1.01);
    EXPECT_EQ(codes(), Bytes(4, 'A'));
    form.menuupdate.click();
    form.dyno_sample_rate.set_text("0");
    EXPECT_EQ(console.polling.timer1().interval_ms(), 1);
    form.dyno_sample_rate.set_text("99.5");
    EXPECT_EQ(console.polling.timer1().interval_ms(), 100);
    form.exit_button.press();
    EXPECT_EQ(console.polling.timer1().interval_ms(), 10);
    EXPECT_EQ(console.state.current_view, link::View::none);
    EXPECT_TRUE(console.forms.frm_ecu.form.visible());
}

TEST_F(Diagnostics, TestsAreUnlockedByEitherButtonAfterTheWarningAndLockedAgainAtEachOpening) {
    EXPECT_FALSE(form.test_injectors_button.enabled() || form.test_ignition_button.enabled());
    unlock();
    EXPECT_TRUE(form.test_injectors_button.enabled() && form.test_ignition_button.enabled());
    EXPECT_FALSE(form.unlock_button[0].enabled() || form.unlock_button[1].enabled());
    form.menufileexit.click();
    desktop.run_for(0.2);
    open();
    EXPECT_FALSE(form.test_injectors_button.enabled() || form.test_ignition_button.enabled());
    EXPECT_TRUE(form.unlock_button[0].enabled() && form.unlock_button[1].enabled());
}

TEST_F(Diagnostics, PressFiresTheTickedChannelsOnceAndNoneWithMaskZero) {
    unlock();
    form.inj_chan_test[0].click();
    form.inj_chan_test[7].click();
    form.ign_chan_test[2].click();
    form.test_injectors_button.press();
    form.test_ignition_button.press();
    form.ign_chan_test[2].click();
    form.test_ignition_button.press();
    EXPECT_THAT(sent, ElementsAre(Bytes{1, 129, 0, 0}, Bytes{2, 4, 0, 0}, Bytes{2, 0, 0, 0}));
    EXPECT_EQ(form.test_result[0].text(), "Fired injector channel 1, 8");
    EXPECT_EQ(wired.controller.firmware().fired_injectors(), 129);
}

TEST_F(Diagnostics, PressInsideAnotherMessageWaitsForItsEndAndGoesOutOnce) {
    unlock();
    form.inj_chan_test[1].click();
    bool leaves = false;
    wired.controller.on_request = [&](const link::Request& request) {
        sent.emplace_back(request.begin() + 2, request.begin() + 6);
        if (request[2] == 247) {
            desktop.post([&] {
                form.test_injectors_button.press();
                EXPECT_THAT(sent, SizeIs(1));
                if (leaves) {
                    form.exit_button.press();
                }
            });
        }
    };
    form.arm_capture.press();
    EXPECT_THAT(sent, ElementsAre(Bytes{247, '0', '0', '0'}, Bytes{1, 2, 0, 0}));
    sent.clear();
    leaves = true; // and what still waits as the window closes does not go out behind it
    form.arm_capture.press();
    desktop.run_for(0.1);
    EXPECT_EQ(codes(), Bytes{247});
    open();
    unlock();
    wired.controller.on_request = [&](const link::Request& request) {
        sent.emplace_back(request.begin() + 2, request.begin() + 6);
        desktop.post([&] {
            form.arm_capture.press();
            form.dyno_arm.press();
            form.exit_button.press();
        });
    };
    desktop.write_file("dyno_temp.csv", "the last run");
    form.test_injectors_button.press();
    desktop.run_for(1);
    EXPECT_EQ(codes(), Bytes{1});
    EXPECT_EQ(desktop.read_file("dyno_temp.csv"), "the last run");
}

TEST_F(Diagnostics, GetPlotReadsWithoutArmingAndDrawsEveryTooth) {
    form.arm_capture.press();
    sent.clear();
    form.wheel_speed_plot.resize(1190, 400);
    form.get_wheel_plot_data.press();
    EXPECT_EQ(codes(), one_capture);
    EXPECT_EQ(sent[3], (Bytes{248, 2, '0', '0'}));
    EXPECT_EQ(form.crank_target_rpm.text(), platform::masked(console.live.engine_rpm, "####0"));
    ASSERT_THAT(form.wheel_speed_plot.strokes(), SizeIs(121));
    EXPECT_EQ(line(0), (Picture::Line{0, 200, 0, 200, yellow, 2})); // the start
    EXPECT_EQ(line(1).x1, 0);
    EXPECT_EQ(line(1).y1, 200);
    EXPECT_EQ(line(120).x2, 1190);
    // The gap stands at twice the period, three times in 120 samples: in red at the mean's height.
    EXPECT_EQ(line(28), (Picture::Line{260, line(27).y2, 270, 200, light_red, 2}));
    EXPECT_EQ(line(29).x1, 270);
    EXPECT_EQ(line(29).y1, 200);
    EXPECT_THAT(form.wheel_summary.text(), HasSubstr("3 of 120 periods lie beyond 50 % of the mean: tooth 28, 63, 98"));
}

TEST_F(Diagnostics, TraceKeepsItsBandToTheVeryEdgeAndNoSignalToTheMiddle) {
    messages::WheelSamples samples;
    std::fill_n(samples.periods.begin(), 120, 100.0F);
    samples.periods[1] = 150;
    samples.periods[2] = 50;
    samples.periods[3] = 151;
    samples.periods[4] = 49;
    samples.periods[5] = 160; // beyond, and the mean still 100
    samples.periods[6] = 40;
    samples.periods[7] = 125;
    samples.periods[8] = 75;
    const WheelTrace trace = wheel_trace(samples, 119, 100);
    const auto at = [&](std::size_t i) {
        return std::tuple(trace.points[i].x, trace.points[i].y, trace.points[i].fault);
    };
    EXPECT_EQ(at(0), std::tuple(0, 50, false));
    EXPECT_EQ(at(1), std::tuple(1, 0, false));
    EXPECT_EQ(at(2), std::tuple(2, 100, false));
    EXPECT_EQ(at(3), std::tuple(3, 50, true));
    EXPECT_EQ(at(4), std::tuple(4, 50, true));
    EXPECT_EQ(at(5), std::tuple(5, 50, true));
    EXPECT_EQ(at(7), std::tuple(7, 25, false));
    EXPECT_EQ(at(8), std::tuple(8, 75, false));
    EXPECT_EQ(wheel_trace(samples, 119, 5).start_y, 2); // 2.5, to even
    for (const WheelTrace::Point& point : wheel_trace({}, 119, 100).points) {
        EXPECT_TRUE(point.fault && point.y == 50);
    }
}

TEST_F(Diagnostics, LostBlockLeavesItsOlderSamplesAndSaysSo) {
    form.arm_capture.press();
    form.get_wheel_plot_data.press();
    const auto before = console.reply_decoders.wheel_samples().periods;
    form.arm_capture.press(); // another capture, with other noise
    bool struck = false;
    wired.controller.on_request = [&](const link::Request& request) {
        if (request[2] == 248 && request[3] == 1 && !struck) {
            struck = true;
            wired.controller.faults().strike_next(controller::Fault::lost, 10);
        }
    };
    press_in_dialog(0);
    form.get_wheel_plot_data.press();
    const auto after = console.reply_decoders.wheel_samples().periods;
    EXPECT_NE(before[0], after[0]);
    EXPECT_THAT(form.wheel_summary.text(), HasSubstr("No answer for the teeth 16 to 30"));
    EXPECT_EQ(before[15], after[15]);
    EXPECT_EQ(before[29], after[29]);
    EXPECT_NE(before[30], after[30]);
}

TEST_F(Diagnostics, HoverAndArrowsTellToothAndPeriod) {
    form.wheel_speed_plot.pointed_at(10, 10);
    EXPECT_EQ(form.wheel_reading.text(), ""); // nothing drawn yet
    form.arm_capture.press();
    form.wheel_speed_plot.resize(1190, 400);
    form.get_wheel_plot_data.press();
    form.wheel_speed_plot.pointed_at(271, 10);
    const auto period = [&](std::size_t i) {
        return platform::masked(console.reply_decoders.wheel_samples().periods[i], "####0");
    };
    EXPECT_THAT(form.wheel_reading.text(), testing::StartsWith("Tooth 28: period " + period(27) + ", "));
    EXPECT_EQ(form.wheel_speed_plot.marker(), 270);
    platform::KeyPress right{.code = platform::key::right};
    form.wheel_speed_plot.key_down(right);
    EXPECT_THAT(form.wheel_reading.text(), testing::StartsWith("Tooth 29: period " + period(28) + ", "));
    EXPECT_EQ(right.code, 0);
    platform::KeyPress end{.code = 35};
    form.wheel_speed_plot.key_down(end);
    EXPECT_THAT(form.wheel_reading.text(), testing::StartsWith("Tooth 120: "));
    form.wheel_speed_plot.resize(595, 200); // drawn anew at its size, the mark with it
    EXPECT_EQ(line(120).x2, 595);
    EXPECT_EQ(form.wheel_speed_plot.marker(), 595);
}

TEST_F(Diagnostics, EveryWayOutEndsTheContinuousCaptureWithItsCycle) {
    const std::vector<std::function<void()>> ways{
        [this] { form.wheel_diag_halt.press(); }, [this] { form.exit_button.press(); },
        [this] { form.menufileexit.click(); }, [this] { form.form.close_requested(); },
        [this] { form.menu_mon.click(); }};
    for (const auto& leave : ways) {
        ASSERT_TRUE(form.form.visible());
        sent.clear();
        int ticks = 0;
        const auto screen = desktop.make_timer(5); // what the screen gets of the time
        screen->on_tick = [&] { ++ticks; };
        screen->set_running(true);
        desktop.schedule(desktop.now() + 1'000'000, leave);
        form.wheel_diag_continuous.press(); // returns when the loop has ended
        EXPECT_GE(ticks, 200);
        EXPECT_TRUE(form.wheel_diag_continuous.enabled() && form.get_wheel_plot_data.enabled());
        EXPECT_FALSE(form.wheel_diag_halt.enabled());
        // Only whole cycles; the view that a menu asked for may already ask its own between the last messages.
        Bytes loop = codes();
        std::erase_if(loop, [](std::uint8_t code) { return code != 247 && code != 248; });
        ASSERT_GE(loop.size(), 18U);
        for (std::size_t i = 0; i < loop.size(); ++i) {
            EXPECT_EQ(loop[i], i % 9 == 0 ? 247 : 248) << i;
        }
        EXPECT_EQ(loop.size() % 9, 0U) << "the cycle is finished";
        desktop.run_for(0.3);
        if (console.forms.frm_mon.form.visible()) {
            console.forms.frm_mon.exit_button.press();
        }
        if (!form.form.visible()) {
            open();
        }
    }
}

TEST_F(Diagnostics, HaltWorksAfterAbortAndInDemoModeWithoutUsingAllOfTheProcessor) {
    for (const std::size_t button : {2U, 1U}) {
        wired.silence();
        press_in_dialog(button);
        desktop.schedule(desktop.now() + 20'000'000, [this] { form.wheel_diag_halt.press(); });
        const double start = desktop.seconds();
        form.wheel_diag_continuous.press();
        EXPECT_NEAR(desktop.seconds() - start, 20, 0.5);
        EXPECT_TRUE(form.wheel_diag_continuous.enabled());
        console.state.comm_aborted = false;
    }
}

} // namespace
} // namespace ecu::diagnostics
