#include "calibration/description.h"
#include "configuration/page_bench.h"
#include "configuration/stutter_tool.h"

namespace ecu::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct PageTools : PageBench {
    std::string made(const char* skips, const char* hits) {
        page.skip_fire_bits.set_text(skips);
        page.fire_bits.set_text(hits);
        page.make_stutter_text[1].press();
        return page.stutter_text.text();
    }
    std::vector<std::string> pattern(const char* text, std::size_t which) {
        page.stutter_text.set_text(text);
        page.create_stutter_patterns_from_text[which].press();
        std::vector<std::string> words;
        for (int n = 0; n < 8; ++n) {
            words.push_back(page.box("STUT", n).text() + (page.box("STUT", n).is_pending() ? "*" : ""));
        }
        return words;
    }
    std::string wheel_scaler(const char* inches, const char* turns, const char* pulses, std::size_t from) {
        page.rolling_circum_inches.set_text(inches);
        page.revs_mile.set_text(turns);
        page.trigs_rev.set_text(pulses);
        page.box("WRPM_SCL").confirm("");
        page.speed_wizard_calc[from].press();
        EXPECT_EQ(page.box("WRPM_SCL").is_pending(), !page.box("WRPM_SCL").text().empty());
        return page.box("WRPM_SCL").text();
    }
};

TEST_F(PageTools, StutterCyclesStayWholeAndNoEntryLoopsForEver) {
    EXPECT_EQ(made("3", "4"), "11100001110000111000011100001110000");
    EXPECT_EQ(made("1", "0"), std::string(32, '1'));
    EXPECT_EQ(made("40", "1"), std::string(40, '1') + "0");
    page.stutter_text.set_text("kept");
    for (const auto& [skips, hits] : {std::pair{"0", "5"}, {"", "5"}, {"-1", "0"}, {"0.4", "0"}, {"-3", "-3"}}) {
        EXPECT_EQ(made(skips, hits), "kept") << skips << "/" << hits;
    }
    EXPECT_EQ(made("-1", "5"), std::string(35, '0'));
    EXPECT_LE(made("1e12", "1e12").size(), 70000U);
    EXPECT_FALSE(page.stutter_text.is_pending());
}

TEST_F(PageTools, APatternFillsFourBoxesEachAndMissingPositionsAreSkips) {
    EXPECT_THAT(pattern("", 0), ElementsAre("255*", "255*", "255*", "255*", "", "", "", ""));
    EXPECT_THAT(pattern("00000000000000000000000000000000", 1),
                ElementsAre("255*", "255*", "255*", "255*", "0*", "0*", "0*", "0*"));
    EXPECT_THAT(pattern("100000000x1", 0), ElementsAre("1*", "252*", "255*", "255*", "0*", "0*", "0*", "0*"));
    EXPECT_THAT(pattern("11100001110000111000011100001110000", 0),
                ElementsAre("135*", "195*", "225*", "112*", "0*", "0*", "0*", "0*"));
    EXPECT_THAT(pattern("0\u00e90\u20ac", 0), ElementsAre("240*", "255*", "255*", "255*", "0*", "0*", "0*", "0*"))
        << "positions are characters, not bytes";
    std::array<std::string_view, 4> boxes{"135", " 195 x", "", "65535"};
    std::string drawn;
    for (const bool skip : configuration::stutter_marks(boxes)) {
        drawn += skip ? '1' : '0';
    }
    EXPECT_EQ(drawn, "11100001"
                     "11000011"
                     "00000000"
                     "11111111");
}

TEST_F(PageTools, TheWizardWorksOutTheScalerFromTheTurnsThatItShows) {
    EXPECT_EQ(wheel_scaler("75", "", "4", 0), "0.066584"); // 844.8 turns: 60 / (4 * 844.8 / 60 * 16)
    EXPECT_EQ(page.revs_mile.text(), "844.8");
    EXPECT_EQ(wheel_scaler("", "800", "12", 1), "0.023438");
    EXPECT_EQ(wheel_scaler("76", "", "", 0), "");
    EXPECT_EQ(page.revs_mile.text(), "833.7") << "the turns stand though the pulses are missing";
    EXPECT_EQ(wheel_scaler("0", "800", "12", 0), "") << "without a circumference nothing happens";
    EXPECT_EQ(wheel_scaler("1e-320", "800", "12", 0), "");
    EXPECT_EQ(page.revs_mile.text(), "800");
}

TEST_F(PageTools, AThrottleClickDuringAnUpdateOrTheOpeningReadSendsNothing) {
    bool clicked = false;
    on_request = [&](std::uint8_t code) {
        EXPECT_NE(code, 215);
        if (!std::exchange(clicked, true)) {
            page.calibrate_tps_val[0].press();
        }
    };
    open();
    clicked = false;
    page.box("RLI_HRD1").set_text("7001");
    EXPECT_THAT(update(), ElementsAre(Bytes{25, 0x59, 0x1B, 0}));
    EXPECT_FALSE(page.box("TPS_BASE").text().empty());
}

TEST(RowTips, TellRangeStepsAndWhatBecomesOfTheRestByTheRow) {
    const auto range = [](std::string_view key) { return calibration::entry_range(*calibration::find_parameter(key)); };
    EXPECT_EQ(range("CRK_TDEG"), "-16 to 47.75 deg, in steps of 0.25; beyond that the limit is sent");
    EXPECT_EQ(range("ACC_RATE"), "0.09 to 381.5 V/s, in steps of about 0.093; beyond that the limit is sent");
    EXPECT_EQ(range("EGO_GAIN"), "0 to 1, in steps of about 0.016; beyond that nothing is sent");
    EXPECT_EQ(range("PHBT"), "0 to 719.75 deg, in steps of 0.25; beyond that nothing is sent");
    EXPECT_EQ(range("BAT_COMP"), "0 to 408 us/V, in steps of 1.6; beyond that the number wraps around");
    EXPECT_EQ(range("TMP_THRS"), "-13 to 127 deg C, in steps of 1; beyond that the limit is sent");
    EXPECT_EQ(range("INJO"), "-40 to 40 ms, in steps of 0.0016; beyond that the limit is sent");
    EXPECT_EQ(range("FUEL_B"), "-26.214 to 52.427 ms, in steps of 0.0016; beyond that nothing is sent");
    EXPECT_EQ(range("MIN_PRES"), "") << "hangs on the sensor";
    EXPECT_EQ(range("INPT_CGF"), "");
    EXPECT_EQ(calibration::entry_range(calibration::table("CLTF")),
              "-64 to 191 deg C, in steps of 1; beyond that the limit is sent");
    EXPECT_EQ(calibration::tool_tip(calibration::parameter("GGPO")),
              "Number of the output that goes with this gear.\n0 to 3, in steps of 1; beyond that the limit is sent");
    for (const Parameter& row : calibration::parameters) {
        EXPECT_FALSE(row.screen.label.empty() || (row.screen.about.empty() == row.screen.tip.empty())) << row.key;
        EXPECT_EQ(row.screen.tab != calibration::Tab::none, row.control.form == "frm_tool" && !row.screen.group.empty())
            << row.key;
    }
}

} // namespace
} // namespace ecu::test
