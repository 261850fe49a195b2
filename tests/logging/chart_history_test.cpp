#include "logging/chart_history.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>

namespace ecu::logging {
namespace {

using Points = std::vector<ChartHistory::Point>;

TEST(ChartHistory, RunsOnOverMidnightAndBreaksItsLinesAtAPause) {
    ChartHistory history(1);
    history.add(86399.5F, std::array{0.1F}, 2);
    history.add(0.5F, std::array{0.2F}, 2);
    history.add(10.5F, std::array{0.3F}, 2);
    EXPECT_DOUBLE_EQ(history.last(), 86410.5);
    EXPECT_DOUBLE_EQ(history.continued(12.5F), 86412.5);
    Points points;
    history.line(0, 86399, 86411, 100, points);
    ASSERT_EQ(points.size(), 4U);
    EXPECT_DOUBLE_EQ(points[1].time, 86400.5);
    EXPECT_TRUE(std::isnan(points[2].fraction));
    EXPECT_FLOAT_EQ(points[3].fraction, 0.3F);
}

TEST(ChartHistory, ASpikeSurvivesADayAtTheFastestRateInBoundedPoints) {
    ChartHistory history(2);
    std::array<float, 2> sample{0.5F, 0.5F};
    for (int i = 0; i < 24 * 3600 * 40; ++i) { // a day of 25 ms samples, begun at noon
        const double time = 43200 + i * 0.025;
        sample[0] = i == 1'000'000 ? 0.9F : 0.5F;
        history.add(static_cast<float>(time >= 86400 ? time - 86400 : time), sample, 2);
    }
    EXPECT_GE(history.first(), 43200 - 1);
    EXPECT_NEAR(history.last() - history.first(), 24 * 3600, 2);
    Points points;
    history.line(0, history.first(), history.last(), 1000, points);
    EXPECT_LE(points.size(), 4000U);
    EXPECT_TRUE(std::ranges::any_of(points, [](const auto& point) {
        return point.fraction == 0.9F && std::abs(point.time - (43200 + 25000)) < 2;
    }));
    double found = 0;
    EXPECT_FLOAT_EQ(history.nearest(68200.2, found).at(0), 0.7F); // the middle of that second's range
    EXPECT_EQ(history.nearest(1e9, found).size(), 2U);
    EXPECT_DOUBLE_EQ(found, history.last());

    // Another hour pushes the oldest one out, and memory does not grow.
    const double oldest = history.first();
    for (int i = 0; i < 3600; ++i) {
        history.add(static_cast<float>(43200 + i), sample, 2);
    }
    EXPECT_NEAR(history.first() - oldest, 3600, 2);
}

} // namespace
} // namespace ecu::logging
