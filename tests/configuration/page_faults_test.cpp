// What the page owes the engine when something goes wrong or happens meanwhile: lost replies, Abort and Demo in the
// middle, values never read, entries behind a message that is under way.
#include "configuration/page_bench.h"

namespace ecu::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::size_t try_again = 0, demo = 1, abort_link = 2; // buttons of the failure dialog

struct PageFaults : PageBench {
    // Once, while a message of this code is under way.
    void meanwhile(std::uint8_t code, std::function<void()> act) {
        on_request = [this, code, act = std::move(act)](std::uint8_t sent_code) {
            if (sent_code == code) {
                const auto once = act;
                on_request = nullptr;
                once();
            }
        };
    }
    const std::string& status() {
        desktop.run_for(0.01);
        return page.tool_status.text();
    }
};

TEST_F(PageFaults, ALostReplyLeavesItsControlPendingAndTheOthersGo) {
    open();
    page.box("RLI_SFT1").set_text("5000");
    page.box("RLI_SFT2").set_text("5100");
    page.box("FS_RPM").set_text("9000");
    page.inj_ph[3][1].click();
    lose(234);
    EXPECT_EQ(codes(update()), repeated({{234, 10}, {236, 1}, {125, 1}, {'C', 1}, {128, 1}}));
    EXPECT_TRUE(page.box("RLI_SFT1").is_pending());
    EXPECT_FALSE(page.box("RLI_SFT2").is_pending());
    EXPECT_EQ(page.inj_ph[3][0].tag(), "");
    EXPECT_EQ(status(), "1 value pending: Engine Setup 1; 1 not taken");
}

TEST_F(PageFaults, TheFullScaleIsAValueAsAnyOther) {
    lose('C');
    open();
    EXPECT_THAT(status(), StartsWith("9 values not read"));
    page.read_again.press();
    desktop.run_for(1);
    EXPECT_THAT(codes(sent), ElementsAre('C'));
    EXPECT_EQ(page.box("FS_RPM").text(), std::to_string(stored(parameter("FS_RPM"))));
    page.box("FS_RPM").set_text("9k");
    EXPECT_EQ(status(), "1 value pending: Engine Setup 1; 1 is no number and would be sent without the rest");
    lose(125);
    EXPECT_EQ(codes(update()), repeated({{125, 10}})) << "without its echo nothing hangs on it yet";
    EXPECT_THAT(status(), HasSubstr("1 not taken"));
}

TEST_F(PageFaults, NothingIsAskedSaidOrSentBehindAbortOrDemo) {
    for (const std::size_t button : {abort_link, demo}) {
        open();
        page.box("RLI_SFT1").set_text("5000");
        page.box("EGO_A_HI").set_text("2"); // before it in the walk: said
        page.box("EGO_GAIN").set_text("1");
        page.box("HOT_#P").set_text("2");
        page.box("CLD_#P").set_text("2");
        page.box("PHBT", 2).set_text("-1");
        page.box("FS_RPM").set_text("9000");
        page.inj_ph[3][1].click();
        desktop.answer_box("The Maximum EGO Gain", platform::Answer::ok);
        lose(234, button);
        EXPECT_EQ(codes(update()), repeated({{'?', 1}, {'>', 1}, {234, 10}}));
        EXPECT_TRUE(page.update_button.enabled() && page.exit_button.enabled() && !console.state.polling_paused);
        EXPECT_TRUE(page.box("RLI_SFT1").is_pending() && page.box("PHBT", 2).is_pending());
        EXPECT_EQ(page.box("PHBT", 2).text(), "-1");
        EXPECT_EQ(status(), button == abort_link ? "Aborted: nothing is sent until a view is opened"
                                                 : "6 values pending: Engine Setup 2, Powerup/Options 2, Phase Setup "
                                                   "2; 6 values not sent: demo mode");
        if (button == abort_link) {
            EXPECT_THAT(update(), IsEmpty()) << "nor by a second Update";
        }
        console.state.demo_mode = false;
        close();
    }
}

