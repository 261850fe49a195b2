#include "configuration/page_bench.h"

namespace ecu::test {
namespace {

using platform::pending;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using ConfigurationPage = PageBench;

TEST_F(ConfigurationPage, EveryOpeningReadsAllInItsOrderAndShowsItWithNothingPending) {
    const std::vector<int> order{'C', 'B', 167, 161, 183, 233, 235, 24,  26,  237, 239, 28,  241, 243, '@', 40,  163,
                                 148, 157, 229, 231, 201, 202, 12,  203, 155, 159, 165, 127, 176, 'U', 'V', 'W', 'S',
                                 'T', 132, 134, 136, 138, 140, 142, 144, 46,  10,  6,   8,   '!', '%', '^', 227, 208,
                                 14,  16,  22,  18,  20,  212, 'r', 'r', 48,  249, 253, 251, 245, 53,  30,  34,  38};
    page.tool_tab.set_current(4);
    for (int opening = 0; opening < 2; ++opening) {
        page.box("RLI_HRD1").set_text("1");
        sent.clear();
        bool yellow = false;
        std::string progress;
        on_request = [&](std::uint8_t code) {
            yellow = yellow || page.box("GGPO", 3).is_pending();
            progress = code == 127 ? page.tool_status.text() : progress;
            EXPECT_FALSE(page.update_button.enabled() || page.tool_tab.enabled()) << "would be overwritten";
            EXPECT_TRUE(console.state.polling_paused);
        };
        console.navigation.open(link::View::configuration);
        desktop.run_for(3);
        on_request = {};
        sent.resize(order.size()); // the scheduler's own questions come behind
        EXPECT_EQ(codes(sent), order);
        EXPECT_EQ(sent[29], (Bytes{176, 0, 0, 0}));
        EXPECT_EQ(sent[57], (Bytes{'r', 0xC0, 0x05, 0}));
        EXPECT_EQ(sent[58], (Bytes{'r', 0xD0, 0x05, 0}));
        EXPECT_FALSE(yellow);
        EXPECT_EQ(progress, "Reading configuration, 25 of 68");
        for (const Parameter& row : calibration::parameters) {
            for (int i = 0; row.control.form == "frm_tool" && i < row.count; ++i) {
                EXPECT_FALSE(console.reply_decoders.controls().pending(row, i)) << row.key;
                if (row.shows_text()) {
                    EXPECT_EQ(page.box(row.key, i).text(), calibration::shown(row, stored(row, i), console.scales));
                } else {
                    EXPECT_EQ(console.reply_decoders.controls().switches(row, i), stored(row, i)) << row.key;
                }
            }
        }
        EXPECT_EQ(page.box("MATF", 8).text(), "30");
        EXPECT_EQ(page.tool_tab.current(), 4);
        EXPECT_EQ(page.form.caption(), "Configuration ->COM3");
        EXPECT_EQ(page.tool_status.text(), "No values pending");
        EXPECT_FALSE(console.state.polling_paused);
        EXPECT_TRUE(page.update_button.enabled() && page.tool_tab.enabled());
        EXPECT_THAT(update(), IsEmpty()) << "decoding ticked boxes, which clicks them";
        page.exit_button.press();
        desktop.run_for(0.3);
        EXPECT_EQ(console.state.current_view, link::View::none);
    }
    EXPECT_THAT(page.box("IGN_TDWL").tool_tip(), StartsWith("Faster coils need less dwell time, Slow coils"));
}

TEST_F(ConfigurationPage, UpdateOfEverythingSendsEachValueOnceInItsOrderAndTheMemoryIsAsTheScreen) {
    console.state.master_mode = true;
    open();
    std::map<std::pair<std::string_view, int>, std::int32_t> before;
    for (const Parameter& row : calibration::parameters) {
        for (int i = 0; row.control.form == "frm_tool" && i < row.count; ++i) {
            before[{row.key, i}] = stored(row, i);
            if (row.shows_text()) {
                const int step = row.key == "GGPO" || row.key == "HOT_#P" || row.key == "CLD_#P" ? 0 : 16;
                const std::int32_t raw = step == 0 ? i % 2 : stored(row, i) + step;
                page.box(row.key, i).set_text(calibration::shown(row, raw, console.scales));
            }
        }
    }
    for (const std::string_view key : {"CLTF", "MATF"}) {
        for (int i = 0; i < 9; ++i) {
            page.box(key, i).set_text(std::to_string(40 + i));
        }
    }
    page.map_type[3].click();
    page.special_cfg[1].click();
    page.TPS_mapped.click();
    page.MAP_accel.click();
    page.EGO_type[2].click();
    page.enable_idle_by_timing.click();
    for (std::size_t n = 0; n < 16; ++n) {
        page.inj_ph[n][n % 8].click();
        page.ign_ph[n][7 - n % 8].click();
        page.ph_used[n].click();
        page.tach_ph[n].click();
    }
    page.aux_in_used_as[0].click();
    page.map_sel_used_as[0].click();
    page.trig_b_used_as[4].click();
    page.idx_used_as[1].click();
    desktop.run_for(0.01);
    EXPECT_EQ(page.tool_tab.pending_on(4), 16 + 16 + 1 + 16 + 1); // phases, angles and two words
    EXPECT_EQ(page.tool_tab.pending_on(11), 1);

    EXPECT_EQ(codes(update()),
              repeated({{'g', 1},  {'f', 1}, {'h', 1},  {' ', 1},  {'=', 1}, {'c', 1}, {'?', 1},  {'b', 1}, {'<', 1},
                        {'>', 1},  {234, 1}, {236, 1},  {25, 1},   {27, 1},  {29, 8},  {238, 1},  {240, 1}, {242, 1},
                        {244, 1},  {130, 1}, {'p', 1},  {'s', 1},  {'u', 1}, {'t', 1}, {'v', 1},  {'w', 1}, {'|', 1},
                        {125, 1},  {'C', 1}, {128, 16}, {166, 16}, {131, 1}, {133, 1}, {135, 1},  {137, 1}, {139, 1},
                        {141, 1},  {143, 1}, {145, 1},  {149, 1},  {168, 1}, {162, 1}, {164, 1},  {158, 1}, {160, 1},
                        {156, 16}, {177, 1}, {184, 1},  {213, 1},  {214, 1}, {209, 1}, {210, 1},  {211, 1}, {228, 1},
                        {204, 8},  {205, 8}, {13, 8},   {206, 8},  {230, 1}, {232, 1}, {246, 1},  {250, 1}, {252, 1},
                        {254, 1},  {7, 1},   {9, 1},    {11, 1},   {15, 1},  {17, 1},  {19, 1},   {21, 1},  {23, 1},
                        {31, 1},   {35, 8},  {36, 8},   {39, 8},   {41, 1},  {47, 1},  {'e', 18}, {49, 1},  {50, 1},
                        {51, 1},   {52, 1},  {54, 1}}))
        << "C right behind 125 takes the yellow of trigs_per_rev";
    for (const Parameter& row : calibration::parameters) {
        for (int i = 0; row.control.form == "frm_tool" && i < row.count; ++i) {
            EXPECT_EQ(console.image.raw(row, i), stored(row, i)) << row.key;
            EXPECT_FALSE(console.reply_decoders.controls().pending(row, i)) << row.key;
            EXPECT_EQ((before[{row.key, i}] == stored(row, i)), row.key == "TRGS_REV") << row.key << i;
            if (row.shows_text() && row.key != "TPS_BASE" &&
                row.control.name.find("pressure") == std::string_view::npos) {
                EXPECT_EQ(page.box(row.key, i).text(), calibration::shown(row, stored(row, i), console.scales));
            }
        }
    }
    EXPECT_EQ(memory.cell(1488 + 8), 48 + 64);
    EXPECT_THAT(page.tool_status.text(), StartsWith("No values pending; 201 sent"));
    EXPECT_EQ(page.tool_tab.pending_on(4), 0);
    EXPECT_THAT(update(), IsEmpty());
}

TEST_F(ConfigurationPage, EntriesAreHeldWrappedOrReplacedAsTheirRowsSay) {
    open();
    struct Case {
        const char* key;
        const char* entry;
        Bytes message;
        const char* shown;
    };
    const std::vector<Case> cases{{"TMP_THRS", "-20", {'w', 243, 0, 0}, "-12"},
                                  {"INJO", "-0.0005", {205, 0, 0, 0}, "0.000"},
                                  {"INJO", "-41", {205, 0, 0x58, 0x9E}, "-40.000"}, // -25000
                                  {"INJK", "4.1", {204, 0, 0x00, 0x40}, "4.000"},
                                  {"INJL", "51", {13, 0, 0x12, 0x7A}, "50.000"},
                                  {"INJM", "-3", {206, 0, 0, 0}, "0.000"},
                                  {"IGN_TDWL", "8.01", {149, 0x20, 0x03, 0}, "8.00"},
                                  {"IGN_TDWL", "abc", {149, 50, 0, 0}, "0.50"},
                                  {"TDC_TETH", "256", {168, 255, 0, 0}, "255"},
                                  {"TDC_TRIM", "-17", {162, 0, 0, 0}, "-16.00"},
                                  {"CRK_TDEG", "48", {21, 255, 0, 0}, "47.75"},
                                  {"IGN_MDEG", "61", {158, 240, 0, 0}, "60.00"},
                                  {"LIM_DEG", "-1", {184, 0, 0, 0}, "0.00"},
                                  {"TPS_ENR", "101", {230, 255, 0, 0}, "100.0"},
                                  {"TPS_BASE", "50", {213, 128, 0, 0}, "128.0"}, // shown raw
                                  {"TPS_FS", "50", {214, 128, 0, 0}, "50.2"},
                                  {"EGO_WBL0", "2.1", {210, 255, 0, 0}, "1.992"},
                                  {"EGO_WBL1", "0.4", {211, 64, 0, 0}, "0.500"},
                                  {"F_CUT_T1", "1.5", {242, 44, 0, 0}, "0.220"}, // low byte of 300
                                  {"IDL_DRPM", "65535", {47, 0xFE, 0xFF, 0}, "65534"},
                                  {"ACC_RATE", "0", {'f', 1, 0, 0}, "0.09"},
                                  {"EGO_GAIN", "1.0", {'?', 64, 0, 0}, "1.000"},
                                  {"HOT_#P", "1", {'t', 1, 0, 0}, "1"},
                                  {"CLTF", "200", {'e', 0xC0, 0x05, 255}, "191"},
                                  {"EGO_SECS", "-5", {'b', 0, 0, 0}, "0"}};
    for (const Case& one : cases) {
        EXPECT_THAT(update_of(one.key, one.entry), ElementsAre(one.message)) << one.key << " " << one.entry;
        EXPECT_EQ(page.box(one.key).text(), one.shown) << one.key;
        EXPECT_FALSE(page.box(one.key).is_pending()) << one.key;
    }
    EXPECT_TRUE(desktop.boxes().empty());
}

TEST_F(ConfigurationPage, EgoLimitsStandInTheirBoxesBeforeTheMessageAndTheMessageBeforeTheSend) {
    open();
    std::string in_box;
    desktop.answer_box("The Minimum EGO Gain has been altered to within limits", platform::Answer::ok);
    on_request = [&](std::uint8_t code) {
        in_box = code == '<' ? page.box("EGO_A_LO").text() : in_box;
        EXPECT_EQ(desktop.boxes().size(), code == '<' ? 1U : 2U);
    };
    EXPECT_THAT(update_of("EGO_A_LO", ".613"), ElementsAre(Bytes{'<', 39, 0, 0}));
    EXPECT_EQ(in_box, ".614");
    desktop.answer_box("The Maximum EGO Gain has been altered to within limits", platform::Answer::ok);
    EXPECT_THAT(update_of("EGO_A_HI", "1.41"), ElementsAre(Bytes{'>', 90, 0, 0}));
}

TEST_F(ConfigurationPage, ARefusalOrAnAnswerSkipsOnlyItsOwnControl) {
    open();
    const std::string phase =
        "An illegal value for a phase base degree angle has been supplied, and will NOT be accepted";
    const std::string gain =
        "The value for the Ego Proportional Gain is greater than 1.000, Parameter will not be updated";
    page.box("EGO_GAIN").set_text("1.007"); // 64.4 is 64
    page.box("HOT_#P").set_text("2");
    page.box("CLD_#P").set_text("3");
    page.box("PHBT", 2).set_text("-0.25");
    page.box("PHBT", 3).set_text("719.75");
    page.box("PHBT", 4).set_text("720");
    page.box("map_change_time").set_text("0.1");
    desktop.answer_box("You have specified more than 1 hot priming pulse.\nThis can cause excessive fuel to puddle in "
                       "the cylinders.\nAre you certain that this is what you want to do?",
                       platform::Answer::cancel);
    desktop.answer_box("You have specified more than 1 cold priming pulse.", platform::Answer::yes);
    desktop.expect_box(phase);
    desktop.expect_box(phase);
    EXPECT_THAT(update(),
                ElementsAre(Bytes{'?', 64, 0, 0}, Bytes{'v', 3, 0, 0}, Bytes{156, 3, 0x3F, 0x0B}, Bytes{54, 20, 0, 0}));
    EXPECT_EQ(desktop.boxes()[0].buttons, platform::Buttons::yes_no_cancel);
    EXPECT_EQ(desktop.boxes()[3].details, "Phase Setup, Base Angle 5");
    EXPECT_EQ(page.tool_tab.current(), 4) << "the value that the box speaks of is in front";
    EXPECT_TRUE(page.box("HOT_#P").is_pending() && page.box("PHBT", 2).is_pending() &&
                page.box("PHBT", 4).is_pending());
    EXPECT_EQ(page.tool_status.text(), "3 values pending: Powerup/Options 1, Phase Setup 2; 2 not taken");
    EXPECT_EQ(page.tool_tab.pending_on(5), 1);

    page.box("HOT_#P").set_text("1");
    page.box("PHBT", 2).set_text("1");
    page.box("PHBT", 4).set_text("1");
    page.box("EGO_GAIN").set_text("1.01");
    desktop.expect_box(gain);
    EXPECT_EQ(codes(update()), repeated({{'t', 1}, {156, 2}}));
    EXPECT_TRUE(page.box("EGO_GAIN").is_pending());
}

TEST_F(ConfigurationPage, OnlyMasterModeEnablesTheSensorWhoseEchoChangesTheSpanOfThePressuresBehindIt) {
    open();
    EXPECT_FALSE(page.map_type[0].enabled() || page.special_cfg[1].enabled());
    close();
    console.state.master_mode = true;
    open();
    EXPECT_TRUE(page.map_type[3].enabled() && page.special_cfg[0].enabled());
    page.map_type[2].click();
    page.box("MIN_PRES").set_text("354.5"); // the middle of 79 to 630
    EXPECT_THAT(update(), ElementsAre(Bytes{130, 64 + 2, 0, 0}, Bytes{'p', 0x00, 0x02, 0}));
}

TEST_F(ConfigurationPage, SwitchesGoOutAsOneNumberForEachGroup) {
    open();
    page.MAP_accel.click();
    EXPECT_THAT(update(), ElementsAre(Bytes{'|', 0, 0, 0}));
    page.TPS_mapped.click();
    page.MAP_accel.click();
    EXPECT_THAT(update(), ElementsAre(Bytes{'|', 3, 0, 0}));
    EXPECT_EQ(page.TPS_mapped.fore_colour(), platform::black);

    page.EGO_type[2].click();
    EXPECT_FALSE(page.box("EGO_WBL0").enabled() || page.box("EGO_WBL1").enabled());
    page.EGO_type[1].click();
    EXPECT_TRUE(page.box("EGO_WBL0").enabled() && page.box("EGO_WBL1").enabled());
    EXPECT_THAT(update(), ElementsAre(Bytes{209, 1, 0, 0}));

    page.idx_used_as[0].click(); // CAM, code 7, beside the three others as they were
    page.aux_in_used_as[0].click();
    EXPECT_THAT(update(), ElementsAre(Bytes{246, 0xD0, 0x0E, 0}));
}

TEST_F(ConfigurationPage, ACodeThatNoOptionHasGoesBackAsItCameAndNoEarlierChoiceStandsForIt) {
    open();
    EXPECT_TRUE(page.EGO_type[1].checked() && page.aux_in_used_as[1].checked());
    close();
    store(parameter("INPT_CGF"), 0, 3 + 5 * 8 + 6 * 64 + 4 * 512); // no option has any of these
    store(parameter("EGO_FLGS"), 0, 5);
    open();
    EXPECT_FALSE(page.EGO_type[0].checked() || page.EGO_type[1].checked() || page.EGO_type[2].checked());
    EXPECT_FALSE(page.aux_in_used_as[0].checked() || page.aux_in_used_as[1].checked());
    page.map_sel_used_as[3].click();
    EXPECT_THAT(update(), ElementsAre(Bytes{246, 0x93, 0x09, 0})); // 3 + 2 * 8 + 6 * 64 + 4 * 512
}

TEST_F(ConfigurationPage, APhaseCountsItsDisabledBoxesAndAnyClickMarksIt) {
    store(parameter("INJP"), 5, 0xC1);
    open();
    console.live_decoder.decode({2, 7, 179, 0x44, 0x07}, 5); // four drivers of each kind
    EXPECT_FALSE(page.inj_ph[5][7].enabled());
    page.inj_ph[5][3].click();
    EXPECT_EQ(page.inj_ph[5][0].tag(), "X");
    EXPECT_EQ(page.inj_ph[5][3].fore_colour(), pending) << "so that it can be seen which";
    EXPECT_THAT(update(), ElementsAre(Bytes{128, 5, 0xC9, 0}));
    EXPECT_EQ(page.inj_ph[5][3].fore_colour(), platform::black);
    page.inj_ph[5][3].click();
    page.inj_ph[5][3].click(); // as it was: still to be sent
    EXPECT_THAT(update(), ElementsAre(Bytes{128, 5, 0xC9, 0}));
    page.ph_used[15].click();
    page.tach_ph[0].click();
    EXPECT_EQ(codes(update()), (std::vector<int>{160, 177}));
}

TEST_F(ConfigurationPage, EnterAndMenusSendAllThatIsPendingOrLeaveAndThePagesOwnItemDoesNothing) {
    open();
    page.box("RLI_HRD1").set_text("7001");
    page.skip_fire_bits.set_text("3"); // an operand, no value
    EXPECT_FALSE(page.skip_fire_bits.is_pending());
    sent.clear();
    platform::KeyPress press{.code = platform::key::enter};
    page.box("MATF", 4).key_down(press);
    desktop.run_for(1);
    EXPECT_EQ(press.code, 0);
    EXPECT_THAT(sent, ElementsAre(Bytes{25, 0x59, 0x1B, 0}));
    page.box("RLI_HRD1").set_text("7002");
    page.menu_tools.click();
    desktop.run_for(1);
    EXPECT_TRUE(page.form.visible() && page.box("RLI_HRD1").is_pending());
    sent.clear();
    page.menuupdate.click();
    EXPECT_THAT(sent, ElementsAre(Bytes{25, 0x5A, 0x1B, 0}));
    page.menufileexit.click();
    EXPECT_FALSE(page.form.visible());
    desktop.run_for(1);
    open();
    page.menu_3d.click();
    EXPECT_FALSE(page.form.visible());
    EXPECT_TRUE(
        console.state.pending_view_request[static_cast<std::size_t>(shell::request_of(link::View::basic_mapping))]);
}

TEST_F(ConfigurationPage, EveryTabCarriesTheMarkOfItsOwnValues) {
    console.state.master_mode = true;
    open();
    std::vector<int> expected(13, 0);
    for (const calibration::PageItem& item : calibration::page_update_order) {
        const calibration::Tab tab = item.table != nullptr ? item.table->screen.tab : item.parameter->screen.tab;
        platform::TextBox* box = item.table != nullptr ? &page.boxes(*item.table, 8)
                                 : item.parameter->shows_text()
                                     ? &page.boxes(*item.parameter, item.parameter->count - 1)
                                     : nullptr;
        if (box != nullptr) {
            box->set_text("x");
            ++expected.at(static_cast<std::size_t>(tab) - 1);
        }
    }
    page.map_type[2].click(); // a switch of each kind, on its tab
    page.special_cfg[0].click();
    page.MAP_accel.click();
    page.ph_used[3].click();
    page.tach_ph[3].click();
    page.inj_ph[15][0].click();
    page.ign_ph[0][7].click();
    page.enable_idle_by_timing.click();
    page.EGO_type[0].click();
    page.trig_b_used_as[1].click();
    for (const auto& [tab, more] : {std::pair{0, 1}, {1, 1}, {4, 4}, {6, 1}, {7, 1}, {11, 1}}) {
        expected.at(static_cast<std::size_t>(tab)) += more;
    }
    desktop.run_for(0.01);
    for (int tab = 0; tab < 13; ++tab) {
        EXPECT_GT(expected.at(static_cast<std::size_t>(tab)), 0);
        EXPECT_EQ(page.tool_tab.pending_on(tab), expected.at(static_cast<std::size_t>(tab))) << tab;
    }
}

TEST_F(ConfigurationPage, ActivatedAgainItReadsAgainAndLeavesDisabledWhatTheControllerHasNot) {
    open();
    console.live_decoder.decode({2, 7, 179, 0x88, 0x06}, 5); // no idle control
    page.form.activate();
    EXPECT_EQ(std::ranges::count(codes(sent), 38), 1);
    EXPECT_FALSE(page.box("IAC_OPEN").enabled());
    EXPECT_TRUE(page.box("RLI_HRD1").enabled());
    page.form.close_requested();
    EXPECT_FALSE(page.form.visible());
}

TEST_F(ConfigurationPage, DemoShowsItsSamplesAndUpdateDoesNothingAtAll) {
    console.state.demo_mode = true;
    open();
    EXPECT_EQ(page.box("EGO_A_LO").text(), ".604");
    EXPECT_EQ(page.box("WRPM_SCL").text(), "0.01567");
    EXPECT_EQ(page.box("RPSL", 4).text(), "75");
    EXPECT_EQ(page.box("RPSH", 7).text(), "0");
    EXPECT_FALSE(page.box("RPSH", 7).is_pending());
    EXPECT_EQ(page.box("FS_RPM").text(), "");
    page.box("EGO_A_LO").set_text(".1"); // would be altered, with a message
    EXPECT_THAT(update(), IsEmpty());
    EXPECT_EQ(page.box("EGO_A_LO").text(), ".1");
    EXPECT_TRUE(page.update_button.enabled());
    page.calibrate_tps_val[0].press();
    EXPECT_EQ(page.box("TPS_BASE").text(), "10.2") << "nothing measures here";
}

} // namespace
} // namespace ecu::test
