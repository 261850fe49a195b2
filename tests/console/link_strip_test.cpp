#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/tiny_jpeg.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

namespace ecu::views {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class LinkStripTest : public testing::Test {
protected:
    LinkStripTest() : wired(desktop, desktop.line(), {.firmware = {}, .faults = {}, .pace_baud = 38400}) {
        desktop.write_file("port.cfg", "3\r\n");
        desktop.write_file("OEM.JPG", test::tiny_jpeg);
        desktop.write_file("OEM.TXT", "");
        console.forms.registry.set_host(&desktop);
        console.start("");
        console.forms.frm_ecu.monitor_button.press();
        desktop.run_for(3);
    }
    const platform::Label& strip() { return console.forms.frm_mon.form.get<platform::Label>("link_strip"); }
    bool red() { return strip().fore_colour() == platform::light_red; }

    test::SimDesktop desktop;
    test::WiredController wired;
    console::Console console{desktop.ports()};
};

TEST_F(LinkStripTest, TellsPortRateRetriesAndLogAndForgetsRetriesAfterAMinute) {
    EXPECT_THAT(strip().text(), StartsWith("COM3 (/dev/sim3)   "));
    EXPECT_THAT(strip().text(), testing::ContainsRegex("   [0-9]+ replies/s   no retries$"));
    EXPECT_FALSE(red());
    wired.controller.faults().strike_next(controller::Fault::lost, 1);
    desktop.run_for(2);
    EXPECT_THAT(strip().text(), HasSubstr("1 retry in the last minute"));
    wired.controller.faults().strike_next(controller::Fault::lost, 2);
    desktop.run_for(2);
    EXPECT_THAT(strip().text(), HasSubstr("3 retries in the last minute"));
    desktop.run_for(61);
    EXPECT_THAT(strip().text(), HasSubstr("no retries"));
    console.forms.frm_mon.menu_plot.click();
    desktop.run_for(1);
    console.forms.frm_plotter.menu_log_int[5].click();
    console.forms.frm_plotter.start_log_button.press();
    for (int second = 0; second < 30; ++second) {
        desktop.run_for(1);
        EXPECT_FALSE(red()) << "a slow log asks no faster";
    }
    EXPECT_THAT(strip().text(), testing::ContainsRegex("   Log: [1-9][0-9]* rows$"));
    const std::string before = strip().text();
    desktop.expect_box("Logging will be halted prior to exit");
    console.forms.frm_plotter.exit_button.press();
    desktop.run_for(3);
    EXPECT_EQ(strip().text(), before) << "no view is up";
}

TEST_F(LinkStripTest, IsRedWhileNoLiveValuesComeAndNotBeforeAViewHasHadItsTime) {
    int at_dialog = 0;
    desktop.on_modal("frm_Dialog", [&](platform::Form&) {
        desktop.run_for(3); // nobody is there to answer
        EXPECT_TRUE(red());
        ++at_dialog;
        wired.speak();
        console.forms.frm_dialog.dialog_button[0].press();
    });
    wired.silence();
    desktop.run_for(8);
    EXPECT_EQ(at_dialog, 1);
    EXPECT_FALSE(red()) << strip().text();
    console.forms.frm_mon.exit_button.press();
    desktop.run_for(20);
    console.forms.frm_ecu.dashboard_button.press();
    desktop.run_for(1);
    EXPECT_FALSE(red()) << "the last values are old, but this view is new";
    console.forms.frm_dashboard.menu_tools.click();
    desktop.run_for(20);
    EXPECT_FALSE(red());
    EXPECT_THAT(strip().text(), HasSubstr("   idle   ")) << "this one asks nothing more once it is open";
}

TEST_F(LinkStripTest, DemoIsNeverOld) {
    console.state.demo_mode = true;
    desktop.run_for(5);
    EXPECT_EQ(strip().text(), "Demo: the values are made up");
    EXPECT_FALSE(red());
}

} // namespace
} // namespace ecu::views
