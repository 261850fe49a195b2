#include "shell/console_rig.h"

namespace ecu::test {
namespace {

using testing::IsEmpty;

class PollingTest : public ConsoleRig {};

TEST_F(PollingTest, EachViewLivesOnItsOwnMessages) {
    start_in_monitor();
    forms.frm_mon.form.unload();
    int refreshed = 0;
    polling.on_refresh(View::basic_mapping, [&] { ++refreshed; });
    struct Case {
        View view;
        int tab;
        std::string codes;
    };
    for (const Case& c :
         {Case{View::none, 0, ""}, Case{View::configuration, 0, ""}, Case{View::basic_mapping, 0, "A"},
          Case{View::additional_mapping, 0, "A\x81"}, Case{View::dashboard, 0, "A\x81"},
          Case{View::gpo_mapping, 0, "A\x81"}, Case{View::diagnostics, 2, ""}, Case{View::diagnostics, 3, "A"}}) {
        ASSERT_TRUE(desktop.run_until([&] { return !comm.busy(); }));
        state.current_view = c.view;
        forms.frm_diagnostics.diags_tab.set_current(c.tab);
        controller.clear_sent();
        desktop.run_for(0.06);
        EXPECT_EQ(controller.sent_codes().substr(0, c.codes.size()), c.codes);
        EXPECT_EQ(controller.sent().empty(), c.codes.empty()) << static_cast<int>(c.view);
    }
    EXPECT_GE(refreshed, 1);
}

TEST_F(PollingTest, ThePlotterIsPolledByItsOwnTimerInRotation) {
    start();
    state.capabilities_loaded = true;
    int samples = 0;
    polling.plot_and_log_sample = [&] { ++samples; };
    main.menu_View_Plotter.click();
    controller.clear_sent();
    desktop.run_for(6.0);
    EXPECT_EQ(controller.sent_codes().substr(0, 7), "CA\x81\x41\xCF\x41\x81")
        << "the first tick's C, then one a second";
    EXPECT_EQ(samples, 6);
    state.polling_paused = true;
    desktop.run_for(3.0);
    EXPECT_EQ(samples, 6);
}

TEST_F(PollingTest, TicksFollowOneAnotherWithoutAGapAndNeverOverlap) {
    start_in_monitor();
    controller.set_reply_delay(0.03); // three of them outlast the timer's interval
    controller.clear_sent();
    desktop.run_for(0.93);
    EXPECT_NEAR(static_cast<double>(controller.sent().size()), 31, 2);
    const std::string codes = controller.sent_codes();
    EXPECT_EQ(codes.find("AA"), std::string::npos);
    EXPECT_NE(codes.find("A\x81\xCF\x41\x81\xCF"), std::string::npos);
    state.polling_paused = true;
    desktop.run_for(0.1);
    controller.clear_sent();
    desktop.run_for(1);
    EXPECT_THAT(controller.sent(), IsEmpty());
}

TEST_F(PollingTest, NoTickStartsInsideATransactionOfAScreen) {
    start();
    state.capabilities_loaded = true;
    main.basic_map_button.press();
    desktop.run_for(0.2);
    ASSERT_TRUE(desktop.run_until([&] { return !comm.busy(); }));
    controller.set_reply_delay(0.09); // longer than the timer's interval
    controller.clear_sent();
    desktop.post([&] { EXPECT_EQ(comm.send_ecu_message({'R'}, 5), link::Outcome::accepted); });
    desktop.process_events();
    EXPECT_EQ(controller.sent_codes().substr(0, 1), "R");
    EXPECT_EQ(controller.sent_codes().find('A'), std::string::npos) << "nothing in between, and no try again";
    desktop.run_for(0.1);
    EXPECT_NE(controller.sent_codes().find('A'), std::string::npos);
}

TEST_F(PollingTest, TheFirstTickKeepsItsQuestionWhileTheLinkIsNotConnected) {
    start();
    desktop.answer_box("Do you really want to stop the controller", platform::Answer::ok);
    main.menu_tool_reflash.click();
    EXPECT_EQ(desktop.boxes().back().icon, platform::Icon::warning);
    EXPECT_EQ(desktop.boxes().back().preset, platform::Answer::cancel);
    desktop.run_for(1);
    EXPECT_EQ(controller.sent_codes(), "\xAE") << "the monitor of the stopped controller hears nothing";
    main.monitor_button.press();
    desktop.run_for(0.1);
    EXPECT_EQ(controller.sent_codes().substr(0, 2), "\xAE"
                                                    "C");
}

TEST_F(PollingTest, DemoModeShowsItselfAndMakesUpPlausibleData) {
    desktop.expect_box("Demo Mode has been selected");
    start_in_monitor("demo");
    EXPECT_THAT(controller.sent(), IsEmpty());
    for (const platform::Form* form : forms.registry.forms()) {
        const platform::Control* notice = form->find("show_demo_mode");
        EXPECT_TRUE(notice == nullptr || notice->visible()) << form->name();
    }
    EXPECT_FALSE(main.gpo_button.enabled()) << "leads to no view, in demo mode either";
    EXPECT_EQ(scales.full_scale_rpm, 8000);
    EXPECT_FLOAT_EQ(forms.frm_dashboard.tachometer.scale().full_scale, 10.8F);
    const float first = data.engine_rpm;
    desktop.run_for(0.1);
    EXPECT_NE(data.engine_rpm, first);
    EXPECT_TRUE(data.engine_rpm >= 3210 && data.engine_rpm < 3260);
    EXPECT_TRUE(data.lambda >= 1.0F && data.lambda <= 1.17F);
    EXPECT_EQ(data.throttle_percent, data.throttle_raw_percent);
    EXPECT_EQ(row(19) + " " + row(14), "6.25B 101.2");
    EXPECT_EQ(forms.frm_mon.unit_of_lambda.text(), "%O2");
}

TEST_F(PollingTest, TheFilterStartsAnewUntilTheLinkIsOpen) {
    start();
    data.rpm_filter_state = 700;
    desktop.run_for(0.1);
    EXPECT_EQ(data.rpm_filter_state, 0);
    EXPECT_EQ(data.rpm_filter_gain, 0.8F);
    main.monitor_button.press();
    desktop.run_for(0.2);
    data.rpm_filter_gain = 0.2F;
    desktop.run_for(0.2);
    EXPECT_EQ(data.rpm_filter_gain, 0.2F);
}

} // namespace
} // namespace ecu::test
