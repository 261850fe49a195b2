// The whole console against the virtual controller, in simulated time: what goes over the wire, what is shown, and
// what a pulled plug does.
#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/tiny_jpeg.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

namespace ecu {
namespace {

using platform::Form;
using testing::ElementsAre;

class ConsoleTest : public testing::Test {
protected:
    ConsoleTest() {
        desktop.write_file("port.cfg", "3\r\n");
        desktop.write_file("OEM.JPG", test::tiny_jpeg);
        desktop.write_file("OEM.TXT", "text of the installer");
        console.forms.registry.set_host(&desktop);
        wired.controller.on_request = [this](const link::Request& request) {
            requests.emplace_back(request.begin(), request.end());
        };
    }

    void start(std::string_view command_line = "") {
        console.start(command_line);
        desktop.run_for(0.2);
    }
    void open_monitor() {
        console.forms.frm_ecu.monitor_button.press();
        desktop.run_for(1);
    }
    void answer_failure(std::size_t button) {
        desktop.on_modal("frm_Dialog",
                         [this, button](Form&) { console.forms.frm_dialog.dialog_button[button].press(); });
    }
    bool shows(const std::string& text) const { return console.forms.frm_mon.ECU_Data[0].text() == text; }

    test::SimDesktop desktop;
    test::WiredController wired{desktop, desktop.line(), {.firmware = {}, .faults = {}, .pace_baud = 38400}};
    console::Console console{desktop.ports()};
    std::vector<test::Bytes> requests;
};

TEST_F(ConsoleTest, PollsTheMonitorWithExactlyThreeMessagesAPass) {
    start();
    EXPECT_THAT(requests, ElementsAre()); // nothing before the first view
    open_monitor();
    EXPECT_EQ(console.forms.frm_ecu.form.caption(), "ECU System Console ->COM3");
    ASSERT_GE(requests.size(), 9U);
    EXPECT_EQ(requests[0], (test::Bytes{2, 8, 'C', '0', '0', '0', 0xDD, 0}));
    EXPECT_EQ(requests[1], (test::Bytes{2, 8, 179, '0', '0', '0', 0x4D, 1}));
    EXPECT_EQ(requests[2], (test::Bytes{2, 8, 180, '0', '0', '0', 0x4E, 1}));
    for (std::size_t pass = 3; pass + 2 < requests.size(); pass += 3) {
        EXPECT_EQ(requests[pass], (test::Bytes{2, 8, 'A', '0', '0', '0', 0xDB, 0}));
        EXPECT_EQ(requests[pass + 1], (test::Bytes{2, 8, 129, '0', '0', '0', 0x1B, 1}));
        EXPECT_EQ(requests[pass + 2], (test::Bytes{2, 8, 207, '0', '0', '0', 0x69, 1}));
    }
}

TEST_F(ConsoleTest, AsksForTheCompatibilityEvenWhenTheViewIsLeftMeanwhile) {
    start();
    wired.controller.on_request = [this](const link::Request& request) {
        requests.emplace_back(request.begin(), request.end());
        if (request[2] == 179) {
            desktop.post([this] { console.forms.frm_mon.exit_button.press(); });
        }
    };
    open_monitor();
    ASSERT_FALSE(console.forms.frm_mon.form.visible());
    EXPECT_EQ(requests.back()[2], 180);
}

TEST_F(ConsoleTest, MovesTheMonitorWithTheEngine) {
    start();
    open_monitor();
    const std::string rpm = console.forms.frm_mon.ECU_Data[0].text();
    EXPECT_NEAR(std::stod(rpm), console.live.engine_rpm, 1);
    EXPECT_GT(console.live.engine_rpm, 300);
    EXPECT_TRUE(console.forms.frm_mon.form.visible());
    EXPECT_FALSE(console.forms.frm_ecu.form.visible());
    desktop.run_for(3);
    EXPECT_NE(console.forms.frm_mon.rx_bytes.text(), "");
    // A pass is 3 requests and 136 bytes of reply: the wire is the only limit.
    const auto before = requests.size();
    desktop.run_for(10);
    const double wire_seconds = (3 * 8 + 65 + 32 + 39) * 10 / 38400.0;
    EXPECT_GT(static_cast<double>(requests.size() - before), 3 * 10 / std::max(wire_seconds, 0.05) * 0.95);
}

TEST_F(ConsoleTest, ClosesTheMonitorAfterAbortAndOpensTheLinkAgainWithTheNextView) {
    start();
    open_monitor();
    wired.silence();
    answer_failure(2);
    desktop.run_for(4);
    EXPECT_FALSE(console.forms.frm_mon.form.visible());
    EXPECT_TRUE(console.forms.frm_ecu.form.visible());
    EXPECT_TRUE(console.state.comm_aborted);
    wired.speak();
    requests.clear();
    open_monitor();
    EXPECT_FALSE(console.state.comm_aborted);
    EXPECT_GT(requests.size(), 3U);
}

TEST_F(ConsoleTest, GoesOnAfterTryAgainAsSoonAsTheControllerIsBack) {
    start();
    open_monitor();
    wired.silence();
    desktop.on_modal("frm_Dialog", [this](Form&) {
        wired.speak();
        console.forms.frm_dialog.dialog_button[0].press();
    });
    desktop.run_until([this] { return !console.state.failed_frame_text.empty(); }, 5);
    requests.clear();
    desktop.run_for(2);
    EXPECT_GT(requests.size(), 20U);
    EXPECT_TRUE(console.forms.frm_mon.form.visible());
}

TEST_F(ConsoleTest, TurnsToDemoModeFromTheFailureDialogWithoutLeavingTheView) {
    start();
    open_monitor();
    wired.silence();
    answer_failure(1);
    desktop.run_for(4);
    EXPECT_TRUE(console.state.demo_mode);
    EXPECT_TRUE(console.forms.frm_mon.form.visible());
    EXPECT_TRUE(console.forms.frm_mon.show_demo_mode.visible());
    EXPECT_NEAR(console.live.engine_rpm, 3235, 26);
}

TEST_F(ConsoleTest, EndsFromTheFailureDialog) {
    start();
    open_monitor();
    wired.silence();
    answer_failure(3);
    EXPECT_THROW(desktop.run_for(4), test::ProgramEnded);
}

TEST_F(ConsoleTest, NeedsNoLinkInDemoMode) {
    desktop.expect_box("Demo Mode has been selected, Communicatons will not be performed.");
    start("demo");
    open_monitor();
    EXPECT_THAT(requests, ElementsAre());
    EXPECT_EQ(console.forms.frm_mon.ECU_Data[19].text(), "6.25B");
}

TEST_F(ConsoleTest, EveryViewTellsThatTheDashboardHoldsTimingOrOxygenControlBack) {
    start();
    console.forms.frm_ecu.dashboard_button.press();
    desktop.run_for(1);
    const auto& note = console.forms.registry.get<platform::Label>("frm_mon", "held_note");
    EXPECT_FALSE(note.visible());
    console.forms.frm_dashboard.kill_timing.click();
    EXPECT_EQ(note.text(), "Timing is held at 0° for verification.");
    console.forms.frm_dashboard.kill_ego.click();
    EXPECT_EQ(note.text(), "Timing is held at 0° for verification. Oxygen control is switched off.");
    EXPECT_TRUE(console.forms.registry.get<platform::Label>("frm_3d", "held_note").visible());
    console.forms.frm_dashboard.kill_timing.click();
    console.forms.frm_dashboard.kill_ego.click();
    EXPECT_FALSE(note.visible());
}

} // namespace
} // namespace ecu
