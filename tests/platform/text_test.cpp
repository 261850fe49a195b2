#include "platform/clock.h"
#include "platform/display_mask.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"

#include <gtest/gtest.h>

#include <limits>

namespace ecu::platform {
namespace {

struct MaskCase {
    double value;
    const char* mask;
    const char* shown;
};

// Both precisions must print alike: a single 0.285 is 0.2849999964 in binary, and 0.285 to the reader.
void expect_masks(std::initializer_list<MaskCase> cases) {
    for (const auto& [value, mask, shown] : cases) {
        EXPECT_EQ(masked(value, mask), shown) << value << " in " << mask;
        EXPECT_EQ(masked(static_cast<float>(value), mask), shown) << value << " in " << mask << ", single";
    }
}

TEST(DisplayMask, PrintsRequiredDigitsAndDropsOptionalOnes) {
    expect_masks({
        {7, "0", "7"},
        {0, "#0", "0"},
        {5, "00", "05"},
        {7, "000", "007"},
        {0, "##0", "0"},
        {850, "###0", "850"},
        {0, "####0", "0"},
        {0, "#####", ""},
        {0.4, "#####", ""},
        {10000, "#####", "10000"},
        {0.5, "0.0", "0.5"},
        {14.7, "#0.0", "14.7"},
        {-3, "##0.0", "-3.0"},
        {101.3, "###0.0", "101.3"},
        {0.5, "##.0", ".5"},
        {0.5, "###.0", ".5"},
        {1, "0.00", "1.00"},
        {5, "#0.00", "5.00"},
        {0.25, "##.00", ".25"},
        {99.5, "##0.00", "99.50"},
        {60.25, "###0.00", "60.25"},
        {41.5, "####0.00", "41.50"},
        {0.5, "#.000", ".500"},
        {1.5, "#.000", "1.500"},
        {1, "0.000", "1.000"},
        {2.048, "#0.000", "2.048"},
        {0, "##.000", ".000"},
        {0.25, "##0.000", "0.250"},
        {8, "###0.000", "8.000"},
        {0.5, "0.000000", "0.500000"},
        {1, "0.##", "1."},
        {1.5, "0.##", "1.5"},
        {0.25, ".##", ".25"},
        {0, ".##", "."},
    });
}

TEST(DisplayMask, OptionalDecimalBeforeRequiredOneIsRequired) {
    expect_masks({{0.5, "##.#00", ".500"}, {1, "##.##0", "1.000"}, {12.34, "##.#0", "12.34"}, {3, "##.#0", "3.00"}});
}

TEST(DisplayMask, NeverCutsTheIntegerPart) {
    expect_masks({{12, "0", "12"}, {-12345.6, "##0.0", "-12345.6"}, {1e20, "#.0", "100000000000000000000.0"}});
}

TEST(DisplayMask, TieOfTheDecimalGoesAwayFromZero) {
    expect_masks({
        {6.25, "##0.0", "6.3"},
        {-6.25, "##0.0", "-6.3"},
        {0.285, "0.00", "0.29"},
        {1.005, "0.00", "1.01"},
        {2.5, "0", "3"},
        {0.5, "0", "1"},
        {6.24, "##0.0", "6.2"},
        {9.996, "0.00", "10.00"},
        {999.95, "##0.0", "1000.0"},
        {0.0004999, "0.000", "0.000"},
        {1e-30, "0.00", "0.00"},
    });
}

TEST(DisplayMask, ValueThatRoundsToZeroHasNoMinus) {
    expect_masks({{-0.04, "##0.0", "0.0"}, {-0.05, "##0.0", "-0.1"}, {-0.0, "0.00", "0.00"}, {-0.4, "#####", ""}});
}

TEST(DisplayMask, CopiesTextAroundThePattern) {
    expect_masks({{0.6, "=#0.0", "=0.6"}, {14.7, "=#0.0", "=14.7"}, {50, "##0%", "50%"}});
}

TEST(DisplayMask, EmptyMaskIsPlainInteger) { expect_masks({{12.5, "", "13"}, {-3, "", "-3"}, {0, "", "0"}}); }

TEST(DisplayMask, PrintsWholeRangeOfIntegers) {
    EXPECT_EQ(masked(-42, "0.0"), "-42.0");
    EXPECT_EQ(masked(std::numeric_limits<long>::min(), "####0"), "-9223372036854775808");
}

TEST(DisplayMask, NumberThatIsNoneReadsBackAsZero) {
    for (const double value : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(leading_number(masked(value, "##0.0")), 0);
    }
}

TEST(PlainNumber, HasNoDustAndNoExponentInEverydayRange) {
    const std::pair<double, const char*> cases[] = {{10, "10"},         {0.5, "0.5"},       {1000, "1000"},
                                                    {0.001, "0.001"},   {100000, "100000"}, {100 * 0.001 * 10, "1"},
                                                    {0.1 + 0.2, "0.3"}, {-0.0, "0"}};
    for (const auto& [value, shown] : cases) {
        EXPECT_EQ(plain_number(value), shown);
    }
}

TEST(LeadingNumber, StopsAtTheFirstCharacterThatCannotGoOn) {
    const std::pair<const char*, double> cases[] = {
        {"12.5", 12.5},  {"  12.5B", 12.5}, {"-.5", -0.5}, {"+3", 3},     {"5.", 5},
        {".25.5", 0.25}, {"1,5", 1},        {"12 34", 12}, {"1e2x", 100}, {"1e", 1},
        {"1e+", 1},      {"2E-1", 0.2},     {"0x10", 0},   {"007", 7},    {"-3-4", -3},
    };
    for (const auto& [text, number] : cases) {
        EXPECT_DOUBLE_EQ(leading_number(text), number) << text;
    }
}

TEST(LeadingNumber, TextWithNoneIsZero) {
    for (const char* text : {"", "  ", "X", "-", "+-1", ".", "e5", "inf", "nan", "- 5", "1e999"}) {
        EXPECT_EQ(leading_number(text), 0) << text;
    }
}

TEST(RoundToEven, TiesGoToTheEvenNeighbour) {
    const std::pair<double, int> cases[] = {{0.5, 0},   {1.5, 2},  {2.5, 2},        {-0.5, 0},
                                            {-1.5, -2}, {2.51, 3}, {0.49999999, 0}, {32767.5, 32768}};
    for (const auto& [value, rounded] : cases) {
        EXPECT_EQ(round_to_even(value), rounded) << value;
    }
}

TEST(RoundToEven, HoldsInsteadOfOverflowing) {
    EXPECT_EQ(round_to_even(1e12), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(round_to_even(-std::numeric_limits<double>::infinity()), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(round_to_even(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(Bytes, SplitLowAndHigh) {
    EXPECT_EQ(byte_low(0x1234), 0x34);
    EXPECT_EQ(byte_high(0x1234), 0x12);
    EXPECT_EQ(byte_high(-1), 0xFF);
}

TEST(Clock, DifferenceAcrossMidnightGetsADay) {
    EXPECT_FLOAT_EQ(elapsed_between(10, 12.5F), 2.5F);
    EXPECT_FLOAT_EQ(elapsed_between(86399, 1), 2);
    EXPECT_LT(elapsed_between(10, 9.95F), 0) << "jitter, not a day";
}

} // namespace
} // namespace ecu::platform
