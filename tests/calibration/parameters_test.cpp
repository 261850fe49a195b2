// What becomes of an entry, and the few messages that a setup file sends in another way than the screens.
#include "calibration/calibration_image.h"
#include "calibration/encoding.h"

#include <gtest/gtest.h>

namespace ecu::calibration {
namespace {

struct EntryCase {
    std::string_view key, text;
    int raw;
    std::string_view replaced = {}, said = {};
};

EncodedEntry encoded(const EntryCase& entry, const Scales& scales) {
    const Parameter* row = find_parameter(entry.key);
    return row != nullptr ? raw_from_entry(*row, entry.text, scales)
                          : raw_from_entry(*find_table(entry.key), entry.text, scales);
}

TEST(Entries, BeyondATextLimitTakeTheLimitsText) {
    const std::string_view low = "The Minimum EGO Gain has been altered to within limits";
    const std::string_view high = "The Maximum EGO Gain has been altered to within limits";
    for (const EntryCase& entry : std::vector<EntryCase>{{"EGO_A_LO", ".613", 39, ".614", low},
                                                         {"EGO_A_LO", ".614", 39},
                                                         {"EGO_A_LO", "7", 255},
                                                         {"EGO_A_HI", "1.41", 90, "1.4", high},
                                                         {"EGO_A_HI", "1.4", 90},
                                                         {"IGN_TDWL", "8.1", 800, "8.00"},
                                                         {"IGN_TDWL", "", 50, "0.50"},
                                                         {"TDC_TETH", "256", 255, "255"},
                                                         {"TDC_TETH", "-1", 0, "0"},
                                                         {"TDC_TRIM", "48", 255, "47.75"},
                                                         {"BASE_DEG", "-16.1", 0, "-16"},
                                                         {"CRK_TDEG", "99", 255, "47.75"},
                                                         {"IGN_MDEG", "61", 240, "60"},
                                                         {"IGN_MDEG", "4", 20, "5"},
                                                         {"LIM_DEG", "101", 400, "100.00"},
                                                         {"LIM_DEG", "-1", 0, "0.00"},
                                                         {"TPS_BASE", "-1", 0, "0"},
                                                         {"TPS_FS", "101", 255, "100"},
                                                         {"TPS_ENR", "101", 255, "100"},
                                                         {"EGO_WBL0", "0.4", 64, "0.50"},
                                                         {"EGO_WBL1", "2.1", 255, "2.00"},
                                                         {"EGO_WBL1", "2", 255},
                                                         {"INJK", "4.1", 16384, "4"},
                                                         {"INJK", "-1", 0, "0"},
                                                         {"INJO", "41", 25000, "40"},
                                                         {"INJO", "-41", -25000, "-40"},
                                                         {"INJL", "51", 31250, "50"},
                                                         {"INJM", "51", 31250, "50"},
                                                         {"INJM", "-1", 0}}) {
        SCOPED_TRACE(std::string(entry.key) + " " + std::string(entry.text));
        const EncodedEntry got = encoded(entry, {});
        EXPECT_EQ(got.raw, entry.raw);
        EXPECT_EQ(got.replaced, entry.replaced);
        EXPECT_EQ(got.notice, entry.said);
        EXPECT_EQ(got.refusal, "");
    }
}

TEST(Entries, OutOfRangeAreRefusedInTheirOwnWords) {
    const std::string_view gain =
        "The value for the Ego Proportional Gain is greater than 1.000, Parameter will not be updated";
    const std::string_view phase =
        "An illegal value for a phase base degree angle has been supplied, and will NOT be accepted";
    const std::string_view high = "A MAP Gain cell has been found that is too high, it will not be updated";
    for (const EntryCase& entry : std::vector<EntryCase>{
             {"EGO_GAIN", "1.0", 64},
             {"EGO_GAIN", "1.01", 65, {}, gain},
             {"PHBT", "719.9", 2880},
             {"PHBT", "720", 2880, {}, phase},
             {"PHBT", "-0.1", 0, {}, phase},
             {"FUEL_MX", "-0.0005", 0},
             {"FUEL_MX", "-1", 0, {}, "The value for the Fuel Scaler is negative, it will not be updated"},
             {"FUEL_MX", "200", 65535},
             {"FUEL_B", "52.4", 49134},
             {"FUEL_B", "52.4288", 49152, {}, "The value for the Fuel Offset is too high, it will not be updated"},
             {"FUEL_B", "-27", 0, {}, "The value for the Fuel Offset is too negative, it will not be updated"},
             {"TPS_RPM", "10000", 1023},
             {"TPS_RPM",
              "10010",
              1024,
              {},
              "The value for the TPS Map cut-in RPM was too high, it will not be updated"},
             {"TPS_RPM", "-5", 0},
             {"MAPM", "1.996", 255},
             {"MAPM", "1.9999", 255, {}, high},
             {"MAPM", "-1", 0, {}, "A MAP Gain cell has been found that is negative, it will not be updated"}}) {
        SCOPED_TRACE(std::string(entry.key) + " " + std::string(entry.text));
        const EncodedEntry got = encoded(entry, {});
        EXPECT_EQ(got.refusal, entry.said);
        EXPECT_EQ(got.raw, entry.raw);
    }
}

TEST(Entries, AreHeldOrMaskedToWhatTheMessageCarries) {
    for (const EntryCase& entry :
         std::vector<EntryCase>{{"ACC_RATE", "0", 1},        {"EGO_RATE", "300", 127}, {"MIN_PRES", "5", 0},
                                {"ACC_MINP", "105", 65535},  {"TMP_THRS", "-30", 243}, {"TMP_THRS", "130", 127},
                                {"BAT_COMP", "410", 0},      {"F_CUT_T1", "1.285", 1}, {"IAC_DEAD", "-1", 255},
                                {"FSHF_RTM", "2", 255},      {"CRK_RPMH", "-5", 0},    {"RPMS", "40000", 32767},
                                {"GPOV", "-200", 0},         {"GPOV", "300", 255},     {"BOEN", "9", 0},
                                {"BOEN", "126", 255},        {"GGPO", "4", 3},         {"IGN3", "50", 255},
                                {"IDLE", "2100", 255},       {"EGOL", "3", 255},       {"IAC_MAXR", "1000", 1000},
                                {"IAC_MAXR", "1001", 1000},  {"IAC_MAXR", "-1", 0},    {"BAR_SCLR", "4", 4096},
                                {"BAR_SCLR", "4.001", 4096}, {"BAR_SCLR", "-0.1", 0},  {"STUT", "1e400", 65535},
                                {"STUT", "no number", 0},    {"EGO_SECS", "0.5", 0},   {"EGO_SECS", "1.5", 2}}) {
        EXPECT_EQ(encoded(entry, {}).raw, entry.raw) << entry.key << " " << entry.text;
    }
}

TEST(Entries, OnADecimalTieGoToTheEvenRawNumber) {
    const Scales scales;
    EXPECT_EQ(raw_from_entry(parameter("ACC_MINP"), "0.204", scales).raw, 128); // 127.5 ticks
    EXPECT_EQ(raw_from_entry(parameter("ACC_MINP"), "0.0024", scales).raw, 2);  // 1.5 ticks
    EXPECT_EQ(raw_from_entry(parameter("ACC_MINP"), "0.0008", scales).raw, 0);  // 0.5 ticks
}

TEST(Entries, OfMoreThanOnePrimingPulseAreQuestioned) {
    EXPECT_EQ(raw_from_entry(parameter("HOT_#P"), "1", {}).question, "");
    EXPECT_EQ(raw_from_entry(parameter("CLD_#P"), "2", {}).question,
              "You have specified more than 1 cold priming pulse.\n"
              "This can cause excessive fuel to puddle in the cylinders.\n"
              "Are you certain that this is what you want to do?");
}

TEST(SetupFileMessages, DifferFromTheScreensForTheOxygenLimitsAndThePhases) {
    EXPECT_EQ(write_message(parameter("EGO_A_LO"), 0, 300), (link::Message{'<', 44, 0, 0}));
    EXPECT_EQ(file_message(parameter("EGO_A_LO"), 0, 300), (link::Message{'<', 44, 1, 0}));
    EXPECT_EQ(parameter("EGO_A_HI").write.reply, 4);
    EXPECT_EQ(parameter("EGO_A_HI").write.file_reply, 5);
    EXPECT_EQ(file_message(parameter("INJP"), 15, 300), (link::Message{128, 15, 44, 1}));
    EXPECT_EQ(file_message(parameter("EGO_RATE"), 0, 300), (link::Message{'c', 44, 0, 0}));
    EXPECT_EQ(file_message(parameter("GGPO"), 7, 300), (link::Message{39, 7, 44, 0}));
    EXPECT_EQ(file_message(parameter("INJO"), 0, -1), (link::Message{205, 0, 255, 255}));
}

TEST(CalibrationImage, KeepsTheScalesInStepAndTheFullScaleOnlyThere) {
    Scales scales;
    CalibrationImage image(scales);
    image.store(parameter("FS_RPM"), 0, 8500);
    EXPECT_EQ(scales.full_scale_rpm, 8500);
    scales.full_scale_rpm = 8000.4F;
    EXPECT_EQ(image.raw(parameter("FS_RPM")), 8000);
    image.store(parameter("BOFG"), 1, 2);
    EXPECT_FALSE(scales.boost_as_pwm);
    image.store(parameter("BORT"), 3, 17);
    EXPECT_EQ(image.raw(parameter("BORT"), 3), 17);
    EXPECT_THROW(image.store(parameter("BORT"), 4, 1), std::out_of_range);
}

} // namespace
} // namespace ecu::calibration
