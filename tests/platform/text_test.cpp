#include "platform/clock.h"
#include "platform/display_mask.h"
#include "platform/leading_number.h"
#include "platform/rounding.h"
#include "platform/text_encoding.h"
#include "support/fixture.h"
#include "support/sim_desktop.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ecu::platform {
namespace {

// Both precisions must print alike: a single 0.285 is 0.2849999964 in binary, and 0.285 to the reader.
TEST(DisplayMask, PrintsEveryMaskInBothPrecisions) {
    for (const auto& row : test::fixture("display_masks.csv")) {
        const double value = std::stod(row[0]);
        EXPECT_EQ(masked(value, row[1]), row[2]) << value << " in " << row[1];
        EXPECT_EQ(masked(static_cast<float>(value), row[1]), row[2]) << value << " in " << row[1] << ", single";
    }
}

TEST(DisplayMask, NumberThatIsNoneReadsBackAsZeroAndTheLeastIntegerIsWhole) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), infinity, -infinity}) {
        EXPECT_EQ(leading_number(masked(value, "##0.0")), 0);
    }
    EXPECT_EQ(masked(std::numeric_limits<long>::min(), "####0"), "-9223372036854775808");
}

TEST(EntryText, IsANumberOnlyWhereNothingOfItWouldBeLost) {
    for (const char* text : {"0", "-.5", "+1.", "1e3", " 2 ", "1.992"}) {
        EXPECT_TRUE(is_number(text)) << text;
    }
    for (const char* text :
         {"", " ", ".", "-", "e5", "abc", "1,5", "1.2 %", "1.2.3", "--1", "+-1", "1e400", "0x10", "nan", "inf"}) {
        EXPECT_FALSE(is_number(text)) << text;
    }
    EXPECT_EQ(entry_text(" 0,95\r"), "0.95");
    EXPECT_EQ(entry_text("1,234.5") + entry_text("1,2,3"), "1,234.51,2,3"); // could mean anything: as it stands
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
    for (const char* text : {"", "  ", "X", "-", "+-1", ".", "e5", "inf", "nan", "- 5", "1e-999", "0e999"}) {
        EXPECT_EQ(leading_number(text), 0) << text;
    }
}

TEST(LeadingNumber, BeyondAllRangeIsTheLargestAndNeverZero) {
    constexpr double largest = std::numeric_limits<double>::max();
    const std::string digits(400, '9');
    for (const std::string& text : std::vector<std::string>{
             "1e400", digits, digits + ".5", "0.1e500", "1e99999999999999999999", std::string(400, '0') + "1e309"}) {
        EXPECT_EQ(leading_number(text), largest) << text;
        EXPECT_EQ(leading_number("-" + text), -largest) << text;
    }
    EXPECT_EQ(leading_number("0." + std::string(400, '0') + "1"), 0);
    EXPECT_EQ(leading_number("1e-99999999999999999999"), 0);
}

TEST(Printable, ShowsWhatWouldActOnATerminalOrEndAText) {
    EXPECT_EQ(printable(std::string_view("a\0b\x1B[31m\r\x7F", 10)), "a\\x00b\\x1B[31m\\x0D\\x7F");
    EXPECT_EQ(printable("\xC2\x9B"
                        "2J \xC2\xB0"
                        "C \xE2\x82\xAC"),
              "\\x9B2J \xC2\xB0"
              "C \xE2\x82\xAC");
    EXPECT_EQ(printable("\xB0 raw \xC2"), "\xB0 raw \xC2");
}

TEST(RoundToEven, TiesGoToTheEvenNeighbour) {
    const std::pair<double, int> cases[] = {{0.5, 0},   {1.5, 2},  {2.5, 2},        {-0.5, 0},
                                            {-1.5, -2}, {2.51, 3}, {0.49999999, 0}, {32767.5, 32768}};
    for (const auto& [value, rounded] : cases) {
        EXPECT_EQ(round_to_even(value), rounded) << value;
    }
    EXPECT_EQ(round_to_even(1e12), std::numeric_limits<std::int32_t>::max()) << "held instead of overflowing";
    EXPECT_EQ(round_to_even(-std::numeric_limits<double>::infinity()), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(round_to_even(std::nan("")), 0);
}

TEST(Clock, DifferenceAcrossMidnightGetsADay) {
    EXPECT_FLOAT_EQ(elapsed_between(10, 12.5F), 2.5F);
    EXPECT_FLOAT_EQ(elapsed_between(86399, 1), 2);
    EXPECT_LT(elapsed_between(10, 9.95F), 0) << "jitter, not a day";
    test::SimDesktop desktop;
    const Ports ports = desktop.ports();
    desktop.set_time_of_day(86399);
    const float start = ports.now();
    ports.wait_seconds(2);
    EXPECT_NEAR(ports.now(), 1, 0.02);
    EXPECT_NEAR(ports.elapsed_since(start), 2, 0.02);
}

} // namespace
} // namespace ecu::platform
