#include "shell/console_rig.h"

namespace ecu::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MainConsoleTest : public ConsoleRig {};

TEST_F(MainConsoleTest, AnItemAndItsButtonOpenTheView) {
    start();
    state.polling_paused = true;
    main.menu_View_Plotter.click();
    EXPECT_EQ(state.current_view, View::plotter);
    EXPECT_FALSE(state.polling_paused);
    EXPECT_TRUE(forms.frm_plotter.form.visible());
    EXPECT_FALSE(main.form.visible());
    EXPECT_EQ(controller.sent_codes(), "C");
    EXPECT_EQ(main.form.caption(), "ECU System Console ->COM3");
    forms.frm_plotter.form.unload();
    EXPECT_EQ(state.current_view, View::none);
    EXPECT_TRUE(main.form.visible());
    controller.clear_sent();
    main.monitor_button.press();
    EXPECT_EQ(state.current_view, View::monitor);
    EXPECT_THAT(controller.sent(), IsEmpty()) << "the monitor needs no scales";
}

TEST_F(MainConsoleTest, WhatLeadsNowhereIsDisabledAndSaysSo) {
    start();
    const std::string view("This view is not part of this version."), tool("This tool is not part of this version.");
    for (const auto& [name, tip] : {std::pair("menu_View_supp", view),
                                    {"Command3", view},
                                    {"menufilesave", tool},
                                    {"menu_tool_flash_utility", tool},
                                    {"menu_remote_setup_start_server", tool}}) {
        EXPECT_FALSE(main.form.at(name).enabled()) << name;
        EXPECT_EQ(main.form.at(name).tool_tip(), tip) << name;
    }
    EXPECT_FALSE(forms.frm_mon.menu_sup.enabled());
    EXPECT_TRUE(forms.frm_mon.menu_plot.enabled());
    int uploads = 0;
    console.on_upload = [&] { ++uploads; };
    console.offer_what_exists();
    EXPECT_EQ(main.menufileopen.tool_tip(), "");
    main.menufileopen.click();
    EXPECT_EQ(uploads, 1);
}

TEST_F(MainConsoleTest, RequestsWaitForTheViewToCloseAndTheFirstInTheirOrderIsServed) {
    start_in_monitor();
    forms.frm_mon.form.on_unload = [this] {
        desktop.run_for(0.2); // as a message box does
        EXPECT_FALSE(forms.frm_dashboard.form.visible());
        state.request_view(ViewRequest::plotter);
        navigation.view_closed(forms.frm_mon.form);
    };
    forms.frm_mon.menu_dash.click();
    EXPECT_TRUE(main.form.visible());
    desktop.run_for(0.06);
    EXPECT_EQ(state.current_view, View::dashboard);
    forms.frm_dashboard.form.unload();
    desktop.run_for(0.1);
    EXPECT_EQ(state.current_view, View::none) << "nothing pops up behind it";
}

TEST_F(MainConsoleTest, AViewAskedForInsideATransactionOpensAfterIt) {
    start_in_monitor();
    controller.silence();
    desktop.schedule(desktop.now() + 120'000, [&] {
        ASSERT_TRUE(comm.busy());
        forms.frm_mon.menu_dash.click();
        main.menu_View_Mapping.click();
        EXPECT_EQ(state.current_view, View::none);
        controller.speak();
    });
    desktop.run_for(0.5);
    EXPECT_EQ(state.current_view, View::basic_mapping) << "the last choice";
    main.monitor_button.press();
    EXPECT_EQ(state.current_view, View::basic_mapping) << "one view at a time";
    forms.frm_3d.form.unload();
    desktop.run_for(0.1);
    EXPECT_TRUE(main.form.visible());
}

TEST_F(MainConsoleTest, QuittingAsksFirst) {
    start();
    desktop.answer_box("Are you sure you want to quit?", platform::Answer::no);
    main.menu_file_exit.click();
    EXPECT_EQ(desktop.boxes().back().title, "ECU");
    desktop.answer_box("Are you sure you want to quit?", platform::Answer::yes);
    EXPECT_THROW(main.exit_button.press(), ProgramEnded);
    desktop.answer_box("Are you sure you want to quit?", platform::Answer::no);
    main.form.close_requested(); // the frame's X, Alt+F4
    EXPECT_TRUE(main.form.visible());
}

TEST_F(MainConsoleTest, AChosenPortIsTheOneTicked) {
    start();
    main.menu_comm_10.click();
    EXPECT_EQ(state.comm_port_number, 10);
    EXPECT_TRUE(main.menu_comm_10.checked());
    EXPECT_FALSE(main.menu_comm_3.checked());
}

TEST_F(MainConsoleTest, ResetAndPreparationToReflash) {
    start();
    main.menu_tool_reset.click();
    EXPECT_THAT(controller.messages(), testing::Contains(Bytes{174, 165, 0, 0}));
    for (const auto answer : {platform::Answer::cancel, platform::Answer::ok}) {
        desktop.run_for(0.1);
        controller.clear_sent();
        desktop.answer_box("Do you really want to stop the controller and re-flash its memory?", answer);
        main.menu_tool_reflash.click();
        EXPECT_EQ(controller.count(174), answer == platform::Answer::ok ? 1U : 0U);
        EXPECT_FALSE(state.comm_ready);
        EXPECT_FALSE(comm1->is_open());
        EXPECT_EQ(state.link_title_suffix, "");
    }
    EXPECT_THAT(controller.messages(), ElementsAre(Bytes{174, 90, 0, 0}));
    controller.silence(); // the map's opening asks for C in vain when the user thinks again
    desktop.answer_box("Do you really want", platform::Answer::cancel);
    press_in_dialog(0);
    desktop.schedule(desktop.now() + 120'000, [&] { main.menu_tool_reflash.click(); });
    main.menu_View_Mapping.click();
    EXPECT_EQ(state.current_view, View::none);
    EXPECT_TRUE(main.form.visible());
}

TEST_F(MainConsoleTest, AboutAsksTheControllerAndReportsTheLastFailure) {
    start();
    state.failed_frame_text = "Buffer = 02";
    desktop.on_modal("frm_about", [&](platform::Form&) { forms.frm_about.exit_button.press(); });
    main.menu_about.click();
    EXPECT_EQ(controller.sent_codes().substr(0, 2), "R-");
    EXPECT_EQ(forms.frm_about.comm_details.text(), "Buffer = 02");
    EXPECT_FALSE(state.polling_paused);
    controller.clear_sent();
    state.demo_mode = true;
    desktop.on_modal("frm_about", [&](platform::Form&) { forms.frm_about.menu_file_exit.click(); });
    main.about_button.press();
    EXPECT_EQ(forms.frm_about.serial_num.text(), "DEMO MODE");
    EXPECT_THAT(controller.sent(), IsEmpty());
    state.demo_mode = false;
    forms.frm_about.serial_num.set_text("1234");
    controller.silence();
    press_in_dialog(1);
    desktop.on_modal("frm_about", [&](platform::Form&) { forms.frm_about.menu_file_exit.click(); });
    main.menu_about.click();
    EXPECT_EQ(forms.frm_about.serial_num.text(), "DEMO MODE") << "chosen when the first question had failed";
}

} // namespace
} // namespace ecu::test
