#include "logging/chart_window.h"

#include <gtest/gtest.h>

namespace ecu::logging {
namespace {

TEST(ChartWindow, ScrollsWithTheNewestSampleUntilItIsPannedAndAgainAfterGoLive) {
    ChartWindow window(60);
    window.follow(100);
    EXPECT_EQ(window.times(), (ChartRange{40, 100}));
    window.pan(-20, 0, 100);
    EXPECT_FALSE(window.live());
    window.follow(130);
    EXPECT_EQ(window.times(), (ChartRange{20, 80})) << "a window that is held stays where it is";
    window.zoom_height(0.5, 0.5);
    EXPECT_FALSE(window.at_default());
    window.go_live(130);
    EXPECT_EQ(window.times(), (ChartRange{70, 130}));
    EXPECT_TRUE(window.at_default());
}

TEST(ChartWindow, ZoomKeepsTheMomentUnderThePointerAndScrollsOnOnlyAtTheRightEdge) {
    ChartWindow window(60);
    window.follow(100);
    window.zoom(0.5, 99.5);
    EXPECT_TRUE(window.live());
    EXPECT_EQ(window.times(), (ChartRange{70, 100}));
    EXPECT_FALSE(window.at_default()) << "another width than the menu's";
    window.zoom(0.5, 80);
    EXPECT_FALSE(window.live());
    EXPECT_EQ(window.times(), (ChartRange{75, 90})) << "80 stands a third from the left, as before";
    window.zoom(1e-6, 80);
    EXPECT_DOUBLE_EQ(window.times().size(), ChartWindow::shortest);
    window.zoom(1e9, 80);
    EXPECT_DOUBLE_EQ(window.times().size(), ChartWindow::longest);
    window.zoom_height(100, 0.5);
    EXPECT_DOUBLE_EQ(window.heights().size(), ChartWindow::most_height);
    window.zoom_height(1e-9, 0.5);
    EXPECT_DOUBLE_EQ(window.heights().size(), ChartWindow::least_height);
}

TEST(ChartWindow, PanStopsHalfAWindowBeyondWhatIsHeld) {
    ChartWindow window(10);
    window.follow(100);
    window.pan(-1000, 50, 100);
    EXPECT_EQ(window.times(), (ChartRange{45, 55}));
    window.pan(1000, 50, 100);
    EXPECT_EQ(window.times(), (ChartRange{95, 105}));
    window.pan(1, 98, 98.5); // less held than half a window
    EXPECT_EQ(window.times(), (ChartRange{93.5, 103.5}));
}

TEST(ChartWindow, AnotherWidthFromTheMenuReplacesTheUsersOnlyWhenItDiffers) {
    ChartWindow window(60);
    window.follow(100);
    window.zoom(0.5, 100);
    window.set_model_seconds(60);
    window.follow(101);
    EXPECT_EQ(window.times(), (ChartRange{71, 101}));
    window.set_model_seconds(10);
    window.follow(102);
    EXPECT_EQ(window.times(), (ChartRange{92, 102}));
    EXPECT_TRUE(window.at_default());
}

} // namespace
} // namespace ecu::logging