TEST_F(PageFaults, AbortInTheOpeningReadClosesThePage) {
    wired.silence();
    press_in_dialog(abort_link);
    console.navigation.open(link::View::configuration);
    desktop.run_for(10);
    EXPECT_FALSE(page.form.visible());
    EXPECT_EQ(console.state.current_view, link::View::none);
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(PageFaults, DuringAnUpdateTheWayOutWaitsAndAsksNothingMore) {
    open();
    page.box("RLI_HRD1").set_text("7001");
    page.box("HOT_#P").set_text("2");
    page.box("PHBT", 1).set_text("-1");
    page.box("map_change_time").set_text("0.2");
    bool first = true;
    on_request = [&](std::uint8_t) {
        EXPECT_FALSE(page.update_button.enabled() || page.exit_button.enabled() || page.menu_mon.enabled() ||
                     page.menuupdate.enabled());
        EXPECT_TRUE(console.state.polling_paused);
        if (std::exchange(first, false)) {
            page.box("ACC_SEN").set_text("9"); // the walk is past it
            page.form.close_requested();
            platform::KeyPress press{.code = platform::key::enter};
            page.box("ACC_SEN").key_down(press);
        }
        EXPECT_TRUE(page.form.visible());
    };
    EXPECT_EQ(codes(update()), (std::vector<int>{25, 54})) << "what was asked for and needs no word";
    EXPECT_TRUE(page.box("ACC_SEN").is_pending());
    EXPECT_FALSE(page.form.visible()) << "closed when the walk was over";
    EXPECT_TRUE(page.update_button.enabled() && page.exit_button.enabled() && page.menu_mon.enabled());
    on_request = nullptr;
    open();
    EXPECT_THAT(update_of("HOT_#P", "1"), ElementsAre(Bytes{'t', 1, 0, 0}));
    desktop.answer_box("more than 1 hot priming pulse", platform::Answer::yes);
    EXPECT_THAT(update_of("HOT_#P", "2"), ElementsAre(Bytes{'t', 2, 0, 0})) << "asked again in the next walk";
}

// The echo answers what was sent; what the user has entered since stays, and the next Update sends it.
TEST_F(PageFaults, AnEntryBehindItsOwnMessageOutlivesTheEcho) {
    open();
    const auto entered_behind = [&](std::string_view key, const char* sent_text, std::uint8_t code, const char* next) {
        page.box(key).set_text(sent_text);
        meanwhile(code, [this, key, next] { page.box(key).set_text(next); });
        update();
        EXPECT_EQ(page.box(key).text(), next);
        EXPECT_TRUE(page.box(key).to_be_sent()) << key;
        return update();
    };
    EXPECT_THAT(entered_behind("RLI_HRD1", "7001", 25, "7002"), ElementsAre(Bytes{25, 0x5A, 0x1B, 0}));
    EXPECT_EQ(codes(entered_behind("FS_RPM", "9000", 125, "9100")), (std::vector<int>{125, 'C'}));
    EXPECT_EQ(page.box("FS_RPM").text(), "9100") << "an echo that nothing was entered behind";
    EXPECT_THAT(entered_behind("CLTF", "40", 'e', "41"), ElementsAre(Bytes{'e', 0xC0, 0x05, 105}));

    store(parameter("INJP"), 5, 0);
    page.form.activate();
    page.inj_ph[5][3].click();
    meanwhile(128, [this] { page.inj_ph[5][4].click(); });
    EXPECT_THAT(update(), ElementsAre(Bytes{128, 5, 8, 0}));
    EXPECT_TRUE(page.inj_ph[5][4].checked());
    EXPECT_THAT(status(), HasSubstr("1 value pending: Phase Setup 1"));
    EXPECT_THAT(update(), ElementsAre(Bytes{128, 5, 24, 0}));
    EXPECT_EQ(status(), "No values pending");
    page.EGO_type[2].click();
    meanwhile(209, [this] { page.EGO_type[0].click(); });
    update();
    EXPECT_TRUE(page.EGO_type[0].checked());
    EXPECT_THAT(update(), ElementsAre(Bytes{209, 0, 0, 0}));
    EXPECT_THAT(update(), IsEmpty());
}

TEST_F(PageFaults, WhatWasSentInVainIsToldUntilItIsEnteredAnew) {
    open();
    page.box("TDC_TRIM").set_text("-17"); // goes into its box as -16 first
    page.MAP_accel.click();
    lose('|');
    EXPECT_EQ(codes(update()), repeated({{'|', 10}, {162, 1}}));
    EXPECT_EQ(status(), "1 value pending: Acceleration Enrichments 1; 1 not taken; 1 sent, 1 held to its limit: -17 is "
                        "-16.00");
    page.TPS_mapped.click();
    EXPECT_EQ(status(), "1 value pending: Acceleration Enrichments 1");
    page.box("TDC_TRIM").set_text("-17");
    lose(162);
    update();
    EXPECT_EQ(status(), "1 value pending: Engine Setup 1; 1 not taken");
    lose(162);
    meanwhile(162, [this] { page.box("TDC_TRIM").set_text("5"); });
    update();
    EXPECT_EQ(status(), "1 value pending: Engine Setup 1") << "5 was never sent";
}

TEST_F(PageFaults, WhatWasNeverReadIsNotSentUntilItIsReadAgain) {
    open();
    EXPECT_TRUE(page.inj_ph[0][0].enabled());
    close(); // the reading of this opening must not stand for the next
    lose(127);
    open();
    EXPECT_EQ(status(), "16 values not read: read again");
    const std::int32_t before = stored(parameter("INJP"), 2);
    page.inj_ph[2][1].click();
    page.ign_ph[2][1].click();
    EXPECT_EQ(codes(update()), (std::vector<int>{166})) << "the other boxes of the injectors' phase say nothing";
    EXPECT_THAT(status(), StartsWith("16 values not read: read again; 1 changed, but not sent before the rest of it"));
    const bool ticked = page.inj_ph[2][1].checked();
    page.box("RLI_HRD1").set_text("7001");
    page.MAP_accel.click();
    sent.clear();
    EXPECT_TRUE(page.read_again.enabled());
    page.read_again.press();
    desktop.run_for(1);
    EXPECT_EQ(codes(sent), (std::vector<int>{127}));
    EXPECT_FALSE(page.read_again.enabled());
    EXPECT_EQ(codes(update()), (std::vector<int>{25, '|', 128})) << "the click was kept";
    EXPECT_EQ(stored(parameter("INJP"), 2), ticked ? before | 2 : before & ~2);
}

// One click says all there is to say of a group of options, or of a lone box.
TEST_F(PageFaults, AWholeChoiceIsSentThoughTheControllersWasNeverRead) {
    lose(208);
    open();
    EXPECT_EQ(status(), "3 values not read: read again");
    page.EGO_type[2].click();
    EXPECT_EQ(status(), "2 values not read: read again; 1 value pending: Closed Loop Setup 1");
    page.read_again.press();
    desktop.run_for(1);
    EXPECT_TRUE(page.EGO_type[2].checked());
    EXPECT_EQ(status(), "1 value pending: Closed Loop Setup 1");
    EXPECT_THAT(update(), ElementsAre(Bytes{209, 2, 0, 0}));
    close();
    lose(10);
    open();
    page.enable_idle_by_timing.set_checked(false);
    page.enable_idle_by_timing.set_fore_colour(platform::black);
    EXPECT_EQ(status(), "1 value not read: read again");
    page.enable_idle_by_timing.click();
    EXPECT_THAT(update(), ElementsAre(Bytes{11, 1, 0, 0}));
    EXPECT_THAT(status(), StartsWith("No values pending"));
}

TEST_F(PageFaults, TheThrottleIsMeasuredOnceIntoAClearedBoxAndWithoutAnAnswerItIsNoValue) {
    for (const auto& [which, code] : {std::pair{0U, std::uint8_t{215}}, {1U, std::uint8_t{216}}}) {
        open();
        bool cleared = false;
        meanwhile(code, [&, key = which == 0 ? "TPS_BASE" : "TPS_FS"] {
            cleared = page.box(key).text().empty();
            EXPECT_FALSE(page.update_button.enabled() || page.exit_button.enabled() || page.menuupdate.enabled());
            EXPECT_TRUE(console.state.polling_paused);
            page.calibrate_tps_val[0].press(); // and again
            page.form.close_requested();
        });
        page.calibrate_tps_val[which].press();
        EXPECT_THAT(sent, ElementsAre(Bytes{code, 0, 0, 0}));
        EXPECT_TRUE(cleared);
        EXPECT_FALSE(page.form.visible() || console.state.polling_paused) << "closed when the answer was there";
    }
    EXPECT_EQ(page.box("TPS_BASE").text(),
              calibration::shown(parameter("TPS_BASE"), console.image.raw(parameter("TPS_BASE")), console.scales));
    EXPECT_EQ(page.box("TPS_FS").text(), std::to_string(console.image.raw(parameter("TPS_FS"))) + ".0");
    EXPECT_FALSE(page.box("TPS_BASE").is_pending());
    open();
    lose(216);
    page.calibrate_tps_val[1].press();
    EXPECT_TRUE(page.box("TPS_FS").is_pending() && page.box("TPS_FS").text().empty());
    EXPECT_THAT(update(), IsEmpty());
    page.read_again.press();
    desktop.run_for(1);
    EXPECT_THAT(codes(sent), ElementsAre(212));
    EXPECT_FALSE(page.box("TPS_FS").is_pending() || page.box("TPS_FS").text().empty());
    lose(216, abort_link);
    page.calibrate_tps_val[1].press();
    page.calibrate_tps_val[0].press();
    EXPECT_FALSE(page.box("TPS_BASE").text().empty()) << "no message would go out";
}

} // namespace
} // namespace ecu::test
